#include "app/window/start_up.h"

#include <gtest/gtest.h>
#include <sys/mman.h>

#include <algorithm>

#include "acquisition/ping_ring.h"
#include "app/run/record_set_up.h"
#include "app/window/commands.h"
#include "platform/virtual/faults.h"
#include "tests/app/run_control_fixture.h"
#include "tests/app/stored_values.h"

namespace tw::test {
namespace {

using Items = std::vector<std::wstring>;

class StartUpTest : public RunControlTest {};

TEST_F(StartUpTest, FirstStartOfAll) {
  FillCommunicationControls(*state_);
  EXPECT_EQ(Of(ID_DEVICE_PORT).items, (Items{L"COM5", L"COM6"}));
  EXPECT_EQ(Of(ID_GPS_PORT).items, (Items{L"N/A", L"COM5", L"COM6"}));
  EXPECT_EQ(Of(ID_GPS_PORT).text, L"N/A");
  EXPECT_EQ(Of(ID_DEVICE_SPEED).items.front() + L" " + Of(ID_DEVICE_SPEED).items.back(), L"4800 3000000");
  EXPECT_EQ(Of(ID_DEVICE_SPEED).text, L"115200");
  EXPECT_EQ(Of(ID_GPS_SPEED).items.front() + L" " + Of(ID_GPS_SPEED).items.back(), L"2400 115200");
  EXPECT_EQ(Of(ID_GPS_SPEED).text, L"4800");
  EXPECT_TRUE(Of(ID_RECORD).checked);
  EXPECT_TRUE(WaitForEvent(state_->recordingEvent, 0));
  EXPECT_EQ(Ui().status[0], L"Device: Disconnected");
  EXPECT_EQ(Ui().status[1], L"GPS: Disconnected");
  EXPECT_EQ(Ui().timers, (std::map<int, uint32_t>{{0, 2000}, {1, 100}, {2, 1000}, {5, 1000}}));
  EXPECT_EQ(state_->gpsPort, Handle::null);
  EXPECT_EQ(state_->devicePort, Handle::invalid);
  EXPECT_EQ(state_->settings.outputMode, 4);
  EXPECT_EQ(state_->settings.unused2, 4);
}

TEST_F(StartUpTest, StoredChoicesAreSelectedByTheirExactText) {
  SetSerialLineList({L"COM10", L"COM1", L"COM9", L"AUX2"});
  const struct {
    const char* what;
    uint32_t devicePort, deviceSpeed, gpsPort, gpsSpeed;
    Items selected;
  } rows[] = {
      {"on offer", 1, 3'000'000, 9, 9'600, {L"COM1", L"3000000", L"COM9", L"9600"}},
      {"not on offer", 77, 128'000, 78, 0xFFFFFFFF, {L"COM1", L"4800", L"N/A", L"2400"}},
  };
  for (const auto& row : rows) {
    PutNumber(L"DeviceCOMPort", row.devicePort);
    PutNumber(L"DeviceCOMSpeed", row.deviceSpeed);
    PutNumber(L"GPSCOMPort", row.gpsPort);
    PutNumber(L"GPSCOMSpeed", row.gpsSpeed);
    FillCommunicationControls(*state_);
    EXPECT_EQ(Of(ID_DEVICE_PORT).items, (Items{L"COM1", L"COM9", L"COM10"})) << row.what;
    const Items selected = {Of(ID_DEVICE_PORT).text, Of(ID_DEVICE_SPEED).text, Of(ID_GPS_PORT).text,
                            Of(ID_GPS_SPEED).text};
    EXPECT_EQ(selected, row.selected) << row.what;
  }
}

TEST_F(StartUpTest, TheTimerKeepsTheSelectionAndListsNewPorts) {
  Ui().Choose(ID_GPS_PORT, L"COM6");
  SetSerialLineList({L"COM12", L"COM6", L"COM3"});
  HandleTimer(*state_, ID_TIMER_PORTS);
  EXPECT_EQ(Of(ID_GPS_PORT).items, (Items{L"N/A", L"COM3", L"COM6", L"COM12"}));
  EXPECT_EQ(Of(ID_GPS_PORT).text, L"COM6");
  EXPECT_EQ(Of(ID_DEVICE_PORT).text, L"COM3");  // COM5 has gone

  SetSerialLineList({});
  HandleTimer(*state_, ID_TIMER_PORTS);
  EXPECT_EQ(Of(ID_GPS_PORT).text, L"N/A");
  EXPECT_TRUE(Of(ID_DEVICE_PORT).items.empty());
}

TEST_F(StartUpTest, TheTimerWaitsUntilAnOpenListIsClosed) {
  for (const int open : {ID_DEVICE_PORT, ID_GPS_PORT}) {
    SetSerialLineList({L"COM5"});
    HandleTimer(*state_, ID_TIMER_PORTS);
    Of(open).open = true;
    SetSerialLineList({L"COM3"});
    HandleTimer(*state_, ID_TIMER_PORTS);
    EXPECT_EQ(Of(ID_DEVICE_PORT).text, L"COM5");
    Of(open).open = false;
    HandleTimer(*state_, ID_TIMER_PORTS);
    EXPECT_EQ(Of(ID_DEVICE_PORT).text, L"COM3");
    EXPECT_EQ(Of(ID_GPS_PORT).items, (Items{L"N/A", L"COM3"}));
  }
}

TEST_F(StartUpTest, TheTimerTouchesNoSelectorWhilePortsStayTheSame) {
  Of(ID_DEVICE_PORT).items.emplace_back(L"untouched");
  HandleTimer(*state_, ID_TIMER_PORTS);
  EXPECT_EQ(Of(ID_DEVICE_PORT).items.back(), L"untouched");
}

TEST_F(StartUpTest, AnAutomaticIntervalIsShownAsItIsMeasured) {
  state_->initialised = 0;
  HandleTimer(*state_, ID_TIMER_REPAINT);
  EXPECT_EQ(Ui().repaints, 0) << "timers do nothing before the start-up is over";
  state_->initialised = 1;
  state_->devicePort = Handle{77};
  globals.measuredPingInterval_ms = 104.0f;
  HandleTimer(*state_, ID_TIMER_REPAINT);
  EXPECT_EQ(Of(ID_MEASURED_INTERVAL).text, L"");
  state_->settings.pingInterval_ms = 0;
  HandleTimer(*state_, ID_TIMER_REPAINT);
  EXPECT_EQ(Of(ID_MEASURED_INTERVAL).text, L"0.10");
  EXPECT_EQ(Ui().repaints, 2);
  state_->devicePort = Handle::invalid;
  HandleTimer(*state_, ID_TIMER_REPAINT);
  EXPECT_EQ(Of(ID_MEASURED_INTERVAL).text, L"") << "nothing is measured any more";
}

TEST_F(StartUpTest, RecordingSwitchedOffStaysOff) {
  PutNumber(L"Recording", 0);
  LoadRecordingChoices(*state_);
  EXPECT_FALSE(Of(ID_RECORD).checked);
  EXPECT_FALSE(WaitForEvent(state_->recordingEvent, 0));
}

// Of the rings' own pages: what the process has in all is that of the tests before, too.
TEST_F(StartUpTest, TheRingsTakeNoMemoryUntilTheyAreUsed) {
  std::vector<unsigned char> pages(kRingSize / 4'096 + 1);
  for (PingRing* const ring : {state_->ringA, state_->ringB}) {
    ASSERT_EQ(mincore(ring, kRingSize, pages.data()), 0);
    const auto resident = std::count_if(pages.begin(), pages.end(), [](unsigned char p) { return p & 1; });
    EXPECT_LT(resident, 16);
  }
}

TEST_F(StartUpTest, ClosingWhileRecordingClosesTheFileBeforeThePositionIsStored) {
  StartQuickRun(2);
  const size_t written = Content(RecordFiles()[0]).size();
  InjectFault({.point = FaultPoint::writeFile, .held_ms = 2'000});
  Run(1);
  BeginShutDown(*state_);
  EXPECT_EQ(state_->recordFileA, Handle::invalid);
  EXPECT_GT(Content(RecordFiles()[0]).size(), written) << "what waited for the disk is written";
  EXPECT_EQ(globals.screenshotRequested, 1);
  FinishShutDown(*state_);
  EXPECT_EQ(RegistryWrites().back(), L"MainWindowPosition");
}

void StartUpWithoutMemory() {
  ClearRegistry();
  ClearFaults();
  auto* const state = AllocateState();
  InjectFault({.point = FaultPoint::allocate, .call = 2});
  StartUp(*state);
}

TEST(StartUpDeathTest, WithoutMemoryForTheRingsTheProcessEnds) {
  EXPECT_EXIT(StartUpWithoutMemory(), testing::ExitedWithCode(1), "");
}

}  // namespace
}  // namespace tw::test
