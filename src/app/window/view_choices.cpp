#include "app/window/view_choices.h"

#include "app/run/second_tick.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "platform/clock.h"

namespace tw {

namespace {

constexpr int32_t kTimeScale_s = 150;  // the one that the places of marks and screenshots are made for
constexpr int64_t kNoCapture = -1;

}  // namespace

void ToggleTimestamp(AppState& state) {
  const bool ticked = IsChecked(state, ID_TIMESTAMP);
  StoreShared(globals.timestampTicked, ticked ? 1 : 0);
  if (ticked) state.timeScaleUpper = state.timeScaleLower = kTimeScale_s;
}

void ToggleAutoCapture(AppState& state) {
  const bool ticked = IsChecked(state, ID_AUTO_CAPTURE);
  StoreShared(globals.autoCaptureTicked, ticked ? 1 : 0);
  if (ticked) {
    state.timeScaleUpper = state.timeScaleLower = kTimeScale_s;
    globals.autoCaptureSince_s = UnixMilliseconds() / 1000;
    StoreShared(globals.lastCapture_s, kNoCapture);
  } else {
    StoreShared(globals.screenshotRequested, 1);
  }
  RefreshCaptureTimer(state);
}

void RefreshCaptureTimer(AppState& state) {
  const uint32_t before_ms = state.capturePeriod_ms;
  const uint32_t period_ms = CapturePeriod(state, MillisecondClock());
  if (period_ms == before_ms) return;
  if (period_ms != 0) {
    StartTimer(state, ID_TIMER_CAPTURE, period_ms);
  } else {
    StopTimer(state, ID_TIMER_CAPTURE);
  }
}

}  // namespace tw
