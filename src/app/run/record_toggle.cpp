#include "app/run/record_opening.h"
#include "app/run/run_control.h"
#include "app/state/posts.h"
#include "base/shared_value.h"

namespace tw {

void SwitchRecording(AppState& state, bool record) {
  if (record) {
    Signal(state.recordingEvent);
    if (LoadShared(state.devicePort) == Handle::invalid) return;
    return OpenRecordFiles(state, NamingMoment::recordSwitchedOn);
  }
  PostStatusText(state, StatusPart::pingLine, L"");
  Reset(state.recordingEvent);
  CloseRecordFiles(state);
}

}  // namespace tw
