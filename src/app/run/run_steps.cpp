#include "app/run/run_steps.h"

#include <algorithm>

#include "acquisition/record_file.h"
#include "acquisition/time_marks.h"
#include "app/run/connection.h"
#include "app/run/run_control.h"
#include "app/run/worker_control.h"
#include "app/settings/control_states.h"
#include "app/settings/family_controls.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "app/window/view_choices.h"
#include "base/shared_value.h"
#include "device/stop_device.h"
#include "platform/clock.h"

namespace tw {
namespace {

constexpr int32_t kShortestInterval_ms = 10;
constexpr uint32_t kLinkTimerPeriod_ms = 1000;

// The texts that a later change of the selectors is compared with.
void RememberTexts(AppState& state) {
  GetControlText(state, ID_RANGE, state.rememberedRange);
  if (LoadShared(globals.dualMode) != 0) GetControlText(state, ID_RANGE, state.rememberedRangeDual);
  GetControlText(state, ID_OUTPUT, state.rememberedOutput);
  GetControlText(state, ID_INTERVAL, state.rememberedInterval);
  state.pendingRange = 0;
  state.pendingOutput = 0;
}

}  // namespace

PanelRanges RangesOfPanels(const DeviceSettings& settings) {
  const bool dual = LoadShared(globals.dualMode) != 0;
  const bool low = !dual && UsesLowChannel(settings, FamilyInUse());
  return {RangeInMillimetres(low ? settings.rangeLow_mm : settings.rangeHigh_mm),
          dual ? RangeInMillimetres(settings.rangeLow_mm) : 0};
}

void AdoptDevice(AppState& state, PanelRanges before) {
  DeviceSettings& settings = state.settings;
  const bool first = FamilyInUse() == DeviceFamily::first;
  const bool dual = first && settings.simultaneous != 0;
  StoreShared(globals.dualMode, dual ? 1 : 0);
  if (first && settings.pingInterval_ms >= 1 && settings.pingInterval_ms < kShortestInterval_ms) {
    settings.pingInterval_ms = kShortestInterval_ms;
  }
  const PanelRanges now = RangesOfPanels(settings);
  if (now.upper_mm != before.upper_mm) state.displayRangeUpper = now.upper_mm;
  if (dual && now.lower_mm != before.lower_mm) state.displayRangeLower = now.lower_mm;
}

void KeepInterval(const DeviceSettings& settings) {
  StoreShared(globals.pingInterval_ms, static_cast<float>(settings.pingInterval_ms));
  StoreShared(globals.measuredPingInterval_ms, 0.0f);
  const auto known_ms = static_cast<uint32_t>(std::max(settings.pingInterval_ms, 0));
  StoreShared(globals.marksAtStart, MarkInterval(kSingleMarkPeriod_ms, known_ms));
}

void ClearLiveTexts(AppState& state) {
  PostStatusText(state, StatusPart::position, L"");
  PostStatusText(state, StatusPart::pingLine, L"");
}

bool StartDeviceAndWorkers(AppState& state) {
  StartTimer(state, ID_TIMER_LINK, kLinkTimerPeriod_ms);
  const WorkerStart result = StartWorkers(state);
  if (result != WorkerStart::started) {
    // A run that never began leaves no file; otherwise that is the worker's own business.
    if (state.acquisitionThread == Handle::null) DeleteEmptyRecordFiles(state);
    ReportWorkerStart(state, result);
    StopRun(state);
    return false;
  }
  RefreshSettingsControls(state);
  RememberTexts(state);
  RefreshControlStates(state);
  RefreshCaptureTimer(state);
  return true;
}

bool InterruptRun(AppState& state, WaitPointer& pointer) {
  EndAcquisition(state, kWaitForever);
  if (StopDevice(state.devicePort) == LinkResult::success) return true;
  GiveUpRun(state, pointer, kNotConnected);
  return false;
}

void GiveUpRun(AppState& state, WaitPointer& pointer, const wchar_t* text) {
  pointer.Restore();
  ShowBox(state, text, L"Error", BoxIcon::error);
  StopRun(state);
}

bool IsConnected(AppState& state) {
  if (LoadShared(state.devicePort) != Handle::invalid) return true;
  ShowBox(state, kNotConnected, L"Error", BoxIcon::error);
  return false;
}

}  // namespace tw
