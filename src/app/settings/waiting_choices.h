// Marks the choices of the main window that the device has not been told: a dot beside each, and Apply in
// bold letters. GUI thread.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// To be called several times a second; shows what has changed.
void ShowWaitingChoices(AppState& state);

}  // namespace tw
