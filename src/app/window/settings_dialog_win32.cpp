#include "app/window/settings_dialog_win32.h"

#include <windows.h>

#include <algorithm>
#include <cwchar>
#include <iterator>

#include "app/settings/family_controls.h"
#include "app/settings/settings_layout.h"
#include "app/window/commands.h"
#include "app/window/control_ids.h"
#include "app/window/control_tips_win32.h"
#include "app/window/selector_wheel_win32.h"
#include "app/window/ui.h"
#include "app/window/window_handles_win32.h"
#include "base/shared_value.h"

namespace tw {
namespace {

// What a dialog shows, and what it was left with. A played file's settings cannot be changed.
struct SettingsDialog {
  FormFacts facts;
  DeviceSettings settings;  // as they were when it was opened
  DeviceSettings entered;   // those in force by now, with what was edited
};

// One dialog while it is open.
struct OpenDialog {
  const AppState& state;
  SettingsDialog& dialog;
  FormLayout layout;
};

HWND openWindow = nullptr;

OpenDialog& OpenDialogOf(HWND window) {
  return *reinterpret_cast<OpenDialog*>(GetWindowLongPtrW(window, DWLP_USER));
}

RECT ToPixels(HWND window, const DialogRect& place) {
  RECT rect{place.x, place.y, place.x + place.width, place.y + place.height};
  MapDialogRect(window, &rect);
  return rect;
}

void Place(HWND window, HWND control, const DialogRect& place) {
  const RECT rect = ToPixels(window, place);
  // Behind the fields, in the order of the keyboard.
  SetWindowPos(control, HWND_BOTTOM, rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, 0);
}

struct ControlStyle {
  const wchar_t* className;
  DWORD style;
  DWORD extended;
};

ControlStyle StyleOf(FormItemKind kind) {
  switch (kind) {
    case FormItemKind::edit:
      return {L"Edit", WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE};
    case FormItemKind::combo:
      return {L"ComboBox", WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, 0};
    case FormItemKind::text:
      return {L"Static", SS_NOPREFIX | SS_ENDELLIPSIS, 0};
    case FormItemKind::heading:
    case FormItemKind::label:
      break;
  }
  return {L"Static", SS_LEFT, 0};
}

void FillItems(HWND combo, const FormItem& item, const SettingsDialog& dialog, const wchar_t* selected) {
  FieldItems items;
  ListItems(item.field, item.channel, dialog.facts, dialog.settings, items);
  for (size_t i = 0; i < items.count; ++i) {
    SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(items.items[i]));
    if (std::wcscmp(items.items[i], selected) == 0) SendMessageW(combo, CB_SETCURSEL, i, 0);
  }
}

void FillControl(HWND control, const FormItem& item, const SettingsDialog& dialog) {
  if (item.kind == FormItemKind::heading) {
    SetWindowTextW(control, item.channel == FieldChannel::low ? L"Low" : L"High");
    return;
  }
  if (item.kind == FormItemKind::label) {
    SetWindowTextW(control, LabelOf(item.field));
    return;
  }
  wchar_t text[kFieldTextSize];
  FormatField(item.field, item.channel, dialog.facts, dialog.settings, text);
  if (item.kind == FormItemKind::combo) {
    FillItems(control, item, dialog, text);
  } else {
    SetWindowTextW(control, text);
  }
  if (item.kind == FormItemKind::edit) SendMessageW(control, EM_SETLIMITTEXT, 31, 0);
  if (item.kind == FormItemKind::text) return;
  EnableWindow(control, IsUsable(item.field, item.channel, dialog.facts, dialog.settings) ? TRUE : FALSE);
}

void MakeControl(HWND window, const FormItem& item, const SettingsDialog& dialog) {
  const ControlStyle style = StyleOf(item.kind);
  const RECT rect = ToPixels(window, item.place);
  const HWND control = CreateWindowExW(
      style.extended, style.className, L"", WS_CHILD | WS_VISIBLE | style.style, rect.left, rect.top,
      rect.right - rect.left, rect.bottom - rect.top, window,
      reinterpret_cast<HMENU>(static_cast<INT_PTR>(item.id)), GetModuleHandleW(nullptr), nullptr);
  if (control == nullptr) return;
  SendMessageW(control, WM_SETFONT, static_cast<WPARAM>(SendMessageW(window, WM_GETFONT, 0, 0)), FALSE);
  FillControl(control, item, dialog);
}

// Over the middle of the main window, within its screen.
void SizeDialog(HWND window, const FormLayout& layout) {
  RECT rect = ToPixels(window, {0, 0, layout.width, layout.height});
  AdjustWindowRectEx(&rect, static_cast<DWORD>(GetWindowLongPtrW(window, GWL_STYLE)), FALSE,
                     static_cast<DWORD>(GetWindowLongPtrW(window, GWL_EXSTYLE)));
  const LONG width = rect.right - rect.left;
  const LONG height = rect.bottom - rect.top;
  RECT owner{};
  GetWindowRect(GetParent(window), &owner);
  MONITORINFO screen{};
  screen.cbSize = sizeof(screen);
  GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &screen);
  const RECT& work = screen.rcWork;
  const LONG x = (owner.left + owner.right - width) / 2;
  const LONG y = (owner.top + owner.bottom - height) / 2;
  SetWindowPos(window, nullptr, std::max(work.left, std::min(x, work.right - width)),
               std::max(work.top, std::min(y, work.bottom - height)), width, height,
               SWP_NOZORDER | SWP_NOACTIVATE);
}

void TellWhyGrey(HWND window, const OpenDialog& open) {
  const HWND tips = MakeTips(window);
  for (size_t i = 0; i < open.layout.count; ++i) {
    const FormItem& item = open.layout.items[i];
    const HWND control = GetDlgItem(window, item.id);
    if (control == nullptr || IsWindowEnabled(control) != FALSE) continue;
    const wchar_t* const reason =
        WhyUnusable(item.field, item.channel, open.dialog.facts, open.dialog.settings);
    if (reason != nullptr) AddGreyTip(tips, window, control, reason);
  }
}

void OnInit(HWND window, OpenDialog& open) {
  SetWindowLongPtrW(window, DWLP_USER, reinterpret_cast<LONG_PTR>(&open));
  openWindow = window;
  SizeDialog(window, open.layout);
  for (size_t i = 0; i < open.layout.count; ++i) MakeControl(window, open.layout.items[i], open.dialog);
  TellWhyGrey(window, open);
  KeepWheelFromSelectors(window);
  Place(window, GetDlgItem(window, IDOK), open.layout.ok);
  Place(window, GetDlgItem(window, IDCANCEL), open.layout.cancel);
}

// Reads the fields that were edited, in their order, into a copy. False at the first that is wrong: the
// operator has been told and stands on it.
bool ReadForm(HWND window, const OpenDialog& open, DeviceSettings& settings) {
  for (size_t i = 0; i < open.layout.count; ++i) {
    const FormItem& item = open.layout.items[i];
    if (item.kind != FormItemKind::edit && item.kind != FormItemKind::combo) continue;
    const HWND control = GetDlgItem(window, item.id);
    wchar_t text[kFieldTextSize];
    GetWindowTextW(control, text, static_cast<int>(std::size(text)));
    wchar_t error[2 * kFieldTextSize] = L"";
    if (TakeField(item.field, item.channel, open.dialog.facts, open.dialog.settings, text, settings, error))
      continue;
    MessageBoxW(window, error, L"Error", MB_OK | MB_ICONERROR);
    SetFocus(control);
    if (item.kind == FormItemKind::edit) SendMessageW(control, EM_SETSEL, 0, -1);
    return false;
  }
  return true;
}

void OnOk(HWND window) {
  OpenDialog& open = OpenDialogOf(window);
  if (open.dialog.facts.played) {
    EndDialog(window, IDCANCEL);
    return;
  }
  open.dialog.entered = open.state.settings;
  if (ReadForm(window, open, open.dialog.entered)) EndDialog(window, IDOK);
}

INT_PTR CALLBACK SettingsDialogProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      OnInit(window, *reinterpret_cast<OpenDialog*>(lParam));
      // The first field was made after the system chose where the keyboard begins.
      SetFocus(GetNextDlgTabItem(window, nullptr, FALSE));
      return FALSE;
    case WM_COMMAND:
      if (LOWORD(wParam) == IDOK) OnOk(window);
      if (LOWORD(wParam) == IDCANCEL) EndDialog(window, IDCANCEL);
      return TRUE;
    default:
      return FALSE;
  }
}

// A played file's settings stand in one of the first family's frames, whoever made it.
int DialogOf(const FormFacts& facts) {
  if (facts.played && facts.family != DeviceFamily::first) return ID_DIALOG_SINGLE;
  switch (FormOf(facts)) {
    case SettingsForm::single:
      return ID_DIALOG_SINGLE;
    case SettingsForm::dual:
      return ID_DIALOG_DUAL;
    case SettingsForm::detail:
      return ID_DIALOG_DETAIL;
  }
  return ID_DIALOG_SINGLE;
}

// Shows the dialog until it is closed. True when it ended with "OK" and was not read-only: `entered` then
// holds what was entered.
bool ShowDialog(const AppState& state, SettingsDialog& dialog) {
  OpenDialog open{state, dialog, LayOutForm(dialog.facts, dialog.settings)};
  const INT_PTR result =
      DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(DialogOf(dialog.facts)), MainWindow(state),
                      SettingsDialogProcedure, reinterpret_cast<LPARAM>(&open));
  openWindow = nullptr;
  return result == IDOK;
}

}  // namespace

void EditSettings(AppState& state) {
  SettingsDialog dialog{CurrentFormFacts(state), state.settings, {}};
  if (!ShowDialog(state, dialog)) return;
  state.settings = dialog.entered;
  RefreshSettingsControls(state);
  if (LoadShared(state.devicePort) != Handle::invalid) ApplySettings(state);
}

// From inside its message loop: a timer or a box above it.
void CloseSettingsDialog(AppState&) {
  if (openWindow != nullptr) EndDialog(openWindow, IDCANCEL);
}

void ShowPlayedSettings(AppState& state) {
  if (state.playbackActive == 0) {
    ShowBox(state, L"Click after Playback saved file", L"Error", BoxIcon::error);
    return;
  }
  EditSettings(state);
}

}  // namespace tw
