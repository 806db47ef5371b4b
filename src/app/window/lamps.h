// The lamps of the main window and what the status bar tells beside them: collects the facts and shows what
// has changed. GUI thread.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"

namespace tw {

// To be called several times a second with the clock's time.
void ShowLamps(AppState& state, uint32_t now_ms);

}  // namespace tw
