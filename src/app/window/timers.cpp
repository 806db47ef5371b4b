#include <cwchar>

#include "app/run/second_tick.h"
#include "app/run/worker_control.h"
#include "app/settings/control_states.h"
#include "app/settings/family_controls.h"
#include "app/settings/port_selectors.h"
#include "app/settings/waiting_choices.h"
#include "app/state/file_naming.h"
#include "app/window/commands.h"
#include "app/window/control_ids.h"
#include "app/window/depth_watch.h"
#include "app/window/lamps.h"
#include "app/window/run_changes.h"
#include "app/window/run_faults.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "platform/clock.h"
#include "playback/file_worker.h"

namespace tw {
namespace {

// While the device chooses its interval itself, the operator sees the one that comes.
void ShowMeasuredInterval(AppState& state) {
  wchar_t text[32] = L"";
  if (LoadShared(state.devicePort) != Handle::invalid && state.settings.pingInterval_ms == 0) {
    FormatWide(text, "%.2f", static_cast<double>(LoadShared(globals.measuredPingInterval_ms)) / 1000.0);
  }
  SetControlText(state, ID_MEASURED_INTERVAL, text);
}

void ShowTitle(AppState& state) {
  const bool works = state.acquisitionThread != Handle::null || ConversionUnderWay(state) != Conversion::none;
  const bool named = works && IsChecked(state, ID_RECORD) && state.playbackActive == 0;
  wchar_t title[sizeof(Globals::titleText)];
  WidenText(title, named ? globals.titleText : kProgramTitle);
  SetWindowTitle(state, title);
}

void Repaint(AppState& state) {
  InvalidateEchogram(state);
  ShowMeasuredInterval(state);
  ShowTitle(state);
  ShowWaitingChoices(state);
  ShowLamps(state, MillisecondClock());
  WatchDepth(state, MillisecondClock());
}

// The text is posted once more, behind what the other worker of a pair has posted.
void GiveUpPlayback(AppState& state, PlaybackEnd end) {
  EndFileWorkers(state);
  PostStatusText(state, StatusPart::position, PlaybackFailureText(end));
  RefreshSettingsControls(state);
  RefreshControlStates(state);
}

void OfferPlaybackAgain(AppState& state) {
  const auto end = static_cast<PlaybackEnd>(ExchangeShared(globals.playbackEnded, kPlaybackGoesOn));
  if (end == kPlaybackGoesOn) return;
  if (end == kPlaybackGrew) {
    state.playbackAtEnd = 0;
    return RefreshControlStates(state);
  }
  if (end != kPlaybackExhausted) return GiveUpPlayback(state, end);
  StoreShared(state.playbackPace, kPlaybackPace_ms);
  SetControlText(state, ID_RESUME, L"\u25BA");
  state.playbackAtEnd = 1;
  RefreshControlStates(state);
}

bool Differs(AppState& state, int combo, const wchar_t* remembered) {
  wchar_t text[64];
  GetChosenText(state, combo, text);
  return std::wcscmp(text, remembered) != 0;
}

// A list that is dropped down is let be: the timer comes again.
void SendPendingChange(AppState& state) {
  if (IsListOpen(state)) return;
  ForgetChoice(state);
  StopTimer(state, ID_TIMER_CHANGES);
  if (LoadShared(state.devicePort) == Handle::invalid) return;
  state.pendingRange = Differs(state, ID_RANGE, state.rememberedRange) ? 1 : 0;
  state.pendingOutput = Differs(state, ID_OUTPUT, state.rememberedOutput) ? 1 : 0;
  if (state.pendingRange != 0 || state.pendingOutput != 0) ApplySettings(state);
}

void ReportLostLink(AppState& state) {
  StopTimer(state, ID_TIMER_LINK);
  StopTimer(state, ID_TIMER_CHANGES);  // timers go on while the box is shown
  TellFault(state, {RunFault::linkLost});
}

void CarryOutDue(AppState& state) {
  const DueNow due = TickSecond(state, MillisecondClock());
  if (due.recordingEnded && state.options.beepWhenEnded != 0) CallOperator(state, true);
  if (due.linkLost) return ReportLostLink(state);
  ShowAway(state, due.away, due.away_s);
  if (due.choice && due.away == AwayFor::nothing) SendPendingChange(state);
}

}  // namespace

void HandleTimer(AppState& state, int timer) {
  if (state.initialised == 0) return;
  switch (timer) {
    case ID_TIMER_PORTS:
      RefreshPortCombos(state);
      return StartByItself(state);
    case ID_TIMER_REPAINT:
      return Repaint(state);
    case ID_TIMER_SPARE:
      return;  // kept: the timer runs and does nothing
    case ID_TIMER_PLAYBACK_END:
      return OfferPlaybackAgain(state);
    case ID_TIMER_CAPTURE:
    case ID_TIMER_CHANGES:
    case ID_TIMER_LINK:
      return CarryOutDue(state);
    default:
      return;
  }
}

}  // namespace tw
