#include "app/window/ui.h"

#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include <cwchar>
#include <iterator>

#include "app/window/control_ids.h"
#include "app/window/full_window_win32.h"
#include "app/window/view_placement_win32.h"
#include "app/window/window_handles_win32.h"
#include "base/text_format.h"
#include "display/echogram_view_win32.h"
#include "platform/file.h"
#include "platform/system_error.h"

namespace tw {
namespace {

UINT BoxStyle(BoxIcon icon, BoxButtons buttons) {
  const UINT style = buttons == BoxButtons::okCancel ? MB_OKCANCEL : MB_OK;
  switch (icon) {
    case BoxIcon::none:
      return style;
    case BoxIcon::error:
      return style | MB_ICONERROR;
    case BoxIcon::information:
      return style | MB_ICONINFORMATION;
  }
  return style;
}

// Texts that a timer sets again and again are only set when they change, so that nothing flickers.
void SetChangedText(HWND window, const wchar_t* text) {
  wchar_t shown[512];
  GetWindowTextW(window, shown, static_cast<int>(std::size(shown)));
  if (std::wcscmp(shown, text) != 0) SetWindowTextW(window, text);
}

BOOL CALLBACK LookForList(HWND child, LPARAM found) {
  wchar_t name[16] = L"";
  GetClassNameW(child, name, static_cast<int>(std::size(name)));
  if (std::wcscmp(name, L"ComboBox") != 0 || SendMessageW(child, CB_GETDROPPEDSTATE, 0, 0) == FALSE)
    return TRUE;
  *reinterpret_cast<bool*>(found) = true;
  return FALSE;
}

bool HasListOpen(HWND window) {
  bool found = false;
  EnumChildWindows(window, LookForList, reinterpret_cast<LPARAM>(&found));
  return found;
}

}  // namespace

bool ShowBox(AppState& state, const wchar_t* text, const wchar_t* caption, BoxIcon icon, BoxButtons buttons) {
  const HWND owner = GetLastActivePopup(MainWindow(state));
  return MessageBoxW(owner, text, caption, BoxStyle(icon, buttons)) == IDOK;
}

void ShowSystemError(AppState& state, uint32_t code) {
  wchar_t text[512];
  SystemErrorText(code, text);
  ShowBox(state, text, L"GetLastError", BoxIcon::none);
}

void SetStatusText(AppState& state, StatusPart part, const wchar_t* text) {
  SendMessageW(ToWindow(state.statusBar), SB_SETTEXTW, static_cast<WPARAM>(part),
               reinterpret_cast<LPARAM>(text));
}

void ShowProgress(AppState& state, const wchar_t* text) {
  constexpr auto kPart = static_cast<WPARAM>(StatusPart::position);
  static wchar_t before[kStatusTextSize];  // what stood there
  static wchar_t shown[kStatusTextSize];   // the progress that stands there now; empty: none
  const HWND statusBar = ToWindow(state.statusBar);
  EndNotice(state);  // its timer waits for the end of the talk
  if (shown[0] == L'\0' && LOWORD(SendMessageW(statusBar, SB_GETTEXTLENGTHW, kPart, 0)) < kStatusTextSize) {
    SendMessageW(statusBar, SB_GETTEXTW, kPart, reinterpret_cast<LPARAM>(before));
  }
  CopyWide(shown, text);
  SetStatusText(state, StatusPart::position, text[0] != L'\0' ? text : before);
  UpdateWindow(statusBar);
}

void TellScreenshot(AppState& state, const wchar_t* path) {
  const wchar_t* const separator = std::wcsrchr(path, kPathSeparator);
  ShowNotice(state, separator == nullptr ? path : separator + 1);
}

void ShowPointer(PointerShape shape) {
  SetCursor(LoadCursorW(nullptr, shape == PointerShape::wait ? IDC_WAIT : IDC_ARROW));
}

void EnableControl(AppState& state, int id, bool enabled) {
  const HWND control = Control(state, id);
  if (control == nullptr) {
    EnableMenuItem(GetMenu(MainWindow(state)), static_cast<UINT>(id),
                   MF_BYCOMMAND | static_cast<UINT>(enabled ? MF_ENABLED : MF_GRAYED));
    return;
  }
  const bool hadFocus = GetFocus() == control;
  EnableWindow(control, enabled ? TRUE : FALSE);
  // A disabled control that keeps the focus would swallow the keys.
  if (!enabled && hadFocus) SetFocus(MainWindow(state));
}

void ShowControl(AppState& state, int id, bool visible) {
  WantControlVisible(state, Control(state, id), visible);
}

// The fonts live as long as the window. All that is ever bold has the dialog's font.
void SetBold(AppState& state, int id, bool bold) {
  static HFONT usual = nullptr;
  static HFONT heavy = nullptr;
  const HWND control = Control(state, id);
  if (heavy == nullptr) {
    LOGFONTW font{};
    usual = reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
    if (GetObjectW(usual, sizeof(font), &font) == 0) return;
    font.lfWeight = FW_BOLD;
    heavy = CreateFontIndirectW(&font);
  }
  SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(bold ? heavy : usual), TRUE);
}

bool IsChecked(AppState& state, int id) {
  return SendMessageW(Control(state, id), BM_GETCHECK, 0, 0) == BST_CHECKED;
}

void SetChecked(AppState& state, int id, bool checked) {
  SendMessageW(Control(state, id), BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED, 0);
}

void GetControlText(AppState& state, int id, std::span<wchar_t> text) {
  if (text.empty()) return;
  text.front() = L'\0';
  GetWindowTextW(Control(state, id), text.data(), static_cast<int>(text.size()));
}

void SetControlText(AppState& state, int id, const wchar_t* text) {
  SetChangedText(Control(state, id), text);
}

void ClearCombo(AppState& state, int id) {
  SendMessageW(Control(state, id), CB_RESETCONTENT, 0, 0);
}

void AddComboItem(AppState& state, int id, const wchar_t* text) {
  SendMessageW(Control(state, id), CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
}

void SelectComboItem(AppState& state, int id, int index) {
  SendMessageW(Control(state, id), CB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

int SelectedComboItem(AppState& state, int id) {
  return static_cast<int>(SendMessageW(Control(state, id), CB_GETCURSEL, 0, 0));
}

bool IsComboOpen(AppState& state, int id) {
  return SendMessageW(Control(state, id), CB_GETDROPPEDSTATE, 0, 0) != FALSE;
}

bool IsListOpen(AppState& state) {
  GUITHREADINFO thread{};
  thread.cbSize = sizeof(thread);
  const bool menu =
      GetGUIThreadInfo(GetCurrentThreadId(), &thread) != FALSE && (thread.flags & GUI_INMENUMODE) != 0;
  return menu || HasListOpen(MainWindow(state)) || HasListOpen(GetLastActivePopup(MainWindow(state)));
}

void StartTimer(AppState& state, int id, uint32_t period_ms) {
  SetTimer(MainWindow(state), static_cast<UINT_PTR>(id), period_ms, nullptr);
}

void StopTimer(AppState& state, int id) {
  KillTimer(MainWindow(state), static_cast<UINT_PTR>(id));
}

void ArrangeViews(AppState& state) {
  PlaceViews(state);
}

void SetWindowTitle(AppState& state, const wchar_t* title) {
  SetChangedText(MainWindow(state), title);
}

void InvalidateEchogram(AppState& state) {
  InvalidateRect(Control(state, ID_ECHOGRAM), nullptr, FALSE);
}

void CallOperator(AppState& state, bool beep) {
  FLASHWINFO flash{};
  flash.cbSize = sizeof(flash);
  flash.hwnd = MainWindow(state);
  flash.dwFlags = FLASHW_ALL | FLASHW_TIMERNOFG;
  flash.uCount = 3;
  FlashWindowEx(&flash);
  if (beep) MessageBeep(MB_ICONWARNING);
}

void SoundAlarm(AppState&) {
  MessageBeep(MB_ICONERROR);
}

void EndProcess(int exitCode) {
  ExitProcess(static_cast<UINT>(exitCode));
}

}  // namespace tw
