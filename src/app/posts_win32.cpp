#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include "app/posts.h"
#include "app/window_handles_win32.h"

namespace tw {

namespace {

void PostCopy(HWND receiver, const ProgressBlock& progress) {
  if (receiver == nullptr) return;
  const uintptr_t copy = SendProgress(progress);
  if (copy != 0 && PostMessageW(receiver, WM_USER, copy, 0) == FALSE) static_cast<void>(ReceiveProgress(copy));
}

}  // namespace

// A text that cannot be posted is lost; the next one comes within a second.
void PostStatusText(AppState& state, StatusPart part, const wchar_t* text) {
  const HWND statusBar = ToWindow(state.statusBar);
  if (statusBar == nullptr) return;
  PostMessageW(statusBar, SB_SETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(text));
}

void PostProgress(AppState& state, const ProgressBlock& progress) {
  PostCopy(ToWindow(state.sliderWindow), progress);
  PostCopy(MainWindow(state), progress);
}

void PostConversionEnd(AppState& state, bool exhausted) {
  PostMessageW(MainWindow(state), kConversionEndMessage, exhausted ? 1 : 0, 0);
}

}  // namespace tw
