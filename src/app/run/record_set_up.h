// The state record before its first run. GUI thread, or the one thread of a program without a window; each
// function once, in the order in which they stand here.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// The state record, zero-filled, and its device link, for the life of the process; null when there is no
// memory.
[[nodiscard]] AppState* AllocateState();

// Start-up values of the settings and the display; marks the files and the device port as closed. The GPS
// port stays the null handle.
void SetStartUpValues(AppState& state);

// The events that steer playback and recording. False: the system has none, LastSystemError() tells why.
[[nodiscard]] bool MakeRunEvents(AppState& state);

// Both ping rings, zero-filled and not resident. False: there is no memory, LastSystemError() tells why.
[[nodiscard]] bool AllocateRings(AppState& state);

// The locks, and the events that end workers. False as above.
[[nodiscard]] bool MakeLocks(AppState& state);

}  // namespace tw
