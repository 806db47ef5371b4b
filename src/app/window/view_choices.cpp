#include "app/window/view_choices.h"

#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "platform/clock.h"

namespace tw {

namespace {

constexpr int32_t kTimeScale_s = 150;  // the one that the places of marks and screenshots are made for
constexpr uint32_t kCapturePeriod_ms = 135'000;
constexpr uint32_t kDualCapturePeriod_ms = 67'000;  // a live dual run's image is half as long
constexpr int64_t kNoCapture = -1;

// 0: none is due.
uint32_t CapturePeriod(const AppState& state) {
  if (LoadShared(globals.autoCaptureTicked) == 0 || state.acquisitionThread == Handle::null) return 0;
  return LoadShared(globals.dualMode) != 0 ? kDualCapturePeriod_ms : kCapturePeriod_ms;
}

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
  const uint32_t period_ms = CapturePeriod(state);
  if (period_ms == state.capturePeriod_ms) return;
  state.capturePeriod_ms = period_ms;
  if (period_ms != 0) {
    StartTimer(state, ID_TIMER_CAPTURE, period_ms);
  } else {
    StopTimer(state, ID_TIMER_CAPTURE);
  }
}

}  // namespace tw
