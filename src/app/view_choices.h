// The choices of the controls that change nothing but what the echogram shows. GUI thread.
#pragma once

#include "app/app_state.h"

namespace tw {

// "Timestamp" was ticked or unticked. Ticked, it sets both time scales back.
void ToggleTimestamp(AppState& state);

}  // namespace tw
