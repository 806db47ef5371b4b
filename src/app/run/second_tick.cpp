#include "app/run/second_tick.h"

#include "app/run/record_split.h"
#include "app/run/run_events.h"
#include "app/run/run_watch.h"
#include "base/shared_value.h"

namespace tw {
namespace {

constexpr uint32_t kChoiceDelay_ms = 1000;
constexpr uint32_t kCapturePeriod_ms = 135'000;
constexpr uint32_t kDualCapturePeriod_ms = 67'000;  // a live dual run's image is half as long
constexpr uint32_t kEarly_ms = 50;                  // as a timer of that period may come

bool IsOver(uint32_t since_ms, uint32_t period_ms, uint32_t now_ms) {
  return now_ms - since_ms + kEarly_ms >= period_ms;
}

void RequestDueCapture(AppState& state, uint32_t now_ms) {
  if (state.capturePeriod_ms == 0 || !IsOver(state.captureSince_ms, state.capturePeriod_ms, now_ms)) return;
  state.captureSince_ms = now_ms;
  StoreShared(globals.screenshotRequested, 1);
}

}  // namespace

DueNow TickSecond(AppState& state, uint32_t now_ms) {
  RequestDueCapture(state, now_ms);
  if (state.acquisitionThread != Handle::null) SplitWhenDue(state);
  WatchEvents(state, now_ms);
  return {.linkLost = state.acquisitionThread != Handle::null && LoadShared(state.linkLost) != 0,
          .choice = state.choiceWaits != 0 && IsOver(state.choiceSince_ms, kChoiceDelay_ms, now_ms),
          .away = AwayFor{LoadShared(state.linkAway)},
          .away_s = (now_ms - LoadShared(state.linkAwaySince_ms)) / 1000,
          .recordingEnded = WatchRun(state, now_ms)};
}

void KeepChoice(AppState& state, uint32_t now_ms) {
  state.choiceWaits = 1;
  state.choiceSince_ms = now_ms;
}

void ForgetChoice(AppState& state) {
  state.choiceWaits = 0;
}

uint32_t CapturePeriod(AppState& state, uint32_t now_ms) {
  const bool due = LoadShared(globals.autoCaptureTicked) != 0 && state.acquisitionThread != Handle::null;
  const uint32_t whole_ms = LoadShared(globals.dualMode) != 0 ? kDualCapturePeriod_ms : kCapturePeriod_ms;
  const uint32_t period_ms = due ? whole_ms : 0;
  if (period_ms != state.capturePeriod_ms) state.captureSince_ms = now_ms;
  state.capturePeriod_ms = period_ms;
  return period_ms;
}

}  // namespace tw
