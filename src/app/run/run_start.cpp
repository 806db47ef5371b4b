#include "app/run/run_start.h"

#include <algorithm>

#include "acquisition/record_file.h"
#include "acquisition/time_marks.h"
#include "app/run/worker_control.h"
#include "base/shared_value.h"

namespace tw {
namespace {

constexpr int32_t kShortestInterval_ms = 10;

// In the mode that runs.
PanelRanges RangesOfPanels(const DeviceSettings& settings) {
  const bool dual = LoadShared(globals.dualMode) != 0;
  const bool low = !dual && UsesLowChannel(settings, FamilyInUse());
  return {RangeInMillimetres(low ? settings.rangeLow_mm : settings.rangeHigh_mm),
          dual ? RangeInMillimetres(settings.rangeLow_mm) : 0};
}

}  // namespace

PanelRanges RangesInForce(const AppState& state) {
  return RangesOfPanels(state.appliedSettings);
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

RunResult StartDeviceAndWorkers(AppState& state, RunChange how) {
  TellRunChanged(state, how);
  const RunFault fault = StartWorkers(state);
  if (fault != RunFault::none) {
    // A run that never began leaves no file; otherwise that is the worker's own business.
    if (state.acquisitionThread == Handle::null) DeleteEmptyRecordFiles(state);
    return {fault};
  }
  TellRunChanged(state, RunChange::running);
  return {};
}

}  // namespace tw
