#include "acquisition/output_mode.h"
#include "app/run/connection.h"
#include "app/run/record_opening.h"
#include "app/run/run_control.h"
#include "app/run/run_steps.h"
#include "app/settings/family_controls.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "app/window/wait_pointer.h"
#include "device/command_link.h"
#include "device/settings_writer.h"
#include "platform/clock.h"

namespace tw {
namespace {

constexpr uint32_t kPause_ms = 10;
constexpr OutputMode kFirstFamilyOld = 9;

// Ends the run so far that commands can be sent. On failure the operator has been told, and the program is
// idle.
bool BringToPrompt(AppState& state, WaitPointer& pointer) {
  ClearLiveTexts(state);
  StopTimer(state, ID_TIMER_CHANGES);
  StopTimer(state, ID_TIMER_LINK);
  if (!InterruptRun(state, pointer)) return false;
  // A prompt that comes late would shift each later reply by one.
  static_cast<void>(SkipReply(state.devicePort));
  SleepMilliseconds(kPause_ms);
  return true;
}

// Behind a command. What the device makes of it shows when the settings are read back; a line that fails here
// fails there again. The reply of a device that is slow to carry it out must not be there any more.
void AwaitEffect(AppState& state, LinkResult result) {
  if (result == LinkResult::noPrompt) static_cast<void>(TakeLateReply(state.devicePort));
}

// Sends what the operator changed.
void SendChanges(AppState& state) {
  const DeviceFamily family = FamilyInUse();
  state.settings.simultaneous = family == DeviceFamily::first && IsChecked(state, ID_DUAL_MODE) ? 1 : 0;
  AwaitEffect(state, WriteChangedSettings(state.devicePort, family, state.settings, state.appliedSettings));
}

// The device refuses the output in dual mode, or with that output the dual mode.
bool DualOldRefused(const DeviceSettings& wanted, const DeviceSettings& applied, const DeviceSettings& now) {
  if (FamilyInUse() != DeviceFamily::first || wanted.simultaneous == 0) return false;
  if (wanted.outputMode != kFirstFamilyOld) return false;
  const bool sent = applied.outputMode != kFirstFamilyOld;
  return (sent && now.outputMode != kFirstFamilyOld) || now.simultaneous == 0;
}

// A text that is no output of this family leaves the recording closed.
void ReopenRecordFiles(AppState& state) {
  wchar_t text[64];
  GetControlText(state, ID_OUTPUT, text);
  OutputMode mode = 0;
  if (!IsChecked(state, ID_RECORD) || !ModeOfName(FamilyInUse(), text, mode)) return;
  OpenRecordFiles(state, NamingMoment::recordSwitchedOn);
}

// Takes the device's own account of its settings and goes on with the run.
void ResumeRun(AppState& state, PanelRanges before) {
  AdoptDevice(state, before);
  RefreshSettingsControls(state);
  ReopenRecordFiles(state);
  KeepInterval(state.settings);
  static_cast<void>(StartDeviceAndWorkers(state));
}

}  // namespace

void ApplySettings(AppState& state) {
  if (!IsConnected(state)) return;
  WaitPointer pointer(state);
  if (!BringToPrompt(state, pointer)) return;

  const DeviceSettings applied = state.appliedSettings;
  const PanelRanges ranges = RangesOfPanels(applied);
  SendChanges(state);
  const DeviceSettings wanted = state.settings;
  if (!ReadSettingsBack(state)) return GiveUpRun(state, pointer, kUnreadableSettings);
  if (DualOldRefused(wanted, applied, state.settings)) {
    pointer.Restore();
    ShowBox(state, L"Sonarmite_old fortmat is not support Dual_mode", L"", BoxIcon::information);
  }
  ResumeRun(state, ranges);
}

void RestoreDefaults(AppState& state) {
  if (!IsConnected(state)) return;
  if (!ShowBox(state, L"Change to default setting?", L"Info", BoxIcon::none, BoxButtons::okCancel)) return;
  if (!IsConnected(state)) return;  // lost while the question stood there
  WaitPointer pointer(state);
  if (!BringToPrompt(state, pointer)) return;

  const PanelRanges ranges = RangesOfPanels(state.appliedSettings);
  state.settings = state.appliedSettings;  // choices that wait have never been sent
  AwaitEffect(state, Exchange(state.devicePort, CommandId::defaults));
  if (!ReadSettingsBack(state)) return GiveUpRun(state, pointer, kUnreadableSettings);
  ResumeRun(state, ranges);
}

}  // namespace tw
