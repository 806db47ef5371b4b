#include "app/run_control.h"
#include "app/run_steps.h"
#include "app/worker_control.h"
#include "base/shared_value.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {
namespace {

class IdentificationTest : public RunControlTest {};

TEST_F(IdentificationTest, ADeviceThatRefusesEverythingIsAskedInThreeForms) {
  sim::SounderOptions options = QuickSounder();
  options.faults.refused = {"##maxrangel", "#iden", "#info"};
  ConnectSounder(options);
  ConnectGps({});
  ChooseGps();
  StartRun(*state_);
  ExpectBox(L"Unable to read settings form the Echosounder", L"Error", BoxIcon::error);
  ExpectIdle();
  std::string asked;
  for (const auto& command : sounder_->Commands().Entries()) asked += command.line + "|";
  EXPECT_TRUE(asked.ends_with("##maxrangel|#iden|#info|")) << asked;
  EXPECT_EQ(state_->settings.highFrequency_hz, 447'000) << "what was known stays";
  EXPECT_EQ(gpsPeer_->Opened(), 1);
  EXPECT_EQ(gpsPeer_->Closed(), 1);
}

TEST_F(IdentificationTest, EachFamilyHasItsControls) {
  const struct {
    int32_t family;
    bool both;  // frequencies, and so the choice of them
    bool presets;
  } rows[] = {{1, true, true}, {0, false, false}, {2, false, true}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.family);
    sim::SounderOptions options = QuickSounder();
    options.family = static_cast<sim::DeviceFamily>(row.family);
    options.identity = "42";
    ConnectSounder(options);
    state_->settings.simultaneous = 1;
    globals.smoothingSupported = 1;
    StartRun(*state_);
    EXPECT_EQ(globals.deviceFamily, row.family);
    EXPECT_EQ(state_->settings.simultaneous, 0);
    EXPECT_EQ(globals.smoothingSupported, row.family == 1 ? 1 : 0);
    EXPECT_TRUE(Ui().controls[ID_HIGH_FREQUENCY].visible);
    for (const int id : {ID_LOW_FREQUENCY, ID_DUAL_MODE})
      EXPECT_EQ(Ui().controls[id].visible, row.both) << id;
    for (const int id : {ID_PRESET, ID_PRESET_LABEL}) EXPECT_EQ(Ui().controls[id].visible, row.presets) << id;
    StopRun(*state_);
    DetachSerialLines();
  }
}

TEST_F(IdentificationTest, ChannelsThatOlderFirmwareDoesNotNameGoByTheirFrequency) {
  sim::SounderOptions options = QuickSounder();
  options.faults.lacksFrom = "##vfreql";
  ConnectSounder(options);
  StartRun(*state_);
  Run(2);
  EXPECT_EQ(globals.measuredHighFrequency_hz, 450'000);
  EXPECT_EQ(globals.measuredLowFrequency_hz, 200'000);
  ASSERT_EQ(RecordFiles().size(), 1u);
  EXPECT_NE(RecordFiles()[0].find("_450kHz_"), std::string::npos);
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

TEST_F(IdentificationTest, AModeWithoutAWorkerIsReported) {
  // Every accepted mode has a worker, so no run gets here.
  ReportWorkerStart(*state_, WorkerStart::unsupportedOutput);
  ExpectBox(L"Unsupported output", L"Error", BoxIcon::error);
}

}  // namespace
}  // namespace tw::test
