#include <algorithm>

#include "app/window/commands.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "platform/virtual/faults.h"
#include "platform/virtual/virtual_clock.h"
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
};

TEST_F(StopTest, WhileStreamingEndsTheRunAndLeavesTheDeviceStreaming) {
  StartQuickRun(3);
  EXPECT_LT(Stop_ms(), 500u);
  EXPECT_EQ(Ui().status[2], L"");
  EXPECT_EQ(Ui().status[3], L"");
  EXPECT_EQ(sounderPeer_->Closed(), 1);
  EXPECT_TRUE(sounder_->Streaming());
  ExpectIdle();
}

TEST_F(StopTest, WhileIdleDoesNoHarm) {
  StopRun(*state_);
  ExpectIdle();
  EXPECT_EQ(state_->gpsPort, Handle::null);
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

// Timers go on while its box is shown.
TEST_F(StopTest, APulledPlugIsReportedOnceAndNothingIsSentToALostDevice) {
  StartQuickRun(2);
  Ui().Choose(ID_OUTPUT, L"Echo Txt 12bit");
  NoteChoice(*state_);
  HangUpLine(kDeviceLine);
  Run(2);
  ExpectBox(L"Connection lost!", L"Error", BoxIcon::error);
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
    bool& checked = Ui().controls[ID_RECORD].checked;
    checked = !checked;
    ToggleRecording(*state_);
    SleepMilliseconds(static_cast<uint32_t>(37 * click));
    EXPECT_EQ(state_->recordFileA != Handle::invalid, checked);
    if (click == 0) size = Content(first).size();
  }
  EXPECT_EQ(Content(first).size(), size) << "closed for good";
  EXPECT_FALSE(Ui().controls[ID_RECORD].checked);
  StopRun(*state_);
  EXPECT_GT(RecordFiles().size(), 5u);
  for (const std::string& name : RecordFiles()) {
    const std::string content = Content(name);
    EXPECT_TRUE(content.starts_with("INFO:1,")) << name;
    EXPECT_TRUE(content.ends_with("\r\n\r\n") || std::count(content.begin(), content.end(), '\n') == 1)
        << name;
  }
}

}  // namespace
}  // namespace tw::test
