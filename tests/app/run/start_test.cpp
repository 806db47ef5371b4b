#include <algorithm>
#include <cerrno>

#include "acquisition/live_worker.h"
#include "acquisition/ping_ring.h"
#include "app/run/worker_control.h"
#include "app/settings/control_states.h"
#include "app/window/commands.h"
#include "app/window/start_up.h"
#include "device/stop_device.h"
#include "display/panel.h"
#include "platform/clock.h"
#include "platform/virtual/debug_capture.h"
#include "platform/virtual/faults.h"
#include "tests/app/run/refused_memory.h"
#include "tests/app/run_control_fixture.h"
#include "tests/app/stored_values.h"

namespace tw::test {
namespace {

class StartTest : public RunControlTest {};

TEST_F(StartTest, HappensOnceAndRemembersTheSelectors) {
  StartQuickRun();
  EXPECT_TRUE(Ui().boxes.empty());
  EXPECT_TRUE(Ui().PointerIsArrow());
  EXPECT_EQ(StoredNumber(L"DeviceCOMPort"), 5u);
  EXPECT_EQ(StoredNumber(L"DeviceCOMSpeed"), 921'600u);
  EXPECT_EQ(StoredNumber(L"GPSCOMPort"), 0xFFFFFFFFu);
  EXPECT_EQ(state_->echogramEnabled, 1);
  const Handle thread = state_->acquisitionThread;
  StartRun(*state_);
  EXPECT_EQ(state_->acquisitionThread, thread);
  EXPECT_EQ(sounderPeer_->Opened(), 1);
}

// At program start: with the stored ports and no others, and without a box.
TEST_F(StartTest, ByItselfItWaitsForItsPorts) {
  PutNumber(L"DeviceCOMPort", 5);
  PutNumber(L"DeviceCOMSpeed", 921'600);
  PutNumber(L"GPSCOMPort", 6);
  SetSerialLineList({L"COM3"});
  ConnectSounder(QuickSounder());
  ConnectGps();
  FillCommunicationControls(*state_);
  state_->startsByItself = 1;
  const std::vector<std::wstring> lists[] = {{L"COM3"}, {L"COM3", L"COM5"}, {L"COM3", L"COM5", L"COM6"}};
  for (const auto& list : lists) {
    EXPECT_EQ(sounderPeer_->Opened(), 0) << list.size();
    SetSerialLineList(list);
    HandleTimer(*state_, ID_TIMER_PORTS);
  }
  EXPECT_NE(state_->acquisitionThread, Handle::null);
  EXPECT_EQ(gpsPeer_->Opened(), 1);
  EXPECT_EQ(Of(ID_DEVICE_PORT).text, L"COM5");
  EXPECT_EQ(Of(ID_GPS_PORT).text, L"COM6");
  EXPECT_EQ(state_->startsByItself, 0);
}

TEST_F(StartTest, ByItselfItTriesAgainUntilTheOperatorDecides) {
  PutNumber(L"DeviceCOMPort", 5);
  state_->startsByItself = 1;
  HandleTimer(*state_, ID_TIMER_PORTS);  // nothing stands behind the port
  EXPECT_NE(Ui().status[0], L"Device: Disconnected") << "what was refused";
  ConnectSounder(QuickSounder());
  SleepMilliseconds(9'000);
  HandleTimer(*state_, ID_TIMER_PORTS);
  EXPECT_EQ(sounderPeer_->Opened(), 0);
  SleepMilliseconds(2'000);
  HandleTimer(*state_, ID_TIMER_PORTS);
  EXPECT_EQ(sounderPeer_->Opened(), 1);
  EXPECT_TRUE(Ui().boxes.empty() && Ui().systemErrors.empty());
  StopRun(*state_);
  HandleTimer(*state_, ID_TIMER_PORTS);
  EXPECT_EQ(sounderPeer_->Opened(), 1) << "stopped by hand";
  for (const auto byHand : {StartRun, StopRun}) {
    sounderPeer_.reset();
    DetachSerialLines();
    SetSerialLineList({L"COM5", L"COM6"});
    state_->startsByItself = 1;
    byHand(*state_);
    EXPECT_EQ(state_->startsByItself, 0);
  }
}

TEST_F(StartTest, RecordsFromTheFirstPingOn) {
  StartQuickRun(5);
  const std::vector<std::string> files = RecordFiles();
  ASSERT_EQ(files.size(), 1u);
  EXPECT_EQ(files[0].substr(0, 12), "20250314_093");
  const std::string content = Content(files[0]);
  EXPECT_EQ(content.find("#DeviceID "), content.find("\r\n") + 2);
  HandleTimer(*state_, ID_TIMER_REPAINT);
  EXPECT_EQ(Ui().title, "Tidewriter Echosounder Control Software" + std::string(50, ' ') + files[0]);
  StopRun(*state_);
  HandleTimer(*state_, ID_TIMER_REPAINT);
  EXPECT_EQ(Ui().title, "Tidewriter Echosounder Control Software");
}

TEST_F(StartTest, AnOutputThatTheFamilyDoesNotHaveIsReplaced) {
  StartQuickRun();
  EndAcquisition(*state_, kWaitForever);
  ASSERT_EQ(StopDevice(*state_->link), LinkResult::success);
  state_->settings.outputMode = 42;
  ASSERT_EQ(StartWorkers(*state_), RunFault::none);
  EXPECT_EQ(state_->settings.outputMode, 3);
  EXPECT_EQ(state_->appliedSettings.outputMode, 3) << "sent";
  EXPECT_EQ(state_->echogramEnabled, 0);
}

TEST_F(StartTest, WritesItsTimesToTheDebugOutput) {
  StartDebugCapture();
  StartQuickRun();
  const std::vector<std::wstring> texts = TakeDebugTexts();
  StopDebugCapture();
  for (const std::wstring label :
       {L"Start  time : ", L"After Connect Time :  ", L"After Stop Time   ", L"After GetSetting Time ",
        L"Before Start Device Time  ", L"After Start Device Time "}) {
    EXPECT_EQ(std::count_if(texts.begin(), texts.end(),
                            [&](const std::wstring& text) { return text.starts_with(label); }),
              1);
  }
  EXPECT_EQ(texts.front(), L"Start  time : 0.000000\n");
}

// Another port than the chosen one is never opened in its place.
TEST_F(StartTest, ANumberBeyondReasonIsAPortOfItsOwn) {
  ConnectSounder(QuickSounder());
  globals.devicePortNumber = 5;
  Ui().Choose(ID_DEVICE_PORT, L"COM99999999999");
  StartRun(*state_);
  EXPECT_EQ(globals.devicePortNumber, 2'147'483'647);
  EXPECT_EQ(sounderPeer_->Opened(), 0);
  ExpectIdle();
}

// A playback is over all the same.
TEST_F(StartTest, PortsThatDoNotOpenShowTheSystemsError) {
  const auto refused = [this](uint32_t code) {
    StartRun(*state_);
    EXPECT_EQ(std::exchange(Ui().systemErrors, {}), std::vector<uint32_t>{code});
    EXPECT_TRUE(Ui().boxes.empty());
    ExpectIdle();
  };
  state_->playbackActive = 1;
  RefreshControlStates(*state_);
  ASSERT_TRUE(Of(ID_PAUSE).enabled);
  refused(ENOENT);
  EXPECT_FALSE(Of(ID_PAUSE).enabled);
  EXPECT_FALSE(Of(ID_STOP).enabled);
  ConnectSounder(QuickSounder());
  InjectFault({.point = FaultPoint::openLine, .code = EBUSY});
  refused(EBUSY);
  ChooseGps();
  refused(ENOENT);
  EXPECT_EQ(sounderPeer_->Closed(), 1);
  Ui().Choose(ID_GPS_PORT, L"N/A");
  StartRun(*state_);  // usable again at once
  EXPECT_NE(state_->acquisitionThread, Handle::null);
}

TEST_F(StartTest, NobodyAnswers) {
  sim::SounderOptions options = QuickSounder();
  options.faults.instrument.dead = true;
  ConnectSounder(options);
  static AppState* state = nullptr;
  static DeviceSettings shown;
  state = state_;
  shown = {};
  Ui().duringBox = [] { shown = ShownSettings(*state); };  // the view goes on being painted
  StartDebugCapture();
  StartRun(*state_);
  const std::vector<std::wstring> texts = TakeDebugTexts();
  StopDebugCapture();
  EXPECT_EQ(shown.highFrequency_hz, 447'000);
  EXPECT_EQ(shown.soundSpeed_mps, 1500.0f);
  ExpectErrorBox(L"Echosounder is not connected");
  EXPECT_TRUE(texts.back().starts_with(L"After Stop Fail time :  "));
  EXPECT_EQ(sounderPeer_->Closed(), 1);
  ExpectIdle();
  EXPECT_EQ(Ui().status[2], L"Nothing was heard on the device's port");
  std::vector<std::string> talk{"Opening the device's port", "Listening for the device"};
  for (int i = 1; i <= 10; ++i) talk.push_back("Waiting for the prompt, attempt " + std::to_string(i));
  talk.emplace_back();
  EXPECT_EQ(Ui().talk, talk);
}

// And the note of it is gone with the next start, also one without a hand on it.
TEST_F(StartTest, AReceiverInThePlaceOfTheDeviceIsHeard) {
  sim::VirtualGps receiver({});
  SimulatorPeer peer(receiver);
  AttachPeer(kDeviceLine, &peer);
  for (const bool byItself : {false, true}) {
    if (byItself) {
      PutNumber(L"DeviceCOMPort", 5);
      state_->startsByItself = 1;
      StartByItself(*state_);
    } else {
      StartRun(*state_);
    }
    EXPECT_EQ(Ui().status[2], L"Heard: sentences of a GPS receiver");
  }
  state_->startsByItself = 0;
  DetachSerialLines();
  StartQuickRun();
  EXPECT_EQ(Ui().status[2], L"");
}

// Each setting that is asked for, and each command of the start, of Start, Apply and Stop.
TEST_F(StartTest, TheTalkWithTheDeviceIsShown) {
  const auto shown = [](const std::string& text) { return std::ranges::count(Ui().talk, text); };
  ConnectSounder(QuickSounder());
  for (const auto command : {StartRun, ApplySettings, StopRun}) {
    Ui().talk.clear();
    command(*state_);
    ASSERT_FALSE(Ui().talk.empty());
    EXPECT_EQ(Ui().talk.back(), "");
    if (command == StopRun) continue;
    for (const char* const text : {"Asking for settings 1 of 43", "Asking for settings 43 of 43",
                                   "Starting the device, command 11 of 11"}) {
      EXPECT_EQ(shown(text), 1) << text;
    }
  }
  EXPECT_EQ(Ui().talk, (std::vector<std::string>{"Ending the run", ""}));
}

TEST_F(StartTest, FirstStartWithoutGpsRunsAWorkerOnTheNullHandleAndLaterOnesDoNot) {
  EXPECT_EQ(state_->gpsPort, Handle::null);
  StartQuickRun();
  EXPECT_NE(state_->gpsThread, Handle::null);
  Run(1);
  StopRun(*state_);
  EXPECT_EQ(state_->gpsPort, Handle::invalid);

  StartRun(*state_);
  EXPECT_NE(state_->acquisitionThread, Handle::null);
  EXPECT_EQ(state_->gpsThread, Handle::null);
}

// The worker's own block, and its stream reader's.
TEST_F(StartTest, WithoutMemoryForTheWorkerTheLinkCountsAsLost) {
  ConnectSounder(QuickSounder());
  for (const int given : {0, 1}) {
    largeBlocks = given;
    StartRun(*state_);
    Run(2);
    ExpectErrorBox(L"Connection lost!");
    const auto& told = Ui().posts[static_cast<int>(StatusPart::position)];
    EXPECT_NE(std::find(told.begin(), told.end(), L"Insufficient memory!"), told.end());
    Ui().posts[static_cast<int>(StatusPart::position)].clear();
    ExpectIdle();
  }
  largeBlocks = -1;
  StartRun(*state_);
  Run(2);
  EXPECT_TRUE(Ui().boxes.empty());
}

TEST_F(StartTest, WithoutAnAcquisitionThreadTheProcessEnds) {
  ConnectSounder(QuickSounder());
  InjectFault({.point = FaultPoint::startThread});
  EXPECT_EXIT(StartRun(*state_), testing::ExitedWithCode(1), "");
  ClearFaults();
  refusedSize = sizeof(LiveStart);
  EXPECT_EXIT(StartRun(*state_), testing::ExitedWithCode(1), "");
  refusedSize = 0;
}

TEST_F(StartTest, ARunWithoutAReceiverHasNothingOfThePositionBefore) {
  ConnectGps();
  StartQuickRun(5);
  EXPECT_NE(NewestPing().gpsLatitude_rad, 0.0f);
  EXPECT_EQ(globals.gpsQuality, 2);
  StopRun(*state_);
  EXPECT_EQ(globals.gpsQuality, 0);
  Ui().Choose(ID_GPS_PORT, L"N/A");
  StartRun(*state_);
  Run(2);
  const PingHeader ping = NewestPing();
  for (const float value : {ping.gpsLatitude_rad, ping.gpsLongitude_rad, ping.gpsAltitude_m, ping.gpsPdop})
    EXPECT_EQ(value, 0.0f);
  EXPECT_EQ(ping.gpsTime_s, 0u);
  EXPECT_EQ(ping.gpsValid, 0);
  StopRun(*state_);
  const std::string content = Content(RecordFiles().back());
  EXPECT_NE(content.find(",00.0000,S,00.0000,W,0,00,"), content.npos);
  EXPECT_NE(content.find(",V,00.0000,S,00.0000,W,"), content.npos);
}

TEST_F(StartTest, NoGpsThread) {
  ConnectSounder(QuickSounder());
  InjectFault({.point = FaultPoint::startThread, .call = 2});
  StartRun(*state_);
  ExpectErrorBox(L"Unable to run GPS working thread");
  EXPECT_EQ(state_->gpsPort, Handle::invalid);
  ExpectIdle();
}

}  // namespace
}  // namespace tw::test
