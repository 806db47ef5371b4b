#include "acquisition/record_file.h"
#include "app/run/connection.h"
#include "app/run/record_opening.h"
#include "app/run/run_control.h"
#include "app/run/run_events.h"
#include "app/run/run_start.h"
#include "app/run/worker_control.h"
#include "base/shared_value.h"
#include "gps/gps_worker.h"
#include "playback/played_channel.h"

namespace tw {
namespace {

void BeginRecording(AppState& state) {
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

RunResult Connect(AppState& state, const RunChoices& choices, const ElapsedLog& log) {
  TakeCommunication(state, choices);
  state.appliedSettings = state.settings;  // shown behind a box, until the device has told its own
  const RunResult result = ConnectPorts(state, log);
  return result.Succeeded() ? IdentifyDevice(state) : result;
}

}  // namespace

RunResult BeginRun(AppState& state, const RunChoices& choices, const ElapsedLog& log) {
  ForgetFormerPings(state);
  const RunResult connected = Connect(state, choices, log);
  if (!connected.Succeeded()) return connected;
  log.Write("After GetSetting Time ");
  AdoptDevice(state);
  TellRunChanged(state, RunChange::identified);
  LogRunBegins(state);

  if (choices.record) BeginRecording(state);
  KeepInterval(state.settings);
  log.Write("Before Start Device Time  ");
  RaiseRunNumber(state);
  ClearPosition(state, globals.gpsPortNumber != kNoGpsPort);
  const RunResult started = StartDeviceAndWorkers(state);
  if (started.Succeeded()) log.Write("After Start Device Time ");
  return started;
}

}  // namespace tw
