#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include "app/posts.h"
#include "app/window_handles_win32.h"

namespace tw {

// A text that cannot be posted is lost; the next one comes within a second.
void PostStatusText(AppState& state, StatusPart part, const wchar_t* text) {
  const HWND statusBar = ToWindow(state.statusBar);
  if (statusBar == nullptr) return;
  PostMessageW(statusBar, SB_SETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(text));
}

}  // namespace tw
