#include "app/window/start_up.h"

#include "acquisition/record_file.h"
#include "app/run/record_set_up.h"
#include "app/run/run_events.h"
#include "app/settings/control_states.h"
#include "app/settings/persistent_settings.h"
#include "app/settings/port_selectors.h"
#include "app/settings/stored_options.h"
#include "app/state/event_log.h"
#include "app/window/control_ids.h"
#include "app/window/depth_outputs.h"
#include "app/window/display_options.h"
#include "app/window/run_changes.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "display/palette.h"
#include "platform/clock.h"
#include "platform/system_error.h"
#include "playback/segy_text_header.h"

namespace tw {
namespace {

constexpr int kExitWithoutMemory = 1;
constexpr uint32_t kLastScreenshotPause_ms = 10;

[[noreturn]] void EndForLackOf(AppState& state, uint32_t error) {
  ShowSystemError(state, error);
  EndProcess(kExitWithoutMemory);
}

void Need(AppState& state, bool made) {
  if (!made) EndForLackOf(state, LastSystemError());
}

}  // namespace

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
  Need(state, MakeRunEvents(state));
  ShowDisconnected(state);
  BuildPalette(state.palette);
  Need(state, AllocateRings(state));
  Need(state, MakeLocks(state));
  LoadRecordingChoices(state);
  state.options = LoadOptions();
  state.startsByItself = state.options.startByItself;
  PutDisplayOptionsInForce(state);
  RestartOutputs(state);
  DirectEventLog(state);
  BuildSegyTextHeader(globals.segyTextHeader);
  RefreshControlStates(state);
}

void BeginShutDown(AppState& state) {
  StopOutputs(state);
  StoreShared(globals.screenshotRequested, 1);
  CloseRecordFile(state, RecordChannel::a);
  TellRecordFile(state, RecordChannel::b);                   // kept: closed with the process
  static_cast<void>(AwaitRecords(state, kWritingLimit_ms));  // whatever is left goes with the process
  LogProgramEnds(state);
}

void FinishShutDown(AppState& state) {
  SleepMilliseconds(kLastScreenshotPause_ms);
  SaveWindowPlacement(state.windowPlacement);
}

}  // namespace tw
