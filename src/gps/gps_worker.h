// The GPS worker: reads the GPS port and keeps the fix and what is derived from it current, under gpsLock.
#pragma once

#include "app/app_state.h"

namespace tw {

// Thread body; `state` is the state record. Reads `gpsPort` until a read fails, or the port is no longer the
// one that it began with (Stop, another Start). A port that failed is closed and marked invalid. Quality 0 is
// left behind, unless another port is open by then, whose worker owns the fix.
void GpsWorker(void* state);

// Posts the position text to the status bar. GUI thread and playback workers.
void FormatPositionStatus(AppState& state);

}  // namespace tw
