#include "acquisition/output_mode.h"
#include "app/run/connection.h"
#include "app/run/record_opening.h"
#include "app/run/run_control.h"
#include "app/run/run_events.h"
#include "app/run/run_start.h"
#include "app/run/worker_control.h"
#include "base/shared_value.h"
#include "device/command_link.h"
#include "device/settings_writer.h"
#include "device/stop_device.h"
#include "platform/clock.h"

namespace tw {
namespace {

constexpr uint32_t kPause_ms = 10;
constexpr OutputMode kFirstFamilyOld = 9;

// A prompt that comes late would shift each later reply by one.
void TakeLatePrompt(AppState& state) {
  static_cast<void>(SkipReply(*state.link));
  SleepMilliseconds(kPause_ms);
}

// Behind a command. What the device makes of it shows when the settings are read back; a line that fails here
// fails there again. The reply of a device that is slow to carry it out must not be there any more.
void AwaitEffect(AppState& state, LinkResult result) {
  if (result == LinkResult::noPrompt) static_cast<void>(TakeLateReply(*state.link));
}

// The device refuses the output in dual mode, or with that output the dual mode.
bool DualOldRefused(const DeviceSettings& wanted, const DeviceSettings& applied, const DeviceSettings& now) {
  if (FamilyInUse() != DeviceFamily::first || wanted.simultaneous == 0) return false;
  if (wanted.outputMode != kFirstFamilyOld) return false;
  const bool sent = applied.outputMode != kFirstFamilyOld;
  return (sent && now.outputMode != kFirstFamilyOld) || now.simultaneous == 0;
}

}  // namespace

RunResult InterruptRun(AppState& state) {
  EndAcquisition(state, kWaitForever);
  state.link->port = LoadShared(state.devicePort);  // another one, where the device was away
  return {StopDevice(*state.link) == LinkResult::success ? RunFault::none : RunFault::noPromptInRun};
}

RunResult SendSettings(AppState& state, const RunChoices& choices) {
  TakeLatePrompt(state);
  const DeviceFamily family = FamilyInUse();
  state.settings.simultaneous = family == DeviceFamily::first && choices.dual ? 1 : 0;
  const DeviceSettings applied = state.appliedSettings;
  const DeviceSettings wanted = state.settings;
  AwaitEffect(state, WriteChangedSettings(*state.link, family, wanted, applied));
  if (!ReadSettingsBack(state)) return {RunFault::unreadable};
  LogSettingsChanged(state, "Apply");
  return {DualOldRefused(wanted, applied, state.settings) ? RunFault::dualOldRefused : RunFault::none};
}

RunResult SendDefaults(AppState& state) {
  TakeLatePrompt(state);
  state.settings = state.appliedSettings;  // choices that wait have never been sent
  AwaitEffect(state, Exchange(*state.link, CommandId::defaults));
  if (!ReadSettingsBack(state)) return {RunFault::unreadable};
  LogSettingsChanged(state, "Default Setting");
  return {};
}

// An output that the family does not offer leaves the recording closed.
RunResult ResumeRun(AppState& state, const RunChoices& choices, PanelRanges before) {
  AdoptDevice(state, before);
  const bool offered = !NameOfMode(FamilyInUse(), state.settings.outputMode).empty();
  if (choices.record && offered) OpenRecordFiles(state, NamingMoment::recordSwitchedOn);
  KeepInterval(state.settings);
  return StartDeviceAndWorkers(state);
}

}  // namespace tw
