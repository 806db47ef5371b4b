// The readers of the three families against virtual devices of each: every reader takes its own family alone,
// and what is written reads back.
#include <gtest/gtest.h>

#include <memory>

#include "app/app_state.h"
#include "device/serial_ports.h"
#include "device/settings_readers.h"
#include "device/settings_writer.h"
#include "platform/host/virtual_clock.h"
#include "platform/serial_line.h"
#include "simulator/virtual_echosounder.h"
#include "tests/simulator_peer.h"

namespace tw {
namespace {

using sim::DeviceFamily;

class FamiliesTest : public testing::Test {
 protected:
  ~FamiliesTest() override { Disconnect(); }

  void Connect(const sim::SounderOptions& options) {
    Disconnect();
    sounder_ = std::make_unique<sim::VirtualEchosounder>(options);
    peer_ = std::make_unique<test::SimulatorPeer>(*sounder_);
    AttachPeer(L"\\\\.\\COM7", peer_.get());
    globals = Globals{};
    port_ = OpenDevicePort(7, 115'200);
    ASSERT_NE(port_, Handle::invalid);
  }

  void Disconnect() {
    CloseSerialLine(port_);
    port_ = Handle::invalid;
    DetachSerialLines();
  }

  // How many commands the changes took; -1 when one failed or was refused.
  int Write(int32_t family, const DeviceSettings& wanted, const DeviceSettings& applied) {
    const size_t before = sounder_->Commands().Entries().size();
    if (WriteChangedSettings(port_, family, wanted, applied) != LinkResult::success) return -1;
    const auto& commands = sounder_->Commands().Entries();
    for (size_t i = before; i < commands.size(); ++i) {
      if (commands[i].refused) return -1;
    }
    return static_cast<int>(commands.size() - before);
  }

  VirtualClock clock_{1'741'944'605'000};
  std::unique_ptr<sim::VirtualEchosounder> sounder_;
  std::unique_ptr<test::SimulatorPeer> peer_;
  Handle port_ = Handle::invalid;
};

// What both one-channel families keep and tell.
void ChangeOneChannel(DeviceSettings& s) {
  s.outputMode = 10;
  s.pingInterval_ms = 250;
  s.rangeHigh_mm = 123'456;
  s.thresholdHigh_percent = 55;
  s.offsetHigh_mm = -250;
  s.deadZoneHigh_mm = 32'767;
  s.txLengthHigh = 321;
  s.gainHigh = -12.5f;
  s.soundSpeed_mps = 1487.0f;
}

TEST_F(FamiliesTest, EachReaderTakesItsOwnFamilyAlone) {
  using Reader = LinkResult (*)(Handle, DeviceSettings&);
  const struct {
    DeviceFamily family;
    Reader reader;
  } rows[] = {{DeviceFamily::first, ReadAllSettings},
              {DeviceFamily::second, ReadSecondFamilySettings},
              {DeviceFamily::third, ReadSettingsFromB64Info}};
  for (const auto& device : rows) {
    Connect({.family = device.family});
    for (const auto& reader : rows) {
      DeviceSettings settings{};
      EXPECT_EQ(reader.reader(port_, settings) == LinkResult::success, reader.family == device.family)
          << static_cast<int>(device.family) << " read as " << static_cast<int>(reader.family);
    }
  }
}

TEST_F(FamiliesTest, SecondFamilyReadsBackWhatWasWritten) {
  Connect({.family = DeviceFamily::second, .identity = "1042"});
  DeviceSettings applied{};
  ASSERT_EQ(ReadSecondFamilySettings(port_, applied), LinkResult::success);
  EXPECT_EQ(applied.identifierWord, 1042);
  EXPECT_EQ(applied.frequencyInUse_hz, 450'000);
  DeviceSettings wanted = applied;
  ChangeOneChannel(wanted);
  wanted.tvgMode = 3;
  wanted.tvgSpreadingHigh = 22.5f;
  wanted.tvgAbsorptionHigh = 0.125f;
  wanted.medianFilter = 31;
  wanted.movingAverageFilter = 30;
  wanted.preset = 3;
  EXPECT_EQ(Write(2, wanted, applied), 15);
  DeviceSettings read{};
  ASSERT_EQ(ReadSecondFamilySettings(port_, read), LinkResult::success);
  EXPECT_EQ(Write(2, wanted, read), 0) << "nothing differs any more";
  EXPECT_EQ(read.pingInterval_ms, 250);
  EXPECT_EQ(read.preset, 3);

  wanted.preset = kAutomaticPreset;
  EXPECT_EQ(Write(2, wanted, read), 1);
  ASSERT_EQ(ReadSecondFamilySettings(port_, read), LinkResult::success);
  EXPECT_EQ(read.preset, kAutomaticPreset);
}

TEST_F(FamiliesTest, ThirdFamilyReadsBackWhatWasWritten) {
  Connect({.family = DeviceFamily::third, .identity = "1042"});
  DeviceSettings applied{};
  ASSERT_EQ(ReadSettingsFromB64Info(port_, applied), LinkResult::success);
  EXPECT_EQ(applied.identifierWord, 1042);
  EXPECT_EQ(applied.frequencyInUse_hz, 450'000);
  EXPECT_EQ(applied.virtualHighFrequency_hz, 450'000);
  DeviceSettings wanted = applied;
  ChangeOneChannel(wanted);
  EXPECT_EQ(Write(0, wanted, applied), 9);
  DeviceSettings read = applied;
  ASSERT_EQ(ReadSettingsFromB64Info(port_, read), LinkResult::success);
  EXPECT_EQ(Write(0, wanted, read), 0) << "nothing differs any more";
  EXPECT_EQ(read.gainHigh, -12.5f);
}

TEST_F(FamiliesTest, ABlockThatIsTooLongIsFatal) {
  static int deaths = 0;
  const auto original = fatalError;
  fatalError = [](const char*) { ++deaths; };
  for (const int32_t bytes : {189, 190}) {
    Connect({.family = DeviceFamily::third, .faults = {.informationBytes = bytes}});
    DeviceSettings settings{};
    EXPECT_EQ(ReadSettingsFromB64Info(port_, settings) == LinkResult::success, bytes == 189);
    EXPECT_EQ(deaths, bytes == 189 ? 0 : 1);
  }
  fatalError = original;
}

}  // namespace
}  // namespace tw
