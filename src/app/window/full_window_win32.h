// Full-window mode: the controls are hidden and the echogram takes their place; the status bar stays. The
// echogram view switches it by ToggleFullWindow, which is declared there. GUI thread.
#pragma once

#include <windows.h>

#include "app/state/app_state.h"

namespace tw {

// To be called once when the controls exist: remembers which of them start hidden.
void RememberHiddenControls(AppState& state);

// Shows or hides a control; in full-window mode it only comes back with the others.
void WantControlVisible(AppState& state, HWND control, bool visible);

}  // namespace tw
