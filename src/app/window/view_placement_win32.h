// Places the echogram, the slider and the status bar in the main window, and keeps account of where the main
// window itself stands. GUI thread.
#pragma once

#include <windows.h>

#include "app/state/app_state.h"
#include "app/window/window_layout.h"

namespace tw {

// The system's resolution, fixed while the program runs.
[[nodiscard]] int32_t ScreenDpi();

// The part of the window's monitor that no task bar covers. Any window, also one that is just being made.
[[nodiscard]] Box WorkAreaOf(HWND window);

// Brings a window that is too large for its monitor, or stands beyond its edge, into the work area.
void FitIntoWorkArea(HWND window);

// Creates the status bar with its five parts. Null when the system cannot.
[[nodiscard]] HWND CreateStatusBar(HWND mainWindow);

// Fits status bar, echogram and slider to the client area. Those that do not exist yet are left out.
void PlaceViews(AppState& state);

// Notes the main window's place and stores it; without effect before the start-up is over and in full-screen.
void KeepWindowPlacement(AppState& state);

// Gives a full-screen window its old style and place back.
void LeaveFullScreen(AppState& state);

}  // namespace tw
