#include "app/window/depth_watch.h"

#include "app/run/run_control.h"
#include "app/settings/depth_figures.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "base/text_format.h"

namespace tw {
namespace {

constexpr uint32_t kAlarmPeriod_ms = 1'000;

double InMetres(int32_t wanted, int32_t depth_cm) {
  return wanted != 0 ? depth_cm / 100.0 : 0;
}

DepthFacts CollectDepths(AppState& state, uint32_t now_ms) {
  DepthFacts facts{};
  if (state.playbackActive != 0) {
    facts.source = DepthSource::recording;
  } else if (HoldsRun(state)) {
    facts.source = DepthSource::device;
  }
  facts.dual = LoadShared(globals.dualMode) != 0;
  facts.channels[0] = {LoadShared(globals.latestAltitudeHigh_m),
                       now_ms - LoadShared(globals.latestPingHigh_ms)};
  facts.channels[1] = {LoadShared(globals.latestAltitudeLow_m),
                       now_ms - LoadShared(globals.latestPingLow_ms)};
  facts.unit = static_cast<DepthUnit>(state.options.depthUnit);
  facts.shallow_m = InMetres(state.options.alarmShallow, state.options.shallow_cm);
  facts.deep_m = InMetres(state.options.alarmDeep, state.options.deep_cm);
  return facts;
}

// At once, and then each second as long as it lasts.
void SoundWhereDue(AppState& state, bool alarm, uint32_t now_ms) {
  RunWatch& watch = state.watch;
  const bool due = alarm && (watch.depthAlarm == 0 || now_ms - watch.depthAlarm_ms >= kAlarmPeriod_ms);
  watch.depthAlarm = alarm ? 1 : 0;
  if (!due) return;
  watch.depthAlarm_ms = now_ms;
  if (state.options.alarmBeep != 0) SoundAlarm(state);
}

}  // namespace

void WatchDepth(AppState& state, uint32_t now_ms) {
  const DepthFigures figures = DescribeDepths(CollectDepths(state, now_ms));
  CopyWide(state.watch.depthAlarmText, figures.alarm);
  SoundWhereDue(state, figures.alarm[0] != L'\0', now_ms);
  ShowDepthWindow(state, state.options.depthWindow != 0 ? &figures : nullptr);
}

}  // namespace tw
