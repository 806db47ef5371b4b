#include "app/run/record_opening.h"
#include "app/run/run_control.h"
#include "app/settings/persistent_settings.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "base/shared_value.h"

namespace tw {
namespace {

void SwitchRecordingOff(AppState& state) {
  PostStatusText(state, StatusPart::pingLine, L"");
  Reset(state.recordingEvent);
  CloseRecordFiles(state);
  SaveRecordingFlag(false);
}

void SwitchRecordingOn(AppState& state) {
  Signal(state.recordingEvent);
  SaveRecordingFlag(true);
  if (LoadShared(state.devicePort) != Handle::invalid) {
    OpenRecordFiles(state, NamingMoment::recordSwitchedOn);
  }
}

}  // namespace

void ToggleRecording(AppState& state) {
  if (IsChecked(state, ID_RECORD)) {
    SwitchRecordingOn(state);
  } else {
    SwitchRecordingOff(state);
  }
}

}  // namespace tw
