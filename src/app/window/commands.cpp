#include "app/window/commands.h"

#include "app/run/file_run.h"
#include "app/run/run_control.h"
#include "app/run/run_watch.h"
#include "app/run/second_tick.h"
#include "app/settings/control_states.h"
#include "app/settings/link_texts.h"
#include "app/settings/persistent_settings.h"
#include "app/settings/port_selectors.h"
#include "app/settings/stored_options.h"
#include "app/state/event_log.h"
#include "app/window/control_ids.h"
#include "app/window/depth_outputs.h"
#include "app/window/display_options.h"
#include "app/window/run_changes.h"
#include "app/window/run_faults.h"
#include "app/window/shown_talk.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "device/device_link.h"
#include "platform/clock.h"

namespace tw {
namespace {

RunChoices ReadChoices(AppState& state) {
  RunChoices choices{};
  choices.record = IsChecked(state, ID_RECORD);
  choices.dual = IsChecked(state, ID_DUAL_MODE);
  ReadPortChoices(state, choices.device, choices.receiver);
  return choices;
}

// No timer comes while the run is interrupted and a box may be shown.
void StopRunTimers(AppState& state) {
  ForgetChoice(state);
  StopTimer(state, ID_TIMER_CHANGES);
  StopTimer(state, ID_TIMER_LINK);
}

// True when the run can go on.
bool Tell(AppState& state, BusyTalk& talk, RunResult result) {
  if (result.Succeeded()) return true;
  talk.Restore();
  TellFault(state, result);
  return result.fault == RunFault::dualOldRefused;
}

using ExchangeStep = RunResult (*)(AppState& state, const RunChoices& choices);

// Apply and Default Setting: an interruption in which settings are exchanged.
void ExchangeSettings(AppState& state, ExchangeStep exchange) {
  BusyTalk talk(state, L"Interrupting the run");
  ClearLiveTexts(state);
  StopRunTimers(state);
  if (!Tell(state, talk, InterruptRun(state))) return;
  const RunChoices choices = ReadChoices(state);
  const PanelRanges before = RangesInForce(state);
  if (!Tell(state, talk, exchange(state, choices))) return;
  static_cast<void>(Tell(state, talk, ResumeRun(state, choices, before)));
}

constexpr wchar_t kOpening[] = L"Opening the device's port";

// Behind a start that found no device. Posted, so that it comes behind the empty text that the start has
// posted.
void TellHeard(AppState& state, RunFault fault) {
  if (fault != RunFault::noPrompt && fault != RunFault::unidentified) return;
  PostStatusText(state, StatusPart::position, HeardText(state.link->heard.Verdict()));
}

RunResult TryStart(AppState& state, const ElapsedLog& log) {
  EndFileWorkers(state);
  ClearLiveTexts(state);  // of a playback or conversion
  SetConversion(state, Conversion::none);
  RefreshControlStates(state);  // the playback is over, also when no run follows
  StopTimer(state, ID_TIMER_LINK);
  return BeginRun(state, ReadChoices(state), log);
}

}  // namespace

void ClearLiveTexts(AppState& state) {
  PostStatusText(state, StatusPart::position, L"");
  PostStatusText(state, StatusPart::pingLine, L"");
}

void EndFileWorkers(AppState& state) {
  if (EndFileRun(state)) ArrangeViews(state);
}

void StartRun(AppState& state) {
  if (LoadShared(state.devicePort) != Handle::invalid) return;  // runs already
  state.startsByItself = 0;
  const ElapsedLog log;
  BusyTalk talk(state, kOpening);
  const RunResult result = TryStart(state, log);
  if (result.Succeeded()) return;
  talk.Restore();
  TellFault(state, result, &log);
  TellHeard(state, result.fault);
  RefreshControlStates(state);
}

void StartByItself(AppState& state) {
  constexpr uint32_t kPause_ms = 10'000;
  if (state.startsByItself == 0 || StateOfProgram(state) != ProgramState::idle) return;
  const uint32_t now_ms = MillisecondClock();
  if (state.startsByItself > 1 && now_ms - state.startTried_ms < kPause_ms) return;
  if (IsListOpen(state) || !SelectStoredPortsThatAreThere(state)) return;
  const BusyTalk talk(state, kOpening);
  const ElapsedLog log;
  const RunResult result = TryStart(state, log);
  state.startsByItself = result.Succeeded() ? 0 : 2;
  state.startTried_ms = MillisecondClock();
  if (result.Succeeded()) return;
  TellFaultQuietly(state, result, &log);
  TellHeard(state, result.fault);
  RefreshControlStates(state);
}

void StopRun(AppState& state) {
  state.startsByItself = 0;
  EndFileWorkers(state);
  if (!HoldsRun(state)) return EndRun(state);
  const WaitPointer pointer;
  const ShownTalk talk(state, L"Ending the run");
  EndRun(state);
}

void ApplySettings(AppState& state) {
  if (IsConnected(state)) ExchangeSettings(state, SendSettings);
}

void RestoreDefaults(AppState& state) {
  if (!IsConnected(state)) return;
  if (!ShowBox(state, L"Change to default setting?", L"Info", BoxIcon::none, BoxButtons::okCancel)) return;
  if (!IsConnected(state)) return;  // lost while the question stood there
  ExchangeSettings(state, [](AppState& of, const RunChoices&) { return SendDefaults(of); });
}

void ChangeSpeed(AppState& state, int32_t speed_bps) {
  if (!IsConnected(state)) return;
  BusyTalk talk(state, L"Interrupting the run");
  StopRunTimers(state);
  if (!Tell(state, talk, InterruptRun(state))) return;
  ClearLiveTexts(state);  // the first ping at a slow speed may take long
  static_cast<void>(Tell(state, talk, SwitchSpeed(state, speed_bps, ReadChoices(state))));
}

void NoteChoice(AppState& state) {
  constexpr uint32_t kDelay_ms = 1000;
  if (LoadShared(state.devicePort) == Handle::invalid) return;
  KeepChoice(state, MillisecondClock());
  StartTimer(state, ID_TIMER_CHANGES, kDelay_ms);
}

void ToggleRecording(AppState& state) {
  const bool record = IsChecked(state, ID_RECORD);
  SaveRecordingFlag(record);
  SwitchRecording(state, record);
  RefreshAwake(state);
}

void TakeOptions(AppState& state, const Options& entered) {
  state.options = entered;
  SaveOptions(entered);
  DirectEventLog(state);
  RestartOutputs(state);
  PutDisplayOptionsInForce(state);
}

bool MayClose(AppState& state) {
  if (state.options.askBeforeClosing == 0 || !WantsRecording(state)) return true;
  if (ExchangeShared(state.closingAsked, 1) != 0) return false;  // the question is shown already
  const bool close = ShowBox(state, L"The recording goes on. Close the program?", L"Info", BoxIcon::none,
                             BoxButtons::okCancel);
  state.closingAsked = 0;
  return close;
}

}  // namespace tw
