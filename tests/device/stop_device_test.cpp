#include "device/stop_device.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "app/app_state.h"
#include "device/probe_interface.h"
#include "device/serial_ports.h"
#include "platform/clock.h"
#include "platform/host/debug_capture.h"
#include "platform/host/faults.h"
#include "platform/host/virtual_clock.h"
#include "platform/serial_line.h"
#include "simulator/virtual_echosounder.h"
#include "tests/device/line_script.h"
#include "tests/simulator_peer.h"

namespace tw {
namespace {

constexpr wchar_t kLine[] = L"\\\\.\\COM5";

// A device that answers stop keys alone, each in its own way.
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
    StartDebugCapture();
  }
  ~StopDeviceTest() override {
    Disconnect();
    StopDebugCapture();
  }

  void Connect() {
    sounder_ = std::make_unique<sim::VirtualEchosounder>(options_);
    peer_ = std::make_unique<test::SimulatorPeer>(*sounder_);
    AttachPeer(kLine, peer_.get());
    port_ = OpenDevicePort(5, 921'600);
  }

  // The same with a device that streams one byte and then answers each stop key so.
  void ConnectKeyPeer(const std::vector<std::string>& answers) {
    keyPeer_ = KeyPeer();
    keyPeer_.answers = answers;
    AttachPeer(kLine, &keyPeer_);
    port_ = OpenDevicePort(5, 921'600);
    keyPeer_.Say({"x"}, VirtualNow_us());
  }

  void Disconnect() {
    CloseSerialLine(port_);
    DetachSerialLines();
    ClearFaults();
  }

  // Stops the device; returns the milliseconds that it took.
  int64_t Stop(LinkResult expected) {
    const int64_t begin_us = VirtualNow_us();
    EXPECT_EQ(StopDevice(port_), expected);
    return (VirtualNow_us() - begin_us) / 1000;
  }

  [[nodiscard]] size_t StopKeys() const {
    const auto& bytes = sounder_->Bytes().Entries();
    return static_cast<size_t>(std::count_if(bytes.begin(), bytes.end(),
                                             [](const sim::ReceivedByte& each) { return each.byte == ' '; }));
  }

  VirtualClock clock_{1'700'000'000'000};
  sim::SounderOptions options_;
  std::unique_ptr<sim::VirtualEchosounder> sounder_;
  std::unique_ptr<test::SimulatorPeer> peer_;
  KeyPeer keyPeer_;
  Handle port_ = Handle::invalid;
};

TEST_F(StopDeviceTest, TakesItsTimeAndItsKeys) {
  using Faults = sim::SounderFaults;
  const struct {
    const char* what;
    bool streaming;
    Faults faults;
    LinkResult result;
    int64_t shortest_ms, longest_ms;
    size_t keys;
  } rows[] = {
      {"an idle device is only prompted", false, {}, LinkResult::success, 4'000, 4'300, 0},
      {"a streaming device stops at the first key", true, {}, LinkResult::success, 0, 1'300, 1},
      {"a split end mark",
       true,
       {.splitEndMark = true, .splitPause_ms = 300},
       LinkResult::success,
       0,
       1'900,
       1},
      {"one split over two attempts",
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
    Connect();
    const int64_t taken_ms = Stop(row.result);
    EXPECT_GE(taken_ms, row.shortest_ms);
    EXPECT_LE(taken_ms, row.longest_ms);
    EXPECT_EQ(StopKeys(), row.keys);
    EXPECT_FALSE(sounder_->Streaming());
    Disconnect();
  }
}

TEST_F(StopDeviceTest, ADeafDeviceIsGivenUpAfterThirtyAttempts) {
  options_.streaming = true;
  options_.faults.deaf = true;
  Connect();
  const int64_t taken_ms = Stop(LinkResult::stopTimeOut);
  EXPECT_GE(taken_ms, 30'000);
  EXPECT_LE(taken_ms, 34'000);
  EXPECT_EQ(StopKeys(), 30u);
  const std::vector<std::wstring> texts = TakeDebugTexts();
  ASSERT_EQ(texts.size(), 60u);
  EXPECT_EQ(texts[0], L"Stop command timeout\n");
  EXPECT_EQ(texts[1], L"Stop Retry count : 0\n");
  EXPECT_EQ(texts[59], L"Stop Retry count : 29\n");
}

TEST_F(StopDeviceTest, ALineThatCannotBeWrittenIsTriedThirtyTimes) {
  options_.streaming = true;
  Connect();
  InjectFault({.point = FaultPoint::writeLine, .call = 1, .repeat = kEveryCall});
  EXPECT_LE(Stop(LinkResult::portFailed), 5'000);
  const std::vector<std::wstring> texts = TakeDebugTexts();
  ASSERT_EQ(texts.size(), 30u) << "no time-outs, only retries";
  EXPECT_EQ(texts[29], L"Stop Retry count : 29\n");
}

TEST_F(StopDeviceTest, OneFailedAttemptIsMadeUpForByTheNext) {
  for (const FaultPoint point : {FaultPoint::writeLine, FaultPoint::readLine}) {
    options_.streaming = true;
    Connect();
    // The first read finds the stream; the second belongs to the first attempt.
    InjectFault({.point = point, .call = point == FaultPoint::writeLine ? 1u : 2u});
    EXPECT_LE(Stop(LinkResult::success), 2'000);
    EXPECT_EQ(TakeDebugTexts(), std::vector<std::wstring>{L"Stop Retry count : 0\n"});
    Disconnect();
  }
}

TEST_F(StopDeviceTest, ALineThatHangsUpEndsWithoutAPrompt) {
  Connect();
  HangUpLine(kLine);
  EXPECT_LE(Stop(LinkResult::noPrompt), 200);
}

TEST_F(StopDeviceTest, EachAttemptTakesASecondAndNoMore) {
  ConnectKeyPeer({});
  EXPECT_LE(Stop(LinkResult::stopTimeOut), 30 * 1'010 + 10);
  EXPECT_EQ(keyPeer_.keys, 30u);
}

TEST_F(StopDeviceTest, TheEndMarkCountsWithoutAPromptBehindIt) {
  ConnectKeyPeer({"DataEnd"});
  EXPECT_LE(Stop(LinkResult::success), 22'000);
  EXPECT_EQ(keyPeer_.returns, 10u) << "the prompt is asked for, in vain";
}

TEST_F(StopDeviceTest, MarksAmongOtherBytesAndInPieces) {
  const struct {
    std::vector<std::string> answers;
    size_t keys;
  } rows[] = {{{"12 DataDataEnd\r\n"}, 1},
              {{"12\r\n\r\n>"}, 1},
              {{"dataend", "Data end", "\n\r>", "DataEnd"}, 4},
              {{"DataE", "nd"}, 2},
              {{"\r", "\n", ">"}, 3}};
  for (const auto& row : rows) {
    ConnectKeyPeer(row.answers);
    static_cast<void>(Stop(LinkResult::success));
    EXPECT_EQ(keyPeer_.keys, row.keys) << row.answers[0];
    Disconnect();
  }
}

TEST_F(StopDeviceTest, AnEndMarkSplitOverTwoCallsIsRecognised) {
  ConnectKeyPeer({"DataEn"});
  static_cast<void>(Stop(LinkResult::stopTimeOut));
  Disconnect();
  ConnectKeyPeer({"d"});
  EXPECT_LE(Stop(LinkResult::success), 22'000);
  EXPECT_EQ(keyPeer_.keys, 1u);
}

TEST_F(StopDeviceTest, TheProbeFindsTheInterface) {
  const struct {
    sim::InterfaceWord word;
    int32_t type;
  } rows[] = {{sim::InterfaceWord::rs232, 0}, {sim::InterfaceWord::rs485, 1}, {sim::InterfaceWord::usb, 2}};
  for (const auto& row : rows) {
    options_.interfaceWord = row.word;
    Connect();
    globals.interfaceType = -1;
    const int64_t begin_us = VirtualNow_us();
    EXPECT_EQ(ProbeInterface(port_), LinkResult::success);
    EXPECT_EQ(globals.interfaceType, row.type);
    EXPECT_LE(VirtualNow_us() - begin_us, 1'500'000);
    Disconnect();
  }
}

TEST_F(StopDeviceTest, AProbeOfAStreamEndsAfterThirtySeconds) {
  options_.streaming = true;
  options_.sampleCount = 100;
  options_.faults.deaf = true;
  Connect();
  const int64_t begin_us = VirtualNow_us();
  EXPECT_EQ(ProbeInterface(port_), LinkResult::success);
  EXPECT_LE(VirtualNow_us() - begin_us, 30'200'000);
  HangUpLine(kLine);
  EXPECT_EQ(ProbeInterface(port_), LinkResult::portFailed);
}

}  // namespace
}  // namespace tw
