#include "acquisition/record_file.h"
#include "app/run/connection.h"
#include "app/run/elapsed_log.h"
#include "app/run/record_opening.h"
#include "app/run/run_control.h"
#include "app/run/run_steps.h"
#include "app/run/worker_control.h"
#include "app/settings/control_states.h"
#include "app/settings/family_controls.h"
#include "app/settings/persistent_settings.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "app/window/wait_pointer.h"
#include "base/shared_value.h"
#include "gps/gps_worker.h"
#include "playback/played_channel.h"

namespace tw {
namespace {

void BeginRecording(AppState& state) {
  if (!IsChecked(state, ID_RECORD)) return;
  Signal(state.recordingEvent);
  if (IsRecordFileOpen(state, RecordChannel::a) || IsRecordFileOpen(state, RecordChannel::b)) return;
  OpenRecordFiles(state, NamingMoment::start);
}

// What was shown until now of a file is no part of the run, nor are the depths of another device.
void ForgetFormerPings(AppState& state) {
  if (state.fileInRings != 0) ClearRings(state);
  state.fileInRings = 0;
  StoreShared(globals.latestAltitudeHigh_m, 0.0f);
  StoreShared(globals.latestAltitudeLow_m, 0.0f);
}

}  // namespace

void StartRun(AppState& state) {
  if (LoadShared(state.devicePort) != Handle::invalid) return;  // runs already
  const ElapsedLog log;
  EndFileWorkers(state);
  ClearLiveTexts(state);  // of a playback or conversion
  SetConversion(state, Conversion::none);
  RefreshControlStates(state);  // the playback is over, also when no run follows

  WaitPointer pointer(state);
  ForgetFormerPings(state);
  ReadCommunication(state);
  state.appliedSettings = state.settings;  // shown behind a box, until the device has told its own
  // What came while a box was shown found the port still open.
  if (!ConnectPorts(state, pointer, log) || !IdentifyDevice(state, pointer))
    return RefreshControlStates(state);
  ShowFamilyControls(state);
  log.Write("After GetSetting Time ");
  ShowConnection(state);
  AdoptDevice(state);
  RefreshSettingsControls(state);
  pointer.Restore();

  SaveCommunicationSettings(
      {globals.devicePortNumber, globals.deviceBaud, globals.gpsPortNumber, globals.gpsBaud});
  BeginRecording(state);
  KeepInterval(state.settings);
  log.Write("Before Start Device Time  ");
  RaiseRunNumber(state);
  ClearPosition(state, globals.gpsPortNumber != kNoGpsPort);
  if (!StartDeviceAndWorkers(state)) return;
  log.Write("After Start Device Time ");
}

}  // namespace tw
