// The main window: class, creation and message loop. GUI thread. The window owns the state record from its
// WM_CREATE on; the record is never freed.
#pragma once

#include <windows.h>

#include "app/state/app_state.h"

namespace tw {

[[nodiscard]] bool RegisterMainWindowClass(HINSTANCE instance, const wchar_t* className);

// Creates the hidden main window with its controls and its status bar. Null when the system cannot.
[[nodiscard]] AppState* CreateMainWindow(HINSTANCE instance);

// Shows the window for the first time; from now on it keeps account of its place.
void ShowMainWindow(AppState& state, int showCommand);

// Runs until the window is destroyed; the program's exit code.
[[nodiscard]] int RunMessageLoop(AppState& state, HINSTANCE instance);

}  // namespace tw
