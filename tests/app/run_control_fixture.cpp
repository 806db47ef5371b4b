#include "tests/app/run_control_fixture.h"

#include <unistd.h>

#include <algorithm>
#include <utility>

#include "acquisition/ping_ring.h"
#include "acquisition/record_file.h"
#include "app/run/record_set_up.h"
#include "app/state/overview.h"
#include "app/window/commands.h"
#include "app/window/start_up.h"
#include "device/device_link.h"
#include "platform/clock.h"
#include "platform/memory.h"
#include "platform/virtual/documents_folder.h"
#include "platform/virtual/faults.h"
#include "platform/virtual/memory_registry.h"
#include "platform/virtual/virtual_clock.h"

namespace tw::test {
namespace {

constexpr int64_t kBegin_ms = 1'741'944'605'000;  // 2025-03-14 09:30:05

}  // namespace

sim::SounderOptions QuickSounder(int32_t outputMode, bool dual) {
  sim::SounderOptions options;
  options.outputMode = outputMode;
  options.dual = dual;
  options.baud = 921'600;
  options.sampleCount = 200;
  options.depth_m = 4.0;  // within these samples
  options.relief_m = 0.5;
  return options;
}

RunControlTest::RunControlTest() {
  SetDocumentsFolder(folder_.c_str());
  ClearRegistry();
  ClearFaults();
  DetachSerialLines();
  SetSerialLineList({L"COM6", L"COM5"});
  globals = Globals{};
  ResetUi();
  StartVirtualClock(kBegin_ms);
  state_ = AllocateState();
  StartUp(*state_);
  state_->initialised = 1;
  Ui().Choose(ID_DEVICE_PORT, L"COM5");
  Ui().Choose(ID_DEVICE_SPEED, L"921600");
  Ui().Choose(ID_GPS_PORT, L"N/A");
}

RunControlTest::~RunControlTest() {
  StopRun(*state_);
  FreeRecordWriter(*state_);
  StopVirtualClock();
  DetachSerialLines();
  ClearFaults();
  SetDocumentsFolder(nullptr);
  for (Event& event : state_->runEvents) DestroyEvent(event);
  for (Event* event : {&state_->recordingEvent, &state_->stopEvent, &state_->stopEventB, &state_->linkRetry})
    DestroyEvent(*event);
  for (Lock* lock : {&state_->ringLockA, &state_->ringLockB, &state_->gpsLock, &state_->recordLock,
                     &state_->linkLock, &state_->eventLog.lock, &globals.marksA.lock, &globals.marksB.lock,
                     &globals.linesA.lock, &globals.linesB.lock}) {
    DestroyLock(*lock);
  }
  if (Overview* const overview = state_->replay.overview; overview != nullptr) {
    DestroyEvent(overview->stop);
    DestroyLock(overview->lock);
    FreeZeroed(overview, sizeof *overview);
  }
  FreeZeroed(state_->ringA, kRingSize);
  FreeZeroed(state_->ringB, kRingSize);
  FreeZeroed(state_->link, sizeof *state_->link);
  FreeZeroed(state_, sizeof *state_);
}

void RunControlTest::ConnectSounder(const sim::SounderOptions& options, sim::PingObserver* observer) {
  sounder_ = std::make_unique<sim::VirtualEchosounder>(options, observer);
  sounderPeer_ = std::make_unique<SimulatorPeer>(*sounder_);
  AttachPeer(kDeviceLine, sounderPeer_.get());
}

void RunControlTest::ConnectGps(const sim::GpsOptions& options) {
  gps_ = std::make_unique<sim::VirtualGps>(options);
  gpsPeer_ = std::make_unique<SimulatorPeer>(*gps_);
  AttachPeer(kGpsLine, gpsPeer_.get());
  ChooseGps();
}

void RunControlTest::StartQuickRun(int seconds, const sim::SounderOptions& options) {
  ConnectSounder(options);
  StartRun(*state_);
  ASSERT_NE(state_->acquisitionThread, Handle::null);
  Run(seconds);
}

void RunControlTest::SetRecording(bool on) {
  Of(ID_RECORD).checked = on;
  ToggleRecording(*state_);
}

int32_t RunControlTest::NewestSlot(bool second) const {
  const Locked held(second ? state_->ringLockB : state_->ringLockA);
  return second ? state_->ringIndexB : state_->ringIndexA;
}

PingHeader RunControlTest::NewestPing(bool second) const {
  return LoadPingHeader((second ? state_->ringB : state_->ringA)->slots[NewestSlot(second)]);
}

void RunControlTest::Run(int seconds) {
  for (int i = 0; i < seconds; ++i) {
    SleepMilliseconds(1000);
    if (Ui().timers.contains(ID_TIMER_LINK)) HandleTimer(*state_, ID_TIMER_LINK);
  }
}

std::vector<std::string> RunControlTest::RecordFiles() const {
  std::vector<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(records_)) {
    names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  return names;
}

void RunControlTest::ExpectIdle() const {
  EXPECT_EQ(state_->devicePort, Handle::invalid);
  EXPECT_EQ(state_->acquisitionThread, Handle::null);
  EXPECT_EQ(state_->gpsThread, Handle::null);
  EXPECT_EQ(state_->recordFileA, Handle::invalid);
  EXPECT_EQ(state_->recordFileB, Handle::invalid);
  EXPECT_TRUE(Of(ID_START).enabled);
  EXPECT_TRUE(Ui().PointerIsArrow());
  EXPECT_FALSE(Ui().timers.contains(ID_TIMER_LINK));
  EXPECT_EQ(Ui().status[0], L"Device: Disconnected");
  EXPECT_EQ(Ui().status[1], L"GPS: Disconnected");
}

void RunControlTest::ExpectBox(const wchar_t* text, const wchar_t* caption, BoxIcon icon,
                               BoxButtons buttons) {
  EXPECT_EQ(std::exchange(Ui().boxes, {}), (std::vector<Box>{{text, caption, icon, buttons}}));
}

}  // namespace tw::test
