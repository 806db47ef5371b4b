#include <algorithm>

#include "app/window/commands.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "platform/virtual/faults.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {
namespace {

class StopTest : public RunControlTest {
 protected:
  // How long it takes.
  uint32_t Stop_ms() {
    const uint32_t began_ms = MillisecondClock();
    StopRun(*state_);
    return MillisecondClock() - began_ms;
  }
  // Pings behind the settings line, or none.
  void ExpectWhole(const std::string& name) const {
    const std::string content = Content(name);
    EXPECT_TRUE(content.starts_with("INFO:1,")) << name;
    EXPECT_TRUE(content.ends_with("\r\n\r\n") || std::count(content.begin(), content.end(), '\n') == 1)
        << name;
  }
};

TEST_F(StopTest, WhileIdleDoesNoHarmAndLeavesAStreamingDeviceStreaming) {
  StopRun(*state_);
  ExpectIdle();
  EXPECT_EQ(state_->gpsPort, Handle::null);
  StartQuickRun(3);
  EXPECT_LT(Stop_ms(), 500u);
  EXPECT_EQ(Ui().status[2], L"");
  EXPECT_EQ(Ui().status[3], L"");
  EXPECT_EQ(sounderPeer_->Closed(), 1);
  EXPECT_TRUE(sounder_->Streaming());
  ExpectIdle();
}

// Stands for an acquisition worker that does not come back: a call of the system that hangs.
void SleepAMinute(void*) {
  SleepMilliseconds(60'000);
}

TEST_F(StopTest, GivesAHangingWorkerThreeSeconds) {
  StartQuickRun();
  Signal(state_->stopEvent);
  ASSERT_EQ(WaitForThread(state_->acquisitionThread, 5000), ThreadWait::ended);
  CloseThread(state_->acquisitionThread);
  state_->acquisitionThread = StartThread(SleepAMinute, nullptr);
  const uint32_t number = state_->runNumber;
  const uint32_t took_ms = Stop_ms();
  EXPECT_GE(took_ms, 3000u);
  EXPECT_LE(took_ms, 3100u);
  EXPECT_NE(state_->runNumber, number);
  ExpectIdle();
}

// What was handed over is written later, whatever is recorded meanwhile.
TEST_F(StopTest, AStalledDiskHoldsNobodyUpForMoreThanThreeSecondsAndLosesNothing) {
  StartQuickRun(2);
  const std::string first = RecordFiles()[0];
  InjectFault({.point = FaultPoint::writeFile,
               .held_ms = 60'000,
               .subject = std::wstring(first.begin(), first.end())});
  Run(5);
  const size_t before = Content(first).size();
  state_->settings.gainHigh = 3.0f;
  uint32_t began_ms = MillisecondClock();
  ApplySettings(*state_);
  EXPECT_LT(MillisecondClock() - began_ms, 10'000u);
  Run(5);
  began_ms = MillisecondClock();
  for (const bool on : {false, true, false, true}) SetRecording(on);
  EXPECT_LE(MillisecondClock() - began_ms, 1'010u) << "another name for the second within a second";
  ASSERT_NE(state_->recordFileA, Handle::invalid);
  Run(5);
  const uint32_t took_ms = Stop_ms();
  EXPECT_GE(took_ms, 3'000u);
  EXPECT_LE(took_ms, 3'010u);
  ExpectIdle();
  HandleTimer(*state_, ID_TIMER_REPAINT);
  EXPECT_TRUE(Ui().status[4].starts_with(L"Still to be written : ")) << "what is left is told";
  EXPECT_EQ(Content(first).size(), before);
  StartRun(*state_);
  Run(60);
  HandleTimer(*state_, ID_TIMER_REPAINT);
  EXPECT_EQ(Ui().status[4], L"");
  StopRun(*state_);
  EXPECT_EQ(RecordFiles().size(), 5u);
  for (const std::string& name : RecordFiles()) ExpectWhole(name);
  EXPECT_GT(Content(first).size(), 2 * before);
}

// Timers go on while its box is shown.
TEST_F(StopTest, APulledPlugIsReportedOnceAndNothingIsSentToALostDevice) {
  StartQuickRun(2);
  Ui().Choose(ID_OUTPUT, L"Echo Txt 12bit");
  NoteChoice(*state_);
  HangUpLine(kDeviceLine);
  Run(2);
  ExpectErrorBox(L"Connection lost!");
  ExpectIdle();
  EXPECT_EQ(Ui().settingsClosed, 1) << "what would be entered there has no device";
  EXPECT_EQ(RecordFiles().size(), 1u);
  Run(120);
  EXPECT_TRUE(Ui().boxes.empty());
  EXPECT_EQ(state_->linkLost, 0);
}

// Whatever the order and the pace: the last tick counts, and each file that is left is whole.
TEST_F(StopTest, QuickTicksOfRecordDataLeaveWholeFiles) {
  StartQuickRun(1);
  const std::string first = RecordFiles()[0];
  size_t size = 0;
  for (int click = 0; click < 25; ++click) {
    SetRecording(click % 2 != 0);
    SleepMilliseconds(static_cast<uint32_t>(37 * click));
    EXPECT_EQ(state_->recordFileA != Handle::invalid, click % 2 != 0);
    if (click == 0) size = Content(first).size();
  }
  EXPECT_EQ(Content(first).size(), size) << "closed for good";
  StopRun(*state_);
  EXPECT_GT(RecordFiles().size(), 5u);
  for (const std::string& name : RecordFiles()) ExpectWhole(name);
}

}  // namespace
}  // namespace tw::test
