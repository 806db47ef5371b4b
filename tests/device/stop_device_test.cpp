#include "device/stop_device.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "app/app_state.h"
#include "device/probe_interface.h"
#include "platform/host/debug_capture.h"
#include "simulator/virtual_echosounder.h"
#include "tests/device/line_script.h"
#include "tests/simulator_peer.h"

namespace tw {
namespace {

using Texts = std::vector<std::wstring>;

// A device that streams one byte, and then answers stop keys alone, each in its own way.
class KeyPeer : public test::LineScript {
 public:
  std::vector<std::string> answers;
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
  StopDeviceTest() {
    options_.baud = 921'600;
    options_.sampleCount = 200;
    options_.streaming = true;
    StartDebugCapture();
  }
  ~StopDeviceTest() override {
    Disconnect();
    StopDebugCapture();
  }

  void Disconnect() {
    CloseSerialLine(port_);
    DetachSerialLines();
    ClearFaults();
  }
  void Connect(SerialPeer& peer) {
    AttachPeer(test::kScriptedLine, &peer);
    port_ = OpenDevicePort(5, 921'600);
  }
  void ConnectSounder() {
    Disconnect();
    sounder_ = std::make_unique<sim::VirtualEchosounder>(options_);
    peer_ = std::make_unique<test::SimulatorPeer>(*sounder_);
    Connect(*peer_);
  }
  void ConnectKeyPeer(const std::vector<std::string>& answers) {
    Disconnect();
    keyPeer_ = KeyPeer();
    keyPeer_.answers = answers;
    Connect(keyPeer_);
    keyPeer_.Say({"x"}, VirtualNow_us());
  }

  // Stops the device; returns the milliseconds that it took.
  int64_t Stop(LinkResult expected) {
    const int64_t begin_us = VirtualNow_us();
    EXPECT_EQ(StopDevice(port_), expected);
    return (VirtualNow_us() - begin_us) / 1000;
  }

  VirtualClock clock_{1'700'000'000'000};
  sim::SounderOptions options_;
  std::unique_ptr<sim::VirtualEchosounder> sounder_;
  std::unique_ptr<test::SimulatorPeer> peer_;
  KeyPeer keyPeer_;
  Handle port_ = Handle::invalid;
};

TEST_F(StopDeviceTest, TakesItsTimeAndItsKeys) {
  const struct {
    const char* what;
    bool streaming;
    sim::SounderFaults faults;
    LinkResult result;
    int64_t shortest_ms, longest_ms;
    size_t keys;
  } rows[] = {
      {"an idle device is only prompted", false, {}, LinkResult::success, 4'000, 4'300, 0},
      {"a streaming device stops at the first key", true, {}, LinkResult::success, 0, 1'300, 1},
      {"an end mark split over two attempts",
       true,
       {.splitEndMark = true, .splitPause_ms = 1'500},
       LinkResult::success,
       0,
       4'500,
       2},
      {"a dead line has no prompt",
       false,
       {.instrument = {.dead = true}},
       LinkResult::noPrompt,
       24'000,
       26'500,
       0},
      {"noise is no prompt", false, {.chatter = true}, LinkResult::stopTimeOut, 30'000, 34'000, 30},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    options_.streaming = row.streaming;
    options_.faults = row.faults;
    ConnectSounder();
    const int64_t taken_ms = Stop(row.result);
    EXPECT_GE(taken_ms, row.shortest_ms);
    EXPECT_LE(taken_ms, row.longest_ms);
    size_t keys = 0;
    for (const sim::ReceivedByte& each : sounder_->Bytes().Entries()) keys += each.byte == ' ' ? 1 : 0;
    EXPECT_EQ(keys, row.keys);
    EXPECT_FALSE(sounder_->Streaming());
  }
}

TEST_F(StopDeviceTest, ADeafDeviceIsGivenUpAfterThirtyAttemptsOfASecond) {
  ConnectKeyPeer({});
  EXPECT_LE(Stop(LinkResult::stopTimeOut), 30 * 1'010 + 10);
  EXPECT_EQ(keyPeer_.keys, 30u);
  const Texts texts = TakeDebugTexts();
  ASSERT_EQ(texts.size(), 60u);
  EXPECT_EQ(texts[0], L"Stop command timeout\n");
  EXPECT_EQ(texts[1], L"Stop Retry count : 0\n");
  EXPECT_EQ(texts[59], L"Stop Retry count : 29\n");
}

TEST_F(StopDeviceTest, ALineThatCannotBeWrittenIsTriedThirtyTimes) {
  ConnectSounder();
  InjectFault({.point = FaultPoint::writeLine, .call = 1, .repeat = kEveryCall});
  EXPECT_LE(Stop(LinkResult::portFailed), 5'000);
  const Texts texts = TakeDebugTexts();
  ASSERT_EQ(texts.size(), 30u) << "no time-outs, only retries";
  EXPECT_EQ(texts[29], L"Stop Retry count : 29\n");
}

TEST_F(StopDeviceTest, OneFailedAttemptIsMadeUpForByTheNext) {
  // The first read finds the stream; the second belongs to the first attempt.
  for (const auto& [point, call] : {std::pair{FaultPoint::writeLine, 1u}, {FaultPoint::readLine, 2u}}) {
    ConnectSounder();
    InjectFault({.point = point, .call = call});
    EXPECT_LE(Stop(LinkResult::success), 2'000) << call;
    EXPECT_EQ(TakeDebugTexts(), Texts{L"Stop Retry count : 0\n"}) << call;
  }
}

TEST_F(StopDeviceTest, ALineThatHangsUpEndsWithoutAPrompt) {
  ConnectSounder();
  HangUpLine(test::kScriptedLine);
  EXPECT_LE(Stop(LinkResult::noPrompt), 200);
}

TEST_F(StopDeviceTest, MarksAmongOtherBytesAndInPieces) {
  const struct {
    const char* what;
    std::vector<std::string> answers;
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
    ConnectKeyPeer(row.answers);
    EXPECT_LE(Stop(row.result), 32'000) << row.what;
    EXPECT_EQ(keyPeer_.keys, row.keys) << row.what;
    if (row.result == LinkResult::success) {
      EXPECT_EQ(keyPeer_.returns, 10u) << row.what << ": a prompt is asked for behind it, in vain";
    }
  }
}

TEST_F(StopDeviceTest, TheProbeFindsTheInterface) {
  const std::pair<sim::InterfaceWord, int32_t> rows[] = {
      {sim::InterfaceWord::rs232, 0}, {sim::InterfaceWord::rs485, 1}, {sim::InterfaceWord::usb, 2}};
  options_.streaming = false;
  for (const auto& [word, type] : rows) {
    options_.interfaceWord = word;
    ConnectSounder();
    globals.interfaceType = -1;
    const int64_t begin_us = VirtualNow_us();
    EXPECT_EQ(ProbeInterface(port_), LinkResult::success);
    EXPECT_EQ(globals.interfaceType, type);
    EXPECT_LE(VirtualNow_us() - begin_us, 1'500'000) << type;
  }
}

TEST_F(StopDeviceTest, AProbeOfAStreamEndsAfterThirtySeconds) {
  options_.faults.deaf = true;
  ConnectSounder();
  const int64_t begin_us = VirtualNow_us();
  EXPECT_EQ(ProbeInterface(port_), LinkResult::success);
  EXPECT_LE(VirtualNow_us() - begin_us, 30'200'000);
  HangUpLine(test::kScriptedLine);
  EXPECT_EQ(ProbeInterface(port_), LinkResult::portFailed);
}

}  // namespace
}  // namespace tw
