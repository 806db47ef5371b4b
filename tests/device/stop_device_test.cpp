#include "device/stop_device.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "device/probe_interface.h"
#include "platform/virtual/debug_capture.h"
#include "tests/device/line_script.h"

namespace tw {
namespace {

using Texts = std::vector<std::wstring>;
using Answers = std::vector<std::string>;

// A device that answers stop keys alone, each in its own way.
class KeyPeer : public test::LineScript {
 public:
  Answers answers;
  size_t keys = 0;
  size_t returns = 0;

  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    for (const uint8_t byte : bytes) {
      if (byte == '\r') ++returns;
      if (byte == ' ' && keys++ < answers.size()) Say({answers[keys - 1]}, now_us);
    }
  }
};

class StopDeviceTest : public testing::Test {
 protected:
  StopDeviceTest() { StartDebugCapture(); }
  ~StopDeviceTest() override {
    Disconnect();
    StopDebugCapture();
  }

  void Disconnect() {
    CloseSerialLine(link_.port);
    DetachSerialLines();
    ClearFaults();
  }
  void Connect(const Answers& answers) {
    Disconnect();
    device_ = KeyPeer();
    device_.answers = answers;
    AttachPeer(test::kScriptedLine, &device_);
    link_.port = OpenDevicePort(L"COM5", 921'600);
  }
  // The same with a device that is sending.
  void ConnectStreaming(const Answers& answers) {
    Connect(answers);
    device_.Say({"x"}, VirtualNow_us());
  }

  // Stops the device; returns the milliseconds that it took.
  int64_t Stop(LinkResult expected) {
    const int64_t begin_us = VirtualNow_us();
    EXPECT_EQ(StopDevice(link_), expected);
    return (VirtualNow_us() - begin_us) / 1000;
  }

  VirtualClock clock_{1'700'000'000'000};
  KeyPeer device_;
  DeviceLink link_;
};

// That an idle device is only prompted, and a streaming one stops at the first key, is shown with the virtual
// echosounder by the sequences of the run control.
TEST_F(StopDeviceTest, ADeadLineHasNoPrompt) {
  Connect({});
  EXPECT_LE(Stop(LinkResult::noPrompt), 26'500);
  EXPECT_EQ(device_.keys, 0u);
  EXPECT_EQ(device_.returns, 10u);
  HangUpLine(test::kScriptedLine);
  EXPECT_LE(Stop(LinkResult::noPrompt), 200);
}

TEST_F(StopDeviceTest, ADeafDeviceIsGivenUpAfterThirtyAttemptsOfASecond) {
  ConnectStreaming({});
  const int64_t taken_ms = Stop(LinkResult::stopTimeOut);
  EXPECT_GE(taken_ms, 30'000);
  EXPECT_LE(taken_ms, 30 * 1'010 + 10);
  EXPECT_EQ(device_.keys, 30u);
  const Texts texts = TakeDebugTexts();
  ASSERT_EQ(texts.size(), 60u);
  EXPECT_EQ(texts[0], L"Stop command timeout\n");
  EXPECT_EQ(texts[1], L"Stop Retry count : 0\n");
  EXPECT_EQ(texts[59], L"Stop Retry count : 29\n");
}

TEST_F(StopDeviceTest, ALineThatCannotBeWrittenIsTriedThirtyTimes) {
  ConnectStreaming({});
  InjectFault({.point = FaultPoint::writeLine, .call = 1, .repeat = kEveryCall});
  EXPECT_LE(Stop(LinkResult::portFailed), 5'000);
  const Texts texts = TakeDebugTexts();
  ASSERT_EQ(texts.size(), 30u) << "no time-outs, only retries";
  EXPECT_EQ(texts[29], L"Stop Retry count : 29\n");
}

TEST_F(StopDeviceTest, OneFailedAttemptIsMadeUpForByTheNext) {
  // The first read finds the stream; the second belongs to the first attempt.
  for (const auto& [point, call] : {std::pair{FaultPoint::writeLine, 1u}, {FaultPoint::readLine, 2u}}) {
    ConnectStreaming({"DataEnd", "DataEnd"});
    InjectFault({.point = point, .call = call});
    EXPECT_LE(Stop(LinkResult::success), 22'000) << call;
    EXPECT_EQ(TakeDebugTexts(), Texts{L"Stop Retry count : 0\n"}) << call;
  }
}

TEST_F(StopDeviceTest, MarksAmongOtherBytesAndInPieces) {
  const struct {
    const char* what;
    Answers answers;
    LinkResult result;
    size_t keys;
  } rows[] = {{"an end mark right behind its beginning", {"12 DataDataEnd\r\n"}, LinkResult::success, 1},
              {"a prompt", {"12\r\n\r\n>"}, LinkResult::success, 1},
              {"what is none", {"dataend", "Data end", "\n\r>", "DataEnd"}, LinkResult::success, 4},
              {"a mark in two pieces", {"DataE", "nd"}, LinkResult::success, 2},
              {"a prompt in three", {"\r", "\n", ">"}, LinkResult::success, 3},
              {"half a mark", {"DataEn"}, LinkResult::stopTimeOut, 30},
              {"its end in the next call", {"d"}, LinkResult::success, 1}};
  for (const auto& row : rows) {
    ConnectStreaming(row.answers);
    EXPECT_LE(Stop(row.result), 32'000) << row.what;
    EXPECT_EQ(device_.keys, row.keys) << row.what;
    if (row.result == LinkResult::success) {
      EXPECT_EQ(device_.returns, 10u) << row.what << ": a prompt is asked for behind it, in vain";
    }
  }
}

class ProbeInterfaceTest : public test::ScriptedLineTest {};

TEST_F(ProbeInterfaceTest, FindsTheInterface) {
  for (const auto& [answer, type] : {std::pair{"#info\r\nInterface: RS232\r\n\r\n>", 0},
                                     {"#info\r\nInterface: RS485\r\n\r\n>", 1},
                                     {"#info\r\nInterface: USB\r\n\r\n>", 2},
                                     {"#info\r\nrs232 RS48 US\r\n\r\n>", -1},
                                     {"half a word: RS2", -1},
                                     {"32, its end in the next call", 0}}) {
    device_.replies = {{answer}};
    link_.facts.interfaceType = -1;
    const int64_t begin_us = VirtualNow_us();
    EXPECT_EQ(ProbeInterface(link_), LinkResult::success);
    EXPECT_EQ(link_.facts.interfaceType, type) << answer;
    EXPECT_LE(VirtualNow_us() - begin_us, 1'500'000) << answer;
  }
}

TEST_F(ProbeInterfaceTest, OfAStreamEndsAfterThirtySeconds) {
  device_.Say({std::string(1'000, 'x'), 0, 50'000}, VirtualNow_us());
  EXPECT_EQ(ProbeInterface(link_), LinkResult::success);
  EXPECT_GE(VirtualNow_us(), 30'000'000);
  EXPECT_LE(VirtualNow_us(), 30'200'000);
  HangUpLine(test::kScriptedLine);
  EXPECT_EQ(ProbeInterface(link_), LinkResult::portFailed);
}

}  // namespace
}  // namespace tw
