#include <algorithm>

#include "acquisition/record_file.h"
#include "acquisition/time_marks.h"
#include "app/connection.h"
#include "app/control_ids.h"
#include "app/elapsed_log.h"
#include "app/family_controls.h"
#include "app/persistent_settings.h"
#include "app/record_opening.h"
#include "app/run_control.h"
#include "app/ui.h"
#include "app/wait_pointer.h"
#include "app/worker_control.h"
#include "base/shared_value.h"

namespace tw {
namespace {

constexpr int32_t kShortestInterval_ms = 10;
constexpr uint32_t kLinkTimerPeriod_ms = 1000;

// The range of the frequency that a single device of the first family pings with.
int32_t SingleRange(const DeviceSettings& settings) {
  return settings.frequencyInUse_hz == settings.lowFrequency_hz ? settings.rangeLow_mm
                                                                : settings.rangeHigh_mm;
}

// Fits dual mode, ping interval and display ranges to the device that answered.
void AdoptDevice(AppState& state) {
  DeviceSettings& settings = state.settings;
  const bool first = LoadShared(globals.deviceFamily) == 1;
  const bool dual = first && settings.simultaneous != 0;
  StoreShared(globals.dualMode, dual ? 1 : 0);
  if (first && settings.pingInterval_ms >= 1 && settings.pingInterval_ms < kShortestInterval_ms) {
    settings.pingInterval_ms = kShortestInterval_ms;
  }
  const int32_t upper = first && !dual ? SingleRange(settings) : settings.rangeHigh_mm;
  state.displayRangeUpper = RangeInMillimetres(upper);
  if (dual) state.displayRangeLower = RangeInMillimetres(settings.rangeLow_mm);
}

void BeginRecording(AppState& state) {
  if (!IsChecked(state, ID_RECORD)) return;
  Signal(state.recordingEvent);
  if (IsRecordFileOpen(state, RecordChannel::a) || IsRecordFileOpen(state, RecordChannel::b)) return;
  OpenRecordFiles(state, NamingMoment::start);
}

// What the workers need to know of the interval; an automatic one is measured.
void KeepInterval(const DeviceSettings& settings) {
  StoreShared(globals.pingInterval_ms, static_cast<float>(settings.pingInterval_ms));
  StoreShared(globals.measuredPingInterval_ms, 0.0f);
  const auto known_ms = static_cast<uint32_t>(std::max(settings.pingInterval_ms, 0));
  StoreShared(globals.marksAtStart, MarkInterval(kSingleMarkPeriod_ms, known_ms));
}

// The texts that a later change of the selectors is compared with.
void RememberTexts(AppState& state) {
  GetControlText(state, ID_RANGE, state.rememberedRange);
  if (LoadShared(globals.dualMode) != 0) GetControlText(state, ID_RANGE, state.rememberedRangeDual);
  GetControlText(state, ID_OUTPUT, state.rememberedOutput);
  GetControlText(state, ID_INTERVAL, state.rememberedInterval);
  state.pendingRange = 0;
  state.pendingOutput = 0;
}

bool StartDeviceAndWorkers(AppState& state, const ElapsedLog& log) {
  log.Write("Before Start Device Time  ");
  StartTimer(state, ID_TIMER_LINK, kLinkTimerPeriod_ms);
  RaiseRunNumber(state);
  const WorkerStart result = StartWorkers(state);
  if (result != WorkerStart::started) {
    // A run that never began leaves no file; otherwise that is the worker's own business.
    if (state.acquisitionThread == Handle::null) DeleteEmptyRecordFiles(state);
    ReportWorkerStart(state, result);
    StopRun(state);
    return false;
  }
  RefreshSettingsControls(state);
  log.Write("After Start Device Time ");
  return true;
}

}  // namespace

void StartRun(AppState& state) {
  if (LoadShared(state.devicePort) != Handle::invalid) return;  // runs already
  const ElapsedLog log;
  EndFileWorkers(state);
  StoreShared(state.conversionKind, 0);

  WaitPointer pointer;
  ReadCommunication(state);
  if (!ConnectPorts(state, pointer, log) || !IdentifyDevice(state, pointer)) return;
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
  if (!StartDeviceAndWorkers(state, log)) return;
  RememberTexts(state);
  EnableControl(state, ID_START, false);
}

}  // namespace tw
