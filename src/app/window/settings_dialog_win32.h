// The settings dialogs: "Settings (Single)", "Settings (Dual)" and "Detail Setting". GUI thread; each is
// modal to the main window.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// "Detail Setting": the dialog that fits the device; what was entered goes to it at once. During a playback
// the file's settings, which cannot be changed.
void EditSettings(AppState& state);

// "Show_Settings": those of the played file; without one it says what to do.
void ShowPlayedSettings(AppState& state);

}  // namespace tw
