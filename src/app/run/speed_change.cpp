#include "acquisition/output_mode.h"
#include "app/run/connection.h"
#include "app/run/record_opening.h"
#include "app/run/run_control.h"
#include "app/run/run_events.h"
#include "app/run/run_start.h"
#include "device/command_link.h"
#include "device/settings_writer.h"
#include "platform/clock.h"

namespace tw {
namespace {

constexpr uint32_t kPause_ms = 10;
constexpr uint32_t kSpeedPause_ms = 100;

// The third family does not answer in between.
bool AwaitsReplies() {
  return FamilyInUse() != DeviceFamily::third;
}

// Tells the device and everybody else about the new speed. The device takes it over when it is reset.
bool SendNewSpeed(AppState& state, int32_t speed_bps) {
  if (SendSpeed(*state.link, speed_bps) != LinkResult::success) return false;
  if (AwaitsReplies()) static_cast<void>(SkipReply(*state.link));
  TellRunChanged(state, RunChange::speedTaken);
  SleepMilliseconds(kSpeedPause_ms);
  static_cast<void>(SendCommandNoValue(*state.link, CommandId::reset));
  return true;
}

// kept: the output's name is looked for among the first family's, and the files are named as that family's,
// whichever device it is. So a recording in a mode of another name ends here.
void ReopenAsFirstFamily(AppState& state) {
  OutputMode mode = 0;
  const std::wstring_view name = NameOfMode(FamilyInUse(), state.settings.outputMode);
  if (!ModeOfName(DeviceFamily::first, name, mode)) return;
  OpenRecordFiles(state, NamingMoment::recordSwitchedOn, DeviceFamily::first);
}

}  // namespace

RunResult SwitchSpeed(AppState& state, int32_t speed_bps, const RunChoices& choices) {
  if (AwaitsReplies()) {
    static_cast<void>(SkipReply(*state.link));
    SleepMilliseconds(kPause_ms);
  }
  globals.deviceBaud = speed_bps;  // kept: also when the device does not hear of it
  if (!SendNewSpeed(state, speed_bps)) return {RunFault::speedUnheard};

  CloseDevicePort(state);
  SleepMilliseconds(kSpeedPause_ms);
  uint32_t error = 0;
  if (!OpenDevice(state, error)) return {RunFault::speedRefused, error};
  LogSettingsChanged(state, "Change Baudrate");
  if (choices.record) ReopenAsFirstFamily(state);
  KeepInterval(state.settings);
  return StartDeviceAndWorkers(state, RunChange::reconnected);
}

}  // namespace tw
