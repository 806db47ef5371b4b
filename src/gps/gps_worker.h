// The GPS worker: reads the GPS port and keeps the fix and what is derived from it current, under gpsLock.
#pragma once

#include "app/app_state.h"

namespace tw {

// Thread body; `state` is the state record. Ends when the port fails or is closed, or when the run number has
// become stale. A port that failed is closed and marked invalid, and the quality becomes 0.
void GpsWorker(void* state);

// Posts the position text to the status bar. GUI thread and playback workers.
void FormatPositionStatus(AppState& state);

}  // namespace tw
