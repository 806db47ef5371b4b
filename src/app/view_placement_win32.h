// Places the echogram, the slider and the status bar in the main window, and keeps account of where the main
// window itself stands. GUI thread.
#pragma once

#include <windows.h>

#include "app/app_state.h"

namespace tw {

// The system's resolution, fixed while the program runs.
[[nodiscard]] int32_t ScreenDpi();

// Creates the status bar with its five parts. Null when the system cannot.
[[nodiscard]] HWND CreateStatusBar(HWND mainWindow);

// Fits status bar, echogram and slider to the client area. Those that do not exist yet are left out.
void PlaceViews(AppState& state);

// Notes the main window's place and stores it; without effect before the start-up is over and in full-screen.
void KeepWindowPlacement(AppState& state);

// Gives a full-screen window its old style and place back.
void LeaveFullScreen(AppState& state);

}  // namespace tw
