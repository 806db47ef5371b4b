// The windows that the state record names, as the system knows them, and the way back. GUI thread.
#pragma once

#include <windows.h>

#include "app/state/app_state.h"

namespace tw {

// To the main window: a conversion is over; the first parameter is 1 when all of its input was read.
inline constexpr UINT kConversionEndMessage = WM_APP;

[[nodiscard]] inline HWND ToWindow(Handle handle) {
  return reinterpret_cast<HWND>(static_cast<uintptr_t>(handle));
}

[[nodiscard]] inline Handle FromWindow(HWND window) {
  return Handle{reinterpret_cast<uintptr_t>(window)};
}

[[nodiscard]] inline HWND MainWindow(const AppState& state) {
  return ToWindow(state.mainWindow);
}

// From now on the status bar reads no text that PostOwnText is writing. False when the system refuses.
[[nodiscard]] bool GuardStatusTexts(HWND statusBar);

// Null when the main window has no such control (yet).
[[nodiscard]] inline HWND Control(const AppState& state, int id) {
  return GetDlgItem(MainWindow(state), id);
}

// The state record of the main window; null until WM_CREATE has made it.
[[nodiscard]] inline AppState* StateOf(HWND mainWindow) {
  return reinterpret_cast<AppState*>(GetWindowLongPtrW(mainWindow, GWLP_USERDATA));
}

}  // namespace tw
