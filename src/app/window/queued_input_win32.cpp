// What waits in the queue of the GUI thread when a command has kept the window busy for seconds.
#include <windows.h>

#include <utility>

#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "app/window/window_handles_win32.h"

namespace tw {
namespace {

struct Range {
  UINT first;
  UINT last;
};
constexpr Range kInput[] = {
    {WM_KEYFIRST, WM_KEYLAST},
    {WM_MOUSEFIRST, WM_MOUSELAST},
    {WM_NCMOUSEMOVE, WM_NCXBUTTONDBLCLK},  // captions, close boxes, menu bars
};

// What is carried out later. No menu opens meanwhile, so of "Exit" only its keys can wait here.
struct Kept {
  bool stop;
  bool close;
  bool fileMenu;  // Alt and F came last: an X behind it is "Exit"
};
Kept kept{};

// By the place, because a button that is disabled at that moment leaves its clicks to the window behind it.
bool IsOnStop(const AppState& state, const MSG& message) {
  const HWND stop = Control(state, ID_STOP);
  if (message.hwnd != stop && message.hwnd != MainWindow(state)) return false;
  POINT at{static_cast<SHORT>(LOWORD(message.lParam)), static_cast<SHORT>(HIWORD(message.lParam))};
  ClientToScreen(message.hwnd, &at);
  RECT place{};
  return IsWindowVisible(stop) != FALSE && GetWindowRect(stop, &place) != FALSE &&
         PtInRect(&place, at) != FALSE;
}

void NoteKey(const AppState& state, const MSG& message) {
  const HWND window = MainWindow(state);
  if (message.hwnd != window && IsChild(window, message.hwnd) == FALSE) return;
  const bool alt = message.message == WM_SYSKEYDOWN;
  if (alt && message.wParam == VK_F4) kept.close = true;
  if (!alt && message.wParam == VK_F5 && GetKeyState(VK_SHIFT) < 0) kept.stop = true;
  if (kept.fileMenu && message.wParam == 'X') kept.close = true;
  kept.fileMenu = alt && message.wParam == 'F';
}

void NoteInput(const AppState& state, const MSG& message) {
  switch (message.message) {
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      kept.stop = kept.stop || IsOnStop(state, message);
      return;
    case WM_LBUTTONUP:  // of a click whose beginning the button has seen
      if (GetCapture() == Control(state, ID_STOP)) kept.stop = kept.stop || IsOnStop(state, message);
      return;
    case WM_NCLBUTTONDOWN:
      if (message.wParam == HTCLOSE && message.hwnd == MainWindow(state)) kept.close = true;
      return;
    case WM_KEYDOWN:
    case WM_SYSKEYDOWN:
      return NoteKey(state, message);
    default:
      return;
  }
}

}  // namespace

void DropQueuedInput(AppState& state) {
  for (const Range& range : kInput) {
    MSG message{};
    while (PeekMessageW(&message, nullptr, range.first, range.last, PM_REMOVE) != FALSE) {
      if (message.message == WM_QUIT) {  // comes whatever is asked for
        PostQuitMessage(static_cast<int>(message.wParam));
        return;
      }
      NoteInput(state, message);
    }
  }
  // A button that was held down meanwhile does not hear of its release.
  if (GetCapture() != nullptr && GetKeyState(VK_LBUTTON) >= 0) ReleaseCapture();
}

void CarryOutKeptInput(AppState& state) {
  const Kept now = std::exchange(kept, {});
  if (now.stop) PostMessageW(MainWindow(state), WM_COMMAND, ID_STOP, 0);
  if (now.close) PostMessageW(MainWindow(state), WM_CLOSE, 0, 0);
}

}  // namespace tw
