// The whole dialogue with the virtual echosounder: stop, read, start, and stop again; and which reader takes
// which family.
#include <gtest/gtest.h>

#include <memory>

#include "app/app_state.h"
#include "device/serial_ports.h"
#include "device/settings_readers.h"
#include "device/start_sequence.h"
#include "device/stop_device.h"
#include "platform/clock.h"
#include "platform/host/virtual_clock.h"
#include "platform/serial_line.h"
#include "simulator/virtual_echosounder.h"
#include "tests/device/first_family_queries.h"
#include "tests/simulator_peer.h"

namespace tw {
namespace {

// What the device holds, as the record gives it.
double HeldBy(const sim::VirtualEchosounder& sounder, const test::Query& query) {
  const auto thousandths = static_cast<double>(sounder.Settings().Thousandths(query.setting));
  const bool milliseconds = query.setting == sim::Setting::interval;  // of seconds
  return milliseconds ? thousandths : thousandths / 1000.0;
}

void ExpectHeld(const sim::VirtualEchosounder& sounder, const DeviceSettings& settings) {
  for (const test::Query& query : test::kQueries) {
    if (query.field.whole == nullptr && query.field.real == nullptr) continue;
    EXPECT_NEAR(query.field.Get(settings), HeldBy(sounder, query), 1e-4) << query.keyword;
  }
}

class DialogueTest : public testing::Test {
 protected:
  ~DialogueTest() override {
    CloseSerialLine(state_->devicePort);
    DetachSerialLines();
  }

  void Connect(const sim::SounderOptions& options) {
    sounder_ = std::make_unique<sim::VirtualEchosounder>(options);
    peer_ = std::make_unique<test::SimulatorPeer>(*sounder_);
    AttachPeer(L"\\\\.\\COM7", peer_.get());
    globals = Globals{};
    globals.deviceFamily = 1;
    state_->devicePort = OpenDevicePort(7, 115'200);
    ASSERT_NE(state_->devicePort, Handle::invalid);
  }

  // As a run begins: the device may be streaming.
  void ReadAndStart() {
    const Handle port = state_->devicePort;
    ASSERT_EQ(StopDevice(port), LinkResult::success);
    EXPECT_FALSE(sounder_->Streaming());
    // A device that streamed prints two prompts: its stream's, and the one that it was asked for.
    static_cast<void>(SkipReply(port));
    ASSERT_EQ(ReadAllSettings(port, state_->settings), LinkResult::success);
    ExpectHeld(*sounder_, state_->settings);
    StartDevice(*state_);
    SleepMilliseconds(500);
    uint8_t byte = 0;
    uint32_t got = 0;
    EXPECT_TRUE(ReadSerialLine(port, &byte, 1, got));
    EXPECT_TRUE(sounder_->Streaming());
  }

  VirtualClock clock_{1'741'944'605'000};
  std::unique_ptr<AppState> state_ = std::make_unique<AppState>();
  std::unique_ptr<sim::VirtualEchosounder> sounder_;
  std::unique_ptr<test::SimulatorPeer> peer_;
};

TEST_F(DialogueTest, FromThePromptAndFromTheStream) {
  sim::SounderOptions options;
  options.identity = "KT-1042 (rev. B)";
  options.sampleCount = 200;
  options.outputMode = 4;
  options.range_mm = 40'000;
  options.pingsPerSecond = 4;
  Connect(options);
  ReadAndStart();
  EXPECT_STREQ(state_->settings.identity, "KT-1042 (rev. B)");
  EXPECT_EQ(state_->settings.rangeLow_mm, 40'000);
  EXPECT_EQ(state_->settings.pingInterval_ms, 250);
  EXPECT_EQ(state_->settings.outputMode, 4);

  globals.dualMode = 1;
  ReadAndStart();
  for (const sim::ReceivedCommand& command : sounder_->Commands().Entries()) {
    EXPECT_FALSE(command.refused) << command.line;
  }
}

TEST_F(DialogueTest, WithAPromptThatComesInPieces) {
  for (const sim::PromptStyle style : {sim::PromptStyle::split, sim::PromptStyle::doubledReturn}) {
    sim::SounderOptions options;
    options.streaming = true;
    options.sampleCount = 200;
    options.faults.prompt = style;
    options.faults.splitPause_ms = 150;
    Connect(options);
    ReadAndStart();
    CloseSerialLine(state_->devicePort);
    DetachSerialLines();
  }
}

TEST_F(DialogueTest, ASlowDeviceIsReadOneThatIsTooSlowIsNot) {
  sim::SounderOptions options;
  options.faults.replyDelay_ms = 1'900;
  Connect(options);
  ReadAndStart();
  CloseSerialLine(state_->devicePort);
  DetachSerialLines();

  options.faults.replyDelay_ms = 2'100;
  Connect(options);
  EXPECT_EQ(ReadAllSettings(state_->devicePort, state_->settings), LinkResult::invalid);
}

TEST_F(DialogueTest, EachReaderTakesItsOwnFamilyAlone) {
  using sim::DeviceFamily;
  const struct {
    DeviceFamily family;
    LinkResult (*reader)(Handle, DeviceSettings&);
  } rows[] = {{DeviceFamily::first, ReadAllSettings},
              {DeviceFamily::second, ReadSecondFamilySettings},
              {DeviceFamily::third, ReadSettingsFromB64Info}};
  for (const auto& device : rows) {
    const bool first = device.family == DeviceFamily::first;
    Connect({.family = device.family, .identity = first ? "KT-1042" : "1042"});
    for (const auto& reader : rows) {
      DeviceSettings settings{};
      const bool own = reader.family == device.family;
      EXPECT_EQ(reader.reader(state_->devicePort, settings) == LinkResult::success, own)
          << static_cast<int>(device.family) << " read as " << static_cast<int>(reader.family);
      EXPECT_EQ(settings.virtualHighFrequency_hz, own ? 450'000 : 0);
      EXPECT_EQ(settings.identifierWord, own && !first ? 1042 : 0);
    }
    CloseSerialLine(state_->devicePort);
    DetachSerialLines();
  }
}

}  // namespace
}  // namespace tw
