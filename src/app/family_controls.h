// What the main window's settings controls show of the connected device. GUI thread.
#pragma once

#include "app/app_state.h"

namespace tw {

// Shows the controls that the device's family has and hides the others.
void ShowFamilyControls(AppState& state);

// Puts the device's settings into the controls: output mode, range and interval as the one item of their
// selectors, the frequency in use and dual mode as check marks.
void RefreshSettingsControls(AppState& state);

}  // namespace tw
