// How the main window shows what has changed of the run; TellRunChanged does the rest. GUI thread.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// Shows in the status bar that nothing is connected.
void ShowDisconnected(AppState& state);

}  // namespace tw
