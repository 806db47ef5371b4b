#include "app/control_ids.h"
#include "app/file_naming.h"
#include "app/port_selectors.h"
#include "app/run_control.h"
#include "app/ui.h"
#include "base/shared_value.h"
#include "base/text_format.h"

namespace tw {
namespace {

// While the device chooses its interval itself, the operator sees the one that comes.
void ShowMeasuredInterval(AppState& state) {
  if (LoadShared(state.devicePort) == Handle::invalid || state.settings.pingInterval_ms != 0) return;
  wchar_t text[32];
  FormatWide(text, "%.2f", static_cast<double>(LoadShared(globals.measuredPingInterval_ms)) / 1000.0);
  SetControlText(state, ID_MEASURED_INTERVAL, text);
}

void ShowTitle(AppState& state) {
  const bool recording =
      state.acquisitionThread != Handle::null && IsChecked(state, ID_RECORD) && state.playbackActive == 0;
  SetWindowTitle(state, recording ? globals.titleText : kProgramTitle);
}

void Repaint(AppState& state) {
  InvalidateEchogram(state);
  ShowMeasuredInterval(state);
  ShowTitle(state);
}

void OfferPlaybackAgain(AppState& state) {
  if (ExchangeShared(globals.playbackEnded, 0) == 0) return;
  state.playbackPace = kPlaybackPace_ms;
  SetControlText(state, ID_RESUME, L"\u25BA");
  EnableControl(state, ID_RESUME, true);
}

// A worker that ended by itself still counts as running until it is stopped here.
void ReportLostLink(AppState& state) {
  if (state.acquisitionThread == Handle::null || LoadShared(state.linkLost) == 0) return;
  StopTimer(state, ID_TIMER_LINK);
  ShowBox(state, L"Connection lost!", L"Error", BoxIcon::error);
  StopRun(state);
}

}  // namespace

void HandleTimer(AppState& state, int timer) {
  if (state.initialised == 0) return;
  switch (timer) {
    case ID_TIMER_PORTS:
      return RefreshPortCombos(state);
    case ID_TIMER_REPAINT:
      return Repaint(state);
    case ID_TIMER_SPARE:
      return;  // kept: the timer runs and does nothing
    case ID_TIMER_PLAYBACK_END:
      return OfferPlaybackAgain(state);
    case ID_TIMER_CAPTURE:
      return StoreShared(globals.screenshotRequested, 1);
    case ID_TIMER_LINK:
      return ReportLostLink(state);
    default:
      return;
  }
}

}  // namespace tw
