#include <algorithm>
#include <cerrno>

#include "app/settings/control_states.h"
#include "app/window/commands.h"
#include "app/window/view_choices.h"
#include "base/shared_value.h"
#include "platform/virtual/faults.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {
namespace {

class Apply : public RunControlTest {};

TEST_F(Apply, WithoutADeviceItOnlySaysSo) {
  const auto faster = [](AppState& state) { ChangeSpeed(state, 9'600); };
  for (void (*command)(AppState&) : {+ApplySettings, +RestoreDefaults, +faster}) {
    command(*state_);
    ExpectErrorBox(L"Echosounder is not connected");
  }
  ExpectIdle();
}

TEST_F(Apply, AChangedOutputIsSentASecondLater) {
  StartQuickRun(2);
  Ui().Choose(ID_OUTPUT, L"Echo Txt 12bit");
  state_->settings.outputMode = 4;
  NoteChoice(*state_);
  EXPECT_EQ(Ui().timers[ID_TIMER_CHANGES], 1000u);
  Of(ID_OUTPUT).open = true;
  HandleTimer(*state_, ID_TIMER_CHANGES);
  EXPECT_TRUE(Ui().timers.contains(ID_TIMER_CHANGES)) << "while a list is open it waits";
  EXPECT_EQ(state_->appliedSettings.outputMode, 2);
  Of(ID_OUTPUT).open = false;
  HandleTimer(*state_, ID_TIMER_CHANGES);
  Run(2);
  EXPECT_FALSE(Ui().timers.contains(ID_TIMER_CHANGES));
  EXPECT_EQ(state_->appliedSettings.outputMode, 4);
  ASSERT_EQ(RecordFiles().size(), 2u) << "a fresh file";
  EXPECT_TRUE(RecordFiles()[0].ends_with("_txt10.log"));
  EXPECT_TRUE(RecordFiles()[1].ends_with("_txt12.log"));
  EXPECT_GT(Content(RecordFiles()[1]).size(), 1'000u);
  // Nothing differs any more: the timer does nothing.
  const uint64_t commands = sounder_->Commands().Total();
  HandleTimer(*state_, ID_TIMER_CHANGES);
  EXPECT_EQ(sounder_->Commands().Total(), commands);
}

TEST_F(Apply, WithoutRecordDataNoFileIsOpened) {
  SetRecording(false);
  StartQuickRun(1);
  ApplySettings(*state_);
  ChangeSpeed(*state_, 460'800);
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::running);
  EXPECT_TRUE(RecordFiles().empty());
}

// Whichever of the two comes second; the run goes on with what the device has.
TEST_F(Apply, SonarmiteOldForBothFrequenciesMayBeRefused) {
  sim::SounderOptions options = QuickSounder();
  options.refusesDualOld = true;
  StartQuickRun(0, options);
  const struct {
    bool dual;
    int32_t mode;
    bool refused;
  } rows[] = {{true, 2, false}, {true, 9, true}, {true, 4, false}, {false, 9, false}, {true, 9, true}};
  for (const auto& row : rows) {
    Of(ID_DUAL_MODE).checked = row.dual;
    state_->settings.outputMode = row.mode;
    ApplySettings(*state_);
    if (row.refused) {
      ExpectBox(L"Sonarmite_old fortmat is not support Dual_mode", L"", BoxIcon::information);
    }
    EXPECT_TRUE(Ui().boxes.empty());
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::running);
    EXPECT_EQ(state_->settings.outputMode == 9 && globals.dualMode != 0, false);
  }
}

TEST_F(Apply, DefaultsAreNotSentWithoutConsent) {
  StartQuickRun(2);
  Ui().answerOk = false;
  const uint64_t commands = sounder_->Commands().Total();
  RestoreDefaults(*state_);
  ExpectBox(L"Change to default setting?", L"Info", BoxIcon::none, BoxButtons::okCancel);
  EXPECT_EQ(sounder_->Commands().Total(), commands);
  EXPECT_NE(state_->acquisitionThread, Handle::null);
}

TEST_F(Apply, DefaultsAreNoOccasionForWhatWasOnlyChosen) {
  sim::SounderOptions options = QuickSounder();
  options.faults.lacksFrom = "#sound";
  StartQuickRun(0, options);
  state_->settings.soundSpeed_mps = 1'480.0f;
  RestoreDefaults(*state_);
  EXPECT_EQ(state_->settings.soundSpeed_mps, 1'500.0f);
  EXPECT_EQ(state_->appliedSettings.soundSpeed_mps, 1'500.0f);
}

TEST_F(Apply, ACommandThatIsCarriedOutSlowlyEndsNoRun) {
  for (const char* slow : {"#default", "#setfreqlow"}) {
    sim::SounderOptions options = QuickSounder();
    options.faults.late = slow;
    StartQuickRun(0, options);
    state_->settings.frequencyInUse_hz = 200'000;
    ApplySettings(*state_);
    EXPECT_EQ(state_->appliedSettings.frequencyInUse_hz, 200'000) << slow;
    RestoreDefaults(*state_);
    EXPECT_EQ(state_->appliedSettings.frequencyInUse_hz, 450'000) << slow;
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::running) << slow;
    StopRun(*state_);
    DetachSerialLines();
  }
}

// Commands that keep the window busy for seconds; a box among them would be answered by what waits.
TEST_F(Apply, InputThatQueuesUpMeanwhileIsThrownAwayButStopAndExit) {
  ConnectSounder(QuickSounder());
  const auto faster = [](AppState& state) { ChangeSpeed(state, 460'800); };
  const auto elsewhere = [](AppState& state) {
    StopRun(state);
    Ui().Choose(ID_DEVICE_PORT, L"COM7");  // a box comes
    StartRun(state);
  };
  for (void (*command)(AppState&) : {+StartRun, +ApplySettings, +RestoreDefaults, +faster, +elsewhere}) {
    Ui().queuedInput = command == +RestoreDefaults ? 0 : 3;  // its question comes first
    Ui().keptInput = 1;
    command(*state_);
    EXPECT_EQ(Ui().queuedInput + Ui().keptInput, 0);
  }
  EXPECT_EQ(Ui().carriedOut, 5);
}

class AutoCapture : public Apply {
 protected:
  void Tick(bool on) {
    Of(ID_AUTO_CAPTURE).checked = on;
    ToggleAutoCapture(*state_);
  }
};

TEST_F(AutoCapture, ScreenshotsAreTakenWhileTickedAndRunning) {
  constexpr uint32_t kPeriod_ms = 135'000;
  state_->timeScaleUpper = 60;
  Tick(true);
  EXPECT_EQ(state_->timeScaleUpper, 150);
  EXPECT_FALSE(Ui().timers.contains(ID_TIMER_CAPTURE)) << "nothing runs yet";
  StartQuickRun(2);
  EXPECT_EQ(Ui().timers[ID_TIMER_CAPTURE], kPeriod_ms);
  Run(static_cast<int>(kPeriod_ms / 1000));
  EXPECT_EQ(ExchangeShared(globals.screenshotRequested, 0), 1);
  Tick(false);
  EXPECT_FALSE(Ui().timers.contains(ID_TIMER_CAPTURE));
  EXPECT_EQ(ExchangeShared(globals.screenshotRequested, 0), 1) << "a last one";
  Tick(true);
  EXPECT_TRUE(Ui().timers.contains(ID_TIMER_CAPTURE));
  StopRun(*state_);
  EXPECT_FALSE(Ui().timers.contains(ID_TIMER_CAPTURE));
}

TEST_F(AutoCapture, WhatInterruptsARunLeavesItsTimerAlone) {
  Tick(true);
  StartQuickRun(2);
  Ui().log.clear();
  ApplySettings(*state_);
  RestoreDefaults(*state_);
  ChangeSpeed(*state_, 460'800);
  EXPECT_FALSE(std::any_of(Ui().log.begin(), Ui().log.end(),
                           [](const std::string& entry) { return entry.starts_with("timer 6 "); }));
  Of(ID_DUAL_MODE).checked = true;
  ApplySettings(*state_);
  EXPECT_EQ(Ui().timers[ID_TIMER_CAPTURE], 67'000u) << "an image half as long";
}

// The unplug itself is not told; what is written anew is true.
TEST_F(Apply, AGpsReceiverThatIsGoneIsNotShownAsConnected) {
  ConnectGps();
  StartQuickRun(2);
  ChangeSpeed(*state_, 460'800);
  EXPECT_EQ(Ui().status[1], L"GPS: COM6,4800bps");
  HangUpLine(kGpsLine);
  Run(2);
  EXPECT_EQ(Ui().status[1], L"GPS: COM6,4800bps");
  ChangeSpeed(*state_, 921'600);
  EXPECT_EQ(Ui().status[1], L"GPS: Disconnected");
}

// The device has taken the speed, but the port does not come back.
TEST_F(Apply, APortThatDoesNotReopenEndsTheRun) {
  StartQuickRun(2);
  InjectFault({.point = FaultPoint::openLine, .code = EBUSY});
  ChangeSpeed(*state_, 3'000'000);
  EXPECT_EQ(Ui().systemErrors, std::vector<uint32_t>{EBUSY});
  EXPECT_EQ(globals.deviceBaud, 3'000'000);
  EXPECT_EQ(Of(ID_DEVICE_SPEED).text, L"3000000");
  ExpectIdle();
  StartRun(*state_);
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::running) << "at the new speed";
  EXPECT_EQ(sounderPeer_->Mode(), "baud=3000000 parity=N data=8 stop=1 octs=on rts=on");
}

}  // namespace
}  // namespace tw::test
