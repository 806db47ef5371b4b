// The commands that set a device going. GUI thread, after StopDevice.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// Sends the start sequence, the dual one for a first-family device in dual mode, and "#go"; afterwards the
// device streams. Results are not looked at: a device that does not start shows as a silent line. What was
// sent stands in `settings` and `appliedSettings` (the output mode is first replaced by 3 when the device
// could not know it).
void StartDevice(AppState& state);

}  // namespace tw
