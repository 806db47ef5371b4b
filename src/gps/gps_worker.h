// The GPS worker: reads the GPS port and keeps the fix and what is derived from it current, under gpsLock.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// Thread body; `state` is the state record. Its run is the one that the starter has put into `gpsRunNumber`,
// which it takes as its first step; where none stands it ends and touches nothing. Reads `gpsPort` until a
// read fails, or the port is no longer the one that it began with (Stop, another Start; Apply leaves both). A
// port that failed is closed and marked invalid, and quality 0 left behind; with `openReceiver` set it is the
// null handle until it could be opened anew, which is tried every 2 s. After a Stop the worker touches
// nothing. Losses of input go to the debug output.
void GpsWorker(void* state);

// Takes the fix and what is derived from it back, for a run that begins. Without a receiver the quality is 0
// as well, so that the sentences say so. The talker flag stays: it goes by the sentences. GUI thread.
void ClearPosition(AppState& state, bool receiver);

// Posts the position text to the status bar. GUI thread and playback workers.
void FormatPositionStatus(AppState& state);

}  // namespace tw
