// The commands that set a device going. GUI thread, after StopDevice.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// Sends the start sequence, the dual one for a first-family device in dual mode, and "#go"; afterwards the
// device streams. Results are not looked at: a device that does not start shows as a silent line. What was
// sent stands in `settings` and `appliedSettings`. The output mode is one that the device knows.
void StartDevice(AppState& state);

}  // namespace tw
