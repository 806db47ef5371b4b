#include "app/run/record_opening.h"
#include "app/run/run_start.h"
#include "app/window/commands.h"
#include "base/shared_value.h"
#include "device/device_link.h"
#include "device/info_line.h"
#include "platform/virtual/virtual_clock.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {
namespace {

class IdentificationTest : public RunControlTest {
 protected:
  // What the program knows of a device after Start, and how it records it.
  struct Known {
    bool operator==(const Known&) const = default;
    std::string settings;
    std::vector<double> beside;
    std::string file;  // its name and its settings line
  };

  static sim::SounderOptions OfFamily(int32_t family) {
    sim::SounderOptions options = QuickSounder();
    options.family = static_cast<sim::DeviceFamily>(family);
    options.identity = "1042";
    return options;
  }

  // Leaves the device's commands in sounder_.
  Known Identify(const sim::SounderOptions& options) {
    ConnectSounder(options);
    StartRun(*state_);
    Run(2);
    EXPECT_TRUE(Ui().boxes.empty());
    const DeviceSettings& settings = state_->settings;
    const DeviceFacts& facts = state_->link->facts;
    Known known{
        .settings = {reinterpret_cast<const char*>(&settings), sizeof settings},
        .beside = {double(globals.deviceFamily), double(globals.dualMode), double(facts.interfaceType),
                   double(facts.firmwareVersion), double(facts.presetCapable), double(facts.currentPreset),
                   double(facts.smoothingSupported), double(facts.highChannelActive),
                   double(globals.measuredLowFrequency_hz), double(globals.measuredHighFrequency_hz)},
        .file = {}};
    StopRun(*state_);
    DetachSerialLines();
    if (RecordFiles().empty()) return known;
    const std::string name = RecordFiles().back();
    known.file = name.substr(15) + " " + Content(name).substr(0, Content(name).find("\r\n"));
    return known;
  }

  static void ExpectSame(const Known& known, const Known& expected) {
    EXPECT_TRUE(known.settings == expected.settings);
    EXPECT_EQ(known.beside, expected.beside);
    EXPECT_EQ(known.file, expected.file);
  }

  // The commands that the device has received, "#time" with any value.
  [[nodiscard]] std::string Commands() const {
    std::string all;
    for (const auto& command : sounder_->Commands().Entries()) {
      all += (command.line.starts_with("#time") ? "#time" : command.line) + "|";
    }
    return all;
  }
};

TEST_F(IdentificationTest, ADeviceOfNoFamilyIsAskedInThreeFormsAndNotForLong) {
  for (const bool answers : {true, false}) {
    sim::SounderOptions options = QuickSounder();
    (answers ? options.faults.refused : options.faults.mute) = {"##maxrangel", "#iden", "#info"};
    ConnectSounder(options);
    ConnectGps();
    StartRun(*state_);
    ExpectErrorBox(L"Unable to read settings form the Echosounder");
    ExpectIdle();
    EXPECT_EQ(Commands(),
              answers ? "##maxrangel|#iden|#info|" : "##maxrangel|##maxrangel|#iden|#iden|#info|");
    EXPECT_EQ(state_->settings.highFrequency_hz, 447'000) << "what was known stays";
    EXPECT_EQ(gpsPeer_->Closed(), 1);
    const int64_t taken_us = VirtualNow_us() - sounder_->Commands().Entries().front().time_us;
    EXPECT_LE(taken_us, 6'300'000 + 8'000'000) << "two seconds a form, and eight more";
    DetachSerialLines();
  }
}

// Old firmware, in the state in which a program finds it that has just begun, and behind another device and a
// played file.
TEST_F(IdentificationTest, NothingOfADeviceOrFileBeforeIsTakenForThisOnes) {
  sim::SounderOptions other = QuickSounder(4, true);
  other.identity = "OTHER";
  other.preset = 7;
  other.firmware_hundredths = 395;
  other.interfaceWord = sim::InterfaceWord::usb;
  other.smoothing = sim::Smoothing::on;
  other.pingsPerSecond = 5;
  other.range_mm = 60'000;
  const struct {
    int32_t family;
    const char* lacksFrom;
    int32_t informationBytes;
  } rows[] = {{1, "##maxrangeh", 38}, {1, "#interval", 38}, {1, "#iden", 38},
              {2, "#auto", 38},       {2, "#sound", 38},    {0, "", 13}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.family) + " " + row.lacksFrom);
    sim::SounderOptions old = OfFamily(row.family);
    old.faults.lacksFrom = row.lacksFrom;
    old.faults.informationBytes = row.informationBytes;

    state_->settings = state_->appliedSettings = StartUpSettings();
    state_->link->facts = {};
    const Known fresh = Identify(old);
    const std::string commands = Commands();
    EXPECT_NE(Identify(other), fresh);
    ApplyInfoLine({1, 123'000, 7'000, 0.5f, 77, 3, 4, 5, 6, 7, 8, 9, 10, 1'400, 4}, FieldChannel::high,
                  state_->settings);
    ExpectSame(Identify(old), fresh);
    EXPECT_EQ(Commands(), commands) << "of the start of the run, too";
  }
}

TEST_F(IdentificationTest, AReplyThatComesLateIsNotTakenForThatOfTheNextQuery) {
  const struct {
    int32_t family;
    const char* keyword;
  } rows[] = {{1, "##maxrangel"}, {1, "#auto"}, {1, "#swversion"}, {1, "#iden"},    {1, "#sound"},
              {1, "#smooth"},     {2, "#iden"}, {2, "#interval"},  {2, "#getfreq"}, {2, "##maxrangel"},
              {0, "##maxrangel"}, {0, "#iden"}, {0, "#info"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::to_string(row.family) + " " + row.keyword);
    sim::SounderOptions options = OfFamily(row.family);
    options.smoothing = sim::Smoothing::on;
    options.preset = 3;
    const Known inTime = Identify(options);
    options.faults.late = row.keyword;
    ExpectSame(Identify(options), inTime);
  }
}

TEST_F(IdentificationTest, EachFamilyHasItsControls) {
  const struct {
    int32_t family;
    bool both;  // frequencies, and so the choice of them
    bool presets;
  } rows[] = {{1, true, true}, {0, false, false}, {2, false, true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.family);
    state_->settings.simultaneous = 1;
    state_->link->facts.smoothingSupported = true;
    StartQuickRun(0, OfFamily(row.family));
    EXPECT_EQ(globals.deviceFamily, row.family);
    EXPECT_EQ(state_->settings.simultaneous, 0);
    EXPECT_EQ(state_->link->facts.smoothingSupported, row.family == 1);
    EXPECT_TRUE(Of(ID_HIGH_FREQUENCY).visible);
    for (const int id : {ID_LOW_FREQUENCY, ID_DUAL_MODE}) EXPECT_EQ(Of(id).visible, row.both) << id;
    for (const int id : {ID_PRESET, ID_PRESET_LABEL}) EXPECT_EQ(Of(id).visible, row.presets) << id;
    StopRun(*state_);
    DetachSerialLines();
  }
}

TEST_F(IdentificationTest, ChannelsThatOlderFirmwareDoesNotTellGoByTheFrequencyInUse) {
  for (const bool low : {false, true}) {
    for (const char* lacksFrom : {"##freql", "##freqh", "##vfreql"}) {
      SCOPED_TRACE(lacksFrom);
      sim::SounderOptions options = QuickSounder();
      options.lowFrequency = low;
      options.faults.lacksFrom = lacksFrom;
      StartQuickRun(2, options);
      EXPECT_EQ(low ? globals.measuredLowFrequency_hz : globals.measuredHighFrequency_hz,
                low ? 200'000 : 450'000);
      OpenRecordFiles(*state_, NamingMoment::recordSwitchedOn);
      Run(2);
      StopRun(*state_);
      DetachSerialLines();
      ASSERT_EQ(RecordFiles().size(), 2u);
      for (const std::string& name : RecordFiles()) {
        EXPECT_NE(name.find(low ? "_200kHz_" : "_450kHz_"), std::string::npos) << name;
        // Each channel has a transmit length of its own.
        const char* const line = low ? "INFO:1,200000,30000,0.0,100," : "INFO:1,450000,30000,0.0,50,";
        EXPECT_TRUE(Content(name).starts_with(line)) << Content(name).substr(0, 40);
        std::filesystem::remove(records_ / name);
      }
    }
  }
}

TEST_F(IdentificationTest, IntervalAndRangesAreFittedToTheDevice) {
  const struct {
    int32_t family, simultaneous, inUse_hz, interval_ms;
    int32_t fitted_ms, marks, dual, upper_mm, lower_mm;
  } rows[] = {
      {1, 0, 450'000, 0, 0, 0, 0, 30'000, 1},      {1, 0, 200'000, 1, 10, 3'000, 0, 50'000, 1},
      {1, 0, 300'000, 9, 10, 3'000, 0, 30'000, 1}, {1, 1, 200'000, 10, 10, 3'000, 1, 30'000, 50'000},
      {2, 0, 200'000, 5, 5, 6'000, 0, 30'000, 1},  {0, 1, 200'000, 11, 11, 2'727, 0, 30'000, 1},
  };
  for (const auto& row : rows) {
    StoreShared(globals.deviceFamily, row.family);
    DeviceSettings& settings = state_->settings;
    settings.simultaneous = row.simultaneous;
    settings.lowFrequency_hz = 200'000;
    settings.frequencyInUse_hz = row.inUse_hz;
    settings.pingInterval_ms = row.interval_ms;
    settings.rangeLow_mm = 50;  // firmware that tells metres
    settings.rangeHigh_mm = 30'000;
    state_->displayRangeLower = 1;
    AdoptDevice(*state_);
    KeepInterval(settings);
    EXPECT_EQ(settings.pingInterval_ms, row.fitted_ms);
    EXPECT_EQ(globals.pingInterval_ms, static_cast<float>(row.fitted_ms));
    EXPECT_EQ(globals.marksAtStart, row.marks) << "in 30 s";
    EXPECT_EQ(globals.dualMode, row.dual);
    EXPECT_EQ(state_->displayRangeUpper, row.upper_mm);
    EXPECT_EQ(state_->displayRangeLower, row.lower_mm);
  }
}

}  // namespace
}  // namespace tw::test
