// What the operator sees and has set stays as it should while a run is interrupted, recorded and resumed.
#include "app/run/record_opening.h"
#include "display/panel.h"
#include "display/zoom.h"
#include "platform/virtual/faults.h"
#include "tests/app/run/playback_fixture.h"

namespace tw::test {
namespace {

class Running : public RunControlTest {
 protected:
  // Lets the program run with the timers of its lamps.
  void RunLamps(int seconds) {
    for (int i = 0; i < seconds; ++i) {
      Run(1);
      HandleTimer(*state_, ID_TIMER_REPAINT);
    }
  }
  [[nodiscard]] static std::wstring RecordingLamp() { return Ui().lamps[ID_RECORDING_LAMP].text; }

  // What the status bar tells of the recording, once it has been told again.
  [[nodiscard]] std::wstring ReportedSize() {
    Run(2);
    return Ui().posts[3].empty() ? L"" : Ui().posts[3].back();
  }
};

TEST_F(Running, ApplyLeavesTheZoomUnlessTheRangeIsAnother) {
  StartQuickRun();  // with 30 m
  EXPECT_EQ(state_->displayRangeUpper, 30'000);
  state_->displayRangeUpper = 5'000;
  state_->settings.gainHigh = 3.0f;
  ApplySettings(*state_);
  EXPECT_EQ(state_->displayRangeUpper, 5'000) << "the range is the same";
  state_->settings.rangeHigh_mm = 50'000;
  ApplySettings(*state_);
  EXPECT_EQ(state_->displayRangeUpper, 50'000);

  state_->displayRangeUpper = 5'000;
  state_->displayRangeLower = 1'000;
  Of(ID_DUAL_MODE).checked = true;
  ApplySettings(*state_);
  EXPECT_EQ(state_->displayRangeUpper, 5'000);
  EXPECT_EQ(state_->displayRangeLower, 30'000) << "a panel that has just appeared shows all";
  state_->displayRangeLower = 2'000;
  ApplySettings(*state_);
  EXPECT_EQ(state_->displayRangeLower, 2'000);
}

// kept: 5 is an older code of DESO-25, for which Start takes 6.
TEST_F(Running, AnOlderCodeOfDesoSharesAFileAsDesoDoes) {
  globals.deviceFamily = 1;
  globals.dualMode = 1;
  state_->settings.outputMode = 5;
  const struct {
    NamingMoment moment;
    int32_t mode;
    const char* end;
  } rows[] = {{NamingMoment::recordSwitchedOn, 5, "_Dual_0kHz_0kHz_id__nmea.log"},
              {NamingMoment::start, 6, "_Dual_0kHz_0kHz_id__deso_M.log"}};
  for (const auto& row : rows) {
    OpenRecordFiles(*state_, row.moment);
    EXPECT_EQ(state_->settings.outputMode, row.mode);
    EXPECT_TRUE(RecordFiles()[0].ends_with(row.end)) << RecordFiles()[0];
  }
  EXPECT_EQ(RecordFiles().size(), 2u);
  CloseRecordFiles(*state_);
}

TEST_F(Running, SettingsThatAreOnlyChosenStandInNoFile) {
  StartQuickRun(2);
  SetRecording(false);
  DeviceSettings& chosen = state_->settings;
  chosen.pingInterval_ms = 700;
  chosen.rangeHigh_mm = chosen.deadZoneHigh_mm = 20'000;
  chosen.txLengthHigh = chosen.thresholdHigh_percent = chosen.attenuationHigh = chosen.offsetHigh_mm = 33;
  chosen.gainHigh = chosen.tvgSpreadingHigh = chosen.tvgAbsorptionHigh = chosen.txPower = 7.0f;
  chosen.soundSpeed_mps = 1'480.0f;
  chosen.frequencyInUse_hz = 200'000;
  for (const int32_t mode : {4, 8}) {  // the second has one file of both channels
    chosen.outputMode = mode;
    chosen.simultaneous = mode == 8 ? 1 : 0;
    SleepMilliseconds(1'000);  // the time in the name is another one
    SetRecording(true);
    Run(2);
    SetRecording(false);
  }
  ASSERT_EQ(RecordFiles().size(), 3u);
  const auto lineOf = [&](size_t file) {
    const std::string content = Content(RecordFiles()[file]);
    EXPECT_EQ(content.find("INFO:", 1), std::string::npos) << "one channel, one settings line";
    return content.substr(0, content.find("\r\n"));
  };
  for (const size_t file : {1u, 2u}) {
    EXPECT_EQ(lineOf(file), lineOf(0));
    EXPECT_TRUE(RecordFiles()[file].ends_with("_450kHz_id_VIRTUAL-0001_txt10.log")) << RecordFiles()[file];
  }
}

TEST_F(Running, TheReportedSizeIsThatOfThePresentRecording) {
  StartQuickRun(20);
  SetRecording(false);
  SetRecording(true);
  const std::wstring told = ReportedSize();
  ASSERT_EQ(RecordFiles().size(), 2u);
  const size_t first = Content(RecordFiles()[0]).size();
  const size_t second = Content(RecordFiles()[1]).size();
  ASSERT_GT(first, 4 * second);
  const std::wstring before = L"File size: ";
  ASSERT_TRUE(told.starts_with(before) && told.ends_with(L"KB"));
  EXPECT_LE(std::stoul(told.substr(before.size())), second / 1024);
}

// The status bar's position text may be the size of a conversion, its ping text that of a file.
TEST_F(Running, AFullDiskLeavesNoEmptyFileOfABinaryRun) {
  const struct {
    int32_t outputMode;
    size_t left;
  } rows[] = {{100, 0}, {4, 1}};
  for (const auto& row : rows) {
    LimitDiskSpace(0);
    StartQuickRun(0, QuickSounder(row.outputMode));
    SetRecording(false);
    EXPECT_EQ(RecordFiles().size(), row.left) << row.outputMode;
    StopRun(*state_);
    ClearFaults();
    SetRecording(true);
    DetachSerialLines();
  }
}

// Today's silence of the program stays: no box.
TEST_F(Running, AFullDiskIsToldAndRecordingGoesOnOnceThereIsRoomIfThatIsWanted) {
  state_->options.beepWhenEnded = 1;
  LimitDiskSpace(40'000);
  StartQuickRun();
  RunLamps(2);
  EXPECT_TRUE(RecordingLamp().starts_with(L"REC 00:00:0")) << RecordingLamp().size();
  RunLamps(30);
  EXPECT_EQ(RecordingLamp(), L"NOT RECORDING: disk full");
  EXPECT_EQ(Ui().status[4], L"Ended: disk full");
  EXPECT_EQ(Ui().statusAlarm, L"Ended: disk full");
  EXPECT_EQ(Ui().beeps, 1);
  LimitDiskSpace(1'000'000'000);
  RunLamps(30);
  EXPECT_EQ(RecordFiles().size(), 1u) << "the option is off";
  state_->options.recordAgain = 1;
  RunLamps(12);
  ASSERT_EQ(RecordFiles().size(), 2u);
  EXPECT_TRUE(RecordingLamp().starts_with(L"REC 00:00:")) << RecordingLamp().size();
  RunLamps(20);
  EXPECT_GT(Content(RecordFiles()[1]).size(), 10'000u);
  EXPECT_TRUE(Ui().status[4].starts_with(L"Disk: ")) << "a gigabyte";
  EXPECT_TRUE(Ui().boxes.empty());
}

TEST_F(Running, AFolderThatCannotBeMadeIsTold) {
  std::filesystem::remove_all(records_);
  WriteWhole(records_, "a file");
  StartQuickRun();
  RunLamps(2);
  EXPECT_EQ(RecordingLamp(), L"NOT RECORDING: folder missing");
  EXPECT_GT(state_->ringIndexA, 0) << "the run goes on";
  EXPECT_TRUE(Ui().boxes.empty());
  std::filesystem::remove(records_);
}

TEST_F(Running, ARunWithoutPingsIsToldAfterThreeSecondsAndThreeIntervals) {
  state_->options.noDataOverEchogram = 0;
  StartQuickRun();
  RunLamps(3);
  EXPECT_EQ(state_->noData_s, 0u);
  SilenceLine(kDeviceLine);
  RunLamps(6);
  EXPECT_GE(state_->noData_s, 4u);
  EXPECT_EQ(Ui().lamps[ID_RECORDING_LAMP].second, L"NO DATA " + std::to_wstring(state_->noData_s) + L" s");
  StoreShared(globals.pingInterval_ms, 3'000.0f);
  RunLamps(1);
  EXPECT_EQ(state_->noData_s, 0u) << "three intervals";
  StopRun(*state_);
  StoreShared(globals.pingInterval_ms, 0.0f);
  RunLamps(20);
  EXPECT_EQ(state_->noData_s, 0u) << "no run goes on";
}

TEST_F(Running, ASilentReceiverIsToldInPlaceOfItsPortUntilItSpeaks) {
  ConnectGps();
  StartQuickRun();
  RunLamps(3);
  const std::wstring port = Ui().status[1];
  EXPECT_TRUE(port.starts_with(L"GPS: COM6,"));
  EXPECT_EQ(Ui().lamps[ID_RECEIVER_LAMP].colour, LampColour::green);
  SilenceLine(kGpsLine);
  RunLamps(9);
  EXPECT_TRUE(std::wstring(Ui().lamps[ID_RECEIVER_LAMP].text).starts_with(L"silent "));
  EXPECT_EQ(Ui().status[1], port) << "the option is off";
  state_->options.keepRunGoing = 1;
  RunLamps(1);
  EXPECT_TRUE(Ui().status[1].starts_with(L"silent ")) << Ui().status[1].size();
  EXPECT_EQ(Ui().lamps[ID_RECEIVER_LAMP].text, Ui().status[1]);
  RestoreLine(kGpsLine);
  RunLamps(3);
  EXPECT_EQ(Ui().status[1], port);
  SilenceLine(kGpsLine);
  RunLamps(9);
  StopRun(*state_);
  RunLamps(1);
  EXPECT_EQ(Ui().status[1], L"GPS: Disconnected");
}

TEST_F(Running, StartAndASpeedChangeTakeBackWhatAFileToldInTheStatusBar) {
  PostStatusText(*state_, StatusPart::position, L"File size: 3600Bytes");
  PostStatusText(*state_, StatusPart::pingLine, L"File size: 281655Bytes");
  StartQuickRun();
  EXPECT_EQ(Ui().posts[2].back(), L"");
  EXPECT_EQ(Ui().posts[3].back(), L"");
  Run(3);
  EXPECT_NE(Ui().posts[3].back(), L"");
  ChangeSpeed(*state_, 4'800);
  EXPECT_EQ(Ui().posts[3].back(), L"");
}

// Wheel and threshold line go by the file, not by what the program had for the low frequency before.
TEST_F(Playback, AFileOfTheLowFrequencyIsShownByItsOwnValues) {
  sim::SounderOptions options = QuickSounder();
  options.lowFrequency = true;
  Record(options, 5);
  state_->settings.rangeLow_mm = 10'000;
  state_->settings.thresholdLow_percent = 77;
  Play(files_);
  EXPECT_TRUE(Of(ID_LOW_FREQUENCY).checked);
  EXPECT_FALSE(Of(ID_HIGH_FREQUENCY).checked);
  EXPECT_EQ(DeviceRangeOf(state_->settings, PanelPlace::single), 30'000);
  EXPECT_EQ(DescribePanel(*state_, PanelPlace::single).threshold_percent, 10) << "as the device told it";
  const int32_t zoomed = ZoomedRange(state_->displayRangeUpper, 30'000, WheelTurn::forward);
  EXPECT_EQ(ZoomedRange(zoomed, DeviceRangeOf(state_->settings, PanelPlace::single), WheelTurn::back),
            30'000);
}

TEST_F(Playback, ThePairOfADualRunTicksDualMode) {
  Record(QuickSounder(2, true), 5);
  state_->settings.simultaneous = 0;  // as a device of one frequency has left it
  Play(files_);
  EXPECT_TRUE(Of(ID_DUAL_MODE).checked);
  EXPECT_FALSE(Of(ID_HIGH_FREQUENCY).checked);
}

TEST_F(Running, ClosingIsAskedWhileItRecordsAndNotTwice) {
  const Box question{L"The recording goes on. Close the program?", L"Info", BoxIcon::none,
                     BoxButtons::okCancel};
  state_->options.askBeforeClosing = 1;
  EXPECT_TRUE(MayClose(*state_)) << "nothing is recorded";
  StartQuickRun(1);
  static AppState* asked = nullptr;
  asked = state_;
  Ui().duringBox = [] { EXPECT_FALSE(MayClose(*asked)); };
  for (const bool answer : {false, true}) {
    Ui().answerOk = answer;
    EXPECT_EQ(MayClose(*state_), answer);
    EXPECT_EQ(std::exchange(Ui().boxes, {}), std::vector<Box>{question});
  }
  Ui().duringBox = nullptr;
  SetRecording(false);
  EXPECT_TRUE(MayClose(*state_));
  SetRecording(true);
  state_->options.askBeforeClosing = 0;
  EXPECT_TRUE(MayClose(*state_));
  EXPECT_TRUE(Ui().boxes.empty());
}

}  // namespace
}  // namespace tw::test
