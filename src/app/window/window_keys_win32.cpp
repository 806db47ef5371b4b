#include "app/window/window_keys_win32.h"

#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "app/window/window_handles_win32.h"
#include "display/echogram_view_win32.h"
#include "display/zoom.h"

namespace tw {
namespace {

bool IsHeld(int key) {
  return GetKeyState(key) < 0;
}

bool LeavesFullWindow(const AppState& state, const MSG& message) {
  return message.message == WM_KEYDOWN && message.wParam == VK_ESCAPE && state.fullWindow != 0;
}

// Of the keys of dialogs this one alone: the others belong to the echogram and the buttons.
bool IsTab(const MSG& message) {
  return message.message == WM_KEYDOWN && message.wParam == VK_TAB && !IsHeld(VK_CONTROL);
}

void GoToNextControl(HWND window) {
  const HWND focus = GetFocus();
  const HWND from = IsChild(window, focus) != FALSE ? focus : nullptr;
  const HWND next = GetNextDlgTabItem(window, from, IsHeld(VK_SHIFT) ? TRUE : FALSE);
  if (next == nullptr || IsWindowVisible(next) == FALSE) return;
  SendMessageW(window, WM_CHANGEUISTATE, MAKEWPARAM(UIS_CLEAR, UISF_HIDEFOCUS), 0);
  SetFocus(next);
}

// A key that belongs to the text of a field: what is typed, and Ctrl with a letter.
bool IsTyped(const MSG& message) {
  wchar_t name[8] = L"";
  const bool key = message.message == WM_KEYDOWN && (message.wParam < VK_F1 || message.wParam > VK_F24);
  return key && message.wParam != VK_TAB && GetClassNameW(message.hwnd, name, 8) != 0 &&
         lstrcmpiW(name, L"Edit") == 0;
}

// With both frequencies both panels.
void ZoomDepth(AppState& state, WheelTurn turn) {
  if (globals.dualMode == 0) return ZoomRange(state, PanelPlace::single, turn);
  ZoomRange(state, PanelPlace::upper, turn);
  ZoomRange(state, PanelPlace::lower, turn);
}

}  // namespace

bool CarryOutKey(AppState& state, HACCEL accelerators, MSG& message) {
  if (IsTyped(message)) return false;
  if (TranslateAcceleratorW(MainWindow(state), accelerators, &message) != 0) return true;
  if (LeavesFullWindow(state, message)) {
    ToggleFullWindow(state);
    return true;
  }
  const HWND window = MainWindow(state);
  if (!IsTab(message) || (message.hwnd != window && IsChild(window, message.hwnd) == FALSE)) return false;
  GoToNextControl(window);
  return true;
}

bool HandleKeyCommand(AppState& state, int id) {
  switch (id) {
    case ID_KEY_FULL_WINDOW:
      ToggleFullWindow(state);
      return true;
    case ID_KEY_PICTURE:
      PostMessageW(Control(state, ID_ECHOGRAM), WM_RBUTTONDOWN, 0, 0);
      return true;
    case ID_KEY_SMALLER_RANGE:
      ZoomDepth(state, WheelTurn::forward);
      return true;
    case ID_KEY_LARGER_RANGE:
      ZoomDepth(state, WheelTurn::back);
      return true;
    case ID_KEY_SHORTER_TIME:
      ZoomTimeScale(state, WheelTurn::forward);
      return true;
    case ID_KEY_LONGER_TIME:
      ZoomTimeScale(state, WheelTurn::back);
      return true;
    default:
      return false;
  }
}

void TickByKey(AppState& state, int id) {
  const HWND box = Control(state, id);
  const LONG_PTR kind = box == nullptr ? 0 : GetWindowLongPtrW(box, GWL_STYLE) & BS_TYPEMASK;
  if (kind == BS_AUTOCHECKBOX) SetChecked(state, id, !IsChecked(state, id));
}

}  // namespace tw
