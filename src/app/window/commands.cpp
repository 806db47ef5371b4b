#include "app/window/commands.h"

#include "app/run/file_run.h"
#include "app/run/run_control.h"
#include "app/run/second_tick.h"
#include "app/settings/control_states.h"
#include "app/settings/persistent_settings.h"
#include "app/settings/port_selectors.h"
#include "app/settings/stored_options.h"
#include "app/state/event_log.h"
#include "app/window/control_ids.h"
#include "app/window/depth_outputs.h"
#include "app/window/display_options.h"
#include "app/window/run_changes.h"
#include "app/window/run_faults.h"
#include "app/window/ui.h"
#include "app/window/wait_pointer.h"
#include "base/shared_value.h"
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
bool Tell(AppState& state, WaitPointer& pointer, RunResult result) {
  if (result.Succeeded()) return true;
  pointer.Restore();
  TellFault(state, result);
  return result.fault == RunFault::dualOldRefused;
}

using ExchangeStep = RunResult (*)(AppState& state, const RunChoices& choices);

// Apply and Default Setting: an interruption in which settings are exchanged.
void ExchangeSettings(AppState& state, ExchangeStep exchange) {
  WaitPointer pointer(state);
  ClearLiveTexts(state);
  StopRunTimers(state);
  if (!Tell(state, pointer, InterruptRun(state))) return;
  const RunChoices choices = ReadChoices(state);
  const PanelRanges before = RangesInForce(state);
  if (!Tell(state, pointer, exchange(state, choices))) return;
  static_cast<void>(Tell(state, pointer, ResumeRun(state, choices, before)));
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
  WaitPointer pointer(state);
  const RunResult result = TryStart(state, log);
  if (result.Succeeded()) return;
  pointer.Restore();
  TellFault(state, result, &log);
  RefreshControlStates(state);
}

void StartByItself(AppState& state) {
  constexpr uint32_t kPause_ms = 10'000;
  if (state.startsByItself == 0 || StateOfProgram(state) != ProgramState::idle) return;
  const uint32_t now_ms = MillisecondClock();
  if (state.startsByItself > 1 && now_ms - state.startTried_ms < kPause_ms) return;
  if (IsListOpen(state) || !SelectStoredPortsThatAreThere(state)) return;
  const WaitPointer pointer(state);
  const ElapsedLog log;
  const RunResult result = TryStart(state, log);
  state.startsByItself = result.Succeeded() ? 0 : 2;
  state.startTried_ms = MillisecondClock();
  if (result.Succeeded()) return;
  TellFaultQuietly(state, result, &log);
  RefreshControlStates(state);
}

void StopRun(AppState& state) {
  state.startsByItself = 0;
  EndFileWorkers(state);
  if (!HoldsRun(state)) return EndRun(state);
  const WaitPointer pointer;
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
  WaitPointer pointer(state);
  StopRunTimers(state);
  if (!Tell(state, pointer, InterruptRun(state))) return;
  ClearLiveTexts(state);  // the first ping at a slow speed may take long
  static_cast<void>(Tell(state, pointer, SwitchSpeed(state, speed_bps, ReadChoices(state))));
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

}  // namespace tw
