// The thread that makes the overview of the recording that is played: it reads the file by itself, beside the
// worker that plays, and stands back behind everybody. It stays as long as the playback, so that the overview
// of a file that is still written grows with it. GUI thread.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// Begins with the file that inputFileA is, unless it has begun. Without memory, or a thread, or when the file
// cannot be opened once more, there is no overview.
void BeginOverview(AppState& state);

// Waits for the thread, which ends at its next read. The overview is empty from then on.
void EndOverview(AppState& state);

}  // namespace tw
