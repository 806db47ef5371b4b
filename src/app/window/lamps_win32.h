// Draws the lamps of the main window and the red texts of its status bar. GUI thread.
#pragma once

#include <windows.h>

#include "app/state/app_state.h"

namespace tw {

// Gives the lamps what they show while the mouse rests on them, in the window of the tips; once, when the
// controls are there.
void PrepareLamps(const AppState& state, HWND tips);

// The main window's WM_DRAWITEM, for lamps and status bar.
void DrawLampItem(const AppState& state, const DRAWITEMSTRUCT& item);

}  // namespace tw
