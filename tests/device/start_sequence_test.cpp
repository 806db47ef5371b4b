#include "device/start_sequence.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "device/serial_ports.h"
#include "platform/clock.h"
#include "platform/host/virtual_clock.h"
#include "platform/serial_line.h"
#include "simulator/virtual_echosounder.h"
#include "tests/simulator_peer.h"

namespace tw {
namespace {

class StartSequenceTest : public testing::Test {
 protected:
  StartSequenceTest() {
    AttachPeer(L"\\\\.\\COM5", &peer_);
    globals = Globals{};
    globals.deviceFamily = 1;
    state_->devicePort = OpenDevicePort(5, 115'200);
    state_->settings.outputMode = 4;
    state_->settings.rangeLow_mm = 10'000;
    state_->settings.rangeHigh_mm = 30'000;
  }
  ~StartSequenceTest() override {
    CloseSerialLine(state_->devicePort);
    DetachSerialLines();
  }

  std::vector<std::string> Start() {
    StartDevice(*state_);
    SleepMilliseconds(100);
    uint8_t bytes[64];
    static_cast<void>(sounder_.Send(bytes, VirtualNow_us()));
    std::vector<std::string> lines;
    for (const sim::ReceivedCommand& command : sounder_.Commands().Entries()) lines.push_back(command.line);
    return lines;
  }

  VirtualClock clock_{1'741'944'605'000};
  sim::VirtualEchosounder sounder_{{}};
  test::SimulatorPeer peer_{sounder_};
  std::unique_ptr<AppState> state_ = std::make_unique<AppState>();
};

TEST_F(StartSequenceTest, Single) {
  EXPECT_EQ(Start(),
            (std::vector<std::string>{"#time 1741944605", "#tvgmode 1", "#pingonce 0", "#nmeadpzero 1",
                                      "#nmeadbt 1", "#nmeadpt 0", "#nmeamtw 1", "#nmeaema 1", "#nmeazda 1",
                                      "#nmeaxdr 1", "#output 4", "#go"}));
  EXPECT_TRUE(sounder_.Streaming());
  EXPECT_EQ(state_->settings.tvgMode, 1);
  EXPECT_EQ(state_->appliedSettings.outputMode, 4);
}

TEST_F(StartSequenceTest, DualSendsTheHighRangeForBoth) {
  globals.dualMode = 1;
  EXPECT_EQ(Start(), (std::vector<std::string>{"#time 1741944605", "#nmeadpt 1", "#nmeaema 1", "#output 4",
                                               "#range 30000", "#go"}));
  for (const DeviceSettings& held : {state_->settings, state_->appliedSettings}) {
    EXPECT_EQ(held.rangeLow_mm, 30'000);
    EXPECT_EQ(held.rangeHigh_mm, 30'000);
    EXPECT_EQ(held.outputMode, 4);
  }
}

TEST_F(StartSequenceTest, APresetInForceDecidesTheOutput) {
  globals.presetCapable = 1;
  globals.currentPreset = 3;
  for (const std::string& line : Start()) EXPECT_FALSE(line.starts_with("#output")) << line;
}

TEST_F(StartSequenceTest, PresetTwoHundredFiftyFiveIsNone) {
  globals.presetCapable = 1;
  globals.currentPreset = kNoPreset;
  const std::vector<std::string> lines = Start();
  EXPECT_EQ(lines[lines.size() - 2], "#output 4");
}

TEST_F(StartSequenceTest, AnUnknownModeIsReplaced) {
  state_->settings.outputMode = 42;
  const std::vector<std::string> lines = Start();
  EXPECT_EQ(lines[lines.size() - 2], "#output 3");
  EXPECT_EQ(state_->settings.outputMode, 3);
}

}  // namespace
}  // namespace tw
