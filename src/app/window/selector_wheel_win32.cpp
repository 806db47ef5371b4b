#include "app/window/selector_wheel_win32.h"

// Needs the types of windows.h.
#include <commctrl.h>

#include <cwchar>
#include <iterator>

namespace tw {
namespace {

LRESULT CALLBACK SelectorProcedure(HWND selector, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                                   DWORD_PTR) {
  if (message == WM_MOUSEWHEEL && SendMessageW(selector, CB_GETDROPPEDSTATE, 0, 0) == FALSE) return 0;
  if (message == WM_NCDESTROY) RemoveWindowSubclass(selector, SelectorProcedure, id);
  return DefSubclassProc(selector, message, wParam, lParam);
}

bool IsSelector(HWND control) {
  wchar_t name[32] = L"";
  GetClassNameW(control, name, static_cast<int>(std::size(name)));
  return std::wcscmp(name, L"ComboBox") == 0;
}

}  // namespace

void KeepWheelFromSelectors(HWND window) {
  for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
    if (IsSelector(child)) SetWindowSubclass(child, SelectorProcedure, 0, 0);
  }
}

}  // namespace tw
