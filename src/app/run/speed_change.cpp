#include "acquisition/output_mode.h"
#include "app/run/connection.h"
#include "app/run/record_opening.h"
#include "app/run/run_control.h"
#include "app/run/run_steps.h"
#include "app/settings/persistent_settings.h"
#include "app/settings/port_selectors.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "app/window/wait_pointer.h"
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
  if (SendSpeed(state.devicePort, speed_bps) != LinkResult::success) return false;
  if (AwaitsReplies()) static_cast<void>(SkipReply(state.devicePort));
  SelectDeviceSpeed(state, speed_bps);
  SaveCommunicationSettings(
      {globals.devicePortNumber, globals.deviceBaud, globals.gpsPortNumber, globals.gpsBaud});
  SleepMilliseconds(kSpeedPause_ms);
  static_cast<void>(SendCommandNoValue(state.devicePort, CommandId::reset));
  return true;
}

// kept: the output's name is looked for among the first family's, and the files are named as that family's,
// whichever device it is. So a recording in a mode of another name ends here.
void ReopenAsFirstFamily(AppState& state) {
  wchar_t text[64];
  GetControlText(state, ID_OUTPUT, text);
  OutputMode mode = 0;
  if (!IsChecked(state, ID_RECORD) || !ModeOfName(DeviceFamily::first, text, mode)) return;
  OpenRecordFiles(state, NamingMoment::recordSwitchedOn, DeviceFamily::first);
}

}  // namespace

void ChangeSpeed(AppState& state, int32_t speed_bps) {
  if (!IsConnected(state)) return;
  WaitPointer pointer(state);
  StopTimer(state, ID_TIMER_CHANGES);
  if (!InterruptRun(state, pointer)) return;
  ClearLiveTexts(state);  // the first ping at a slow speed may take long
  if (AwaitsReplies()) {
    static_cast<void>(SkipReply(state.devicePort));
    SleepMilliseconds(kPause_ms);
  }
  StopTimer(state, ID_TIMER_LINK);
  globals.deviceBaud = speed_bps;  // kept: also when the device does not hear of it
  if (!SendNewSpeed(state, speed_bps)) return GiveUpRun(state, pointer, kNotConnected);

  CloseDevicePort(state);
  SleepMilliseconds(kSpeedPause_ms);
  uint32_t error = 0;
  if (!OpenDevice(state, error)) {
    pointer.Restore();
    ShowSystemError(state, error);
    return StopRun(state);
  }
  ReopenAsFirstFamily(state);
  ShowConnection(state);
  KeepInterval(state.settings);
  static_cast<void>(StartDeviceAndWorkers(state));
}

}  // namespace tw
