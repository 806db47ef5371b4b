#include "app/window/start_up.h"

#include "acquisition/ping_ring.h"
#include "acquisition/record_file.h"
#include "app/run/connection.h"
#include "app/settings/control_states.h"
#include "app/settings/persistent_settings.h"
#include "app/settings/port_selectors.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "display/palette.h"
#include "platform/clock.h"
#include "platform/memory.h"
#include "platform/system_error.h"
#include "playback/segy_text_header.h"

namespace tw {
namespace {

constexpr int kExitWithoutMemory = 1;
constexpr uint32_t kLastScreenshotPause_ms = 10;
constexpr int32_t kDisplayRange_mm = 10'000;
constexpr int32_t kTimeScale_s = 150;

[[noreturn]] void EndForLackOf(AppState& state, uint32_t error) {
  ShowSystemError(state, error);
  EndProcess(kExitWithoutMemory);
}

PingRing* AllocateRing(AppState& state) {
  void* const block = AllocateZeroed(kRingSize);
  if (block == nullptr) EndForLackOf(state, LastSystemError());
  return static_cast<PingRing*>(block);
}

void MakeEventOrEnd(AppState& state, Event& event, ResetMode mode) {
  if (!MakeEvent(event, mode)) EndForLackOf(state, LastSystemError());
}

}  // namespace

AppState* AllocateState() {
  return static_cast<AppState*>(AllocateZeroed(sizeof(AppState)));
}

void FillCommunicationControls(AppState& state) {
  FillDevicePortCombo(state);
  FillGpsPortCombo(state);
  const CommunicationSettings stored = LoadCommunicationSettings();
  globals.devicePortNumber = stored.devicePort;
  globals.deviceBaud = stored.deviceSpeed_bps;
  globals.gpsPortNumber = stored.gpsPort;
  globals.gpsBaud = stored.gpsSpeed_bps;
  SelectStoredPorts(state, stored);
  FillSpeedCombos(state, stored);
}

void StartTimers(AppState& state) {
  StartTimer(state, ID_TIMER_PORTS, 2000);
  StartTimer(state, ID_TIMER_REPAINT, 100);
  StartTimer(state, ID_TIMER_SPARE, 1000);
  StartTimer(state, ID_TIMER_PLAYBACK_END, 1000);
}

void SetStartUpValues(AppState& state) {
  state.settings = StartUpSettings();
  state.displayRangeUpper = state.displayRangeLower = kDisplayRange_mm;
  state.timeScaleUpper = state.timeScaleLower = kTimeScale_s;
  state.inputFileA = state.inputFileB = Handle::invalid;
  state.recordFileA = state.recordFileB = Handle::invalid;
  state.recordBusyA = state.recordBusyB = Handle::invalid;
  state.segyCompanionA = state.segyCompanionB = Handle::invalid;
  state.devicePort = Handle::invalid;
}

void MakeRunEvents(AppState& state) {
  for (Event& event : state.runEvents) MakeEventOrEnd(state, event, ResetMode::manual);
  MakeEventOrEnd(state, state.recordingEvent, ResetMode::manual);
}

void AllocateRings(AppState& state) {
  state.ringA = AllocateRing(state);
  state.ringB = AllocateRing(state);
}

void MakeLocks(AppState& state) {
  MakeLock(state.ringLockA);
  MakeLock(state.ringLockB);
  MakeLock(state.gpsLock);
  MakeLock(state.recordLock);
  MakeLock(globals.marksA.lock);
  MakeLock(globals.marksB.lock);
  MakeEventOrEnd(state, state.stopEvent, ResetMode::automatic);
  MakeEventOrEnd(state, state.stopEventB, ResetMode::automatic);
}

void LoadRecordingChoices(AppState& state) {
  LoadWorkingFolder(state);
  const bool recording = LoadRecordingFlag();
  SetChecked(state, ID_RECORD, recording);
  if (recording) {
    Signal(state.recordingEvent);
  } else {
    Reset(state.recordingEvent);
  }
}

void StartUp(AppState& state) {
  FillCommunicationControls(state);
  StartTimers(state);
  SetStartUpValues(state);
  MakeRunEvents(state);
  ShowDisconnected(state);
  BuildPalette(state.palette);
  AllocateRings(state);
  MakeLocks(state);
  LoadRecordingChoices(state);
  BuildSegyTextHeader(globals.segyTextHeader);
  RefreshControlStates(state);
}

void BeginShutDown(AppState& state) {
  StoreShared(globals.screenshotRequested, 1);
  CloseRecordFile(state, RecordChannel::a);
}

void FinishShutDown(AppState& state) {
  SleepMilliseconds(kLastScreenshotPause_ms);
  SaveWindowPlacement(state.windowPlacement);
}

}  // namespace tw
