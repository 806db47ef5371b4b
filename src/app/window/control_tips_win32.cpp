#include "app/window/control_tips_win32.h"

// Needs the types of windows.h.
#include <commctrl.h>

#include "app/settings/control_tips.h"
#include "app/window/control_ids.h"
#include "app/window/view_placement_win32.h"
#include "app/window/window_handles_win32.h"
#include "base/text_format.h"
#include "display/scaling.h"

namespace tw {
namespace {

constexpr int kWidth = 600;  // at 96 dpi
constexpr LPARAM kShown_ms = 15'000;

TTTOOLINFOW ToolOf(HWND window) {
  TTTOOLINFOW tool{};
  tool.cbSize = TTTOOLINFOW_V2_SIZE;
  tool.uFlags = TTF_SUBCLASS;
  tool.hwnd = window;
  tool.lpszText = LPSTR_TEXTCALLBACKW;
  return tool;
}

TTTOOLINFOW PlaceOf(HWND window, int id, const RECT& place) {
  TTTOOLINFOW tool = ToolOf(window);
  tool.uId = static_cast<UINT_PTR>(id);
  tool.rect = place;
  return tool;
}

// A disabled control gets no mouse: the window below it does. This is for its place there.
TTTOOLINFOW PlaceOf(HWND control) {
  RECT place{};
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, GetParent(control), reinterpret_cast<POINT*>(&place), 2);
  return PlaceOf(GetParent(control), GetDlgCtrlID(control), place);
}

void AddTool(HWND tips, const TTTOOLINFOW& tool) {
  SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

// The text is read behind this call.
void Answer(HWND window, int number, TipText text, NMTTDISPINFOW& request) {
  static wchar_t tip[kControlTipSize];
  const bool ofControl = (request.uFlags & TTF_IDISHWND) != 0;
  const int id = ofControl ? GetDlgCtrlID(reinterpret_cast<HWND>(request.hdr.idFrom))
                           : static_cast<int>(request.hdr.idFrom);
  text(window, number, id, std::span<wchar_t>(tip));
  request.lpszText = tip;
}

LRESULT CALLBACK TipProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR number,
                              DWORD_PTR text) {
  if (message == WM_NOTIFY && reinterpret_cast<const NMHDR*>(lParam)->code == TTN_GETDISPINFOW) {
    Answer(window, static_cast<int>(number), reinterpret_cast<TipText>(text),
           *reinterpret_cast<NMTTDISPINFOW*>(lParam));
    return 0;
  }
  if (message == WM_NCDESTROY) RemoveWindowSubclass(window, TipProcedure, number);
  return DefSubclassProc(window, message, wParam, lParam);
}

void TellMainTip(HWND window, int, int id, std::span<wchar_t> tip) {
  const bool shown = IsWindowVisible(GetDlgItem(window, id)) != FALSE;  // not every family has every control
  FormatControlTip(*StateOf(window), shown ? id : 0, tip);
}

}  // namespace

HWND MakeTips(HWND dialog) {
  const HWND tips = CreateWindowExW(
      WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
      CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, dialog, nullptr, GetModuleHandleW(nullptr), nullptr);
  SendMessageW(tips, TTM_SETMAXTIPWIDTH, 0,
               ScalePixels(kWidth, ScreenDpi()));  // with it, a tip may have lines
  SendMessageW(tips, TTM_SETDELAYTIME, TTDT_AUTOPOP, kShown_ms);
  return tips;
}

void AddGreyTip(HWND tips, HWND dialog, HWND control, const wchar_t* reason) {
  TTTOOLINFOW place = PlaceOf(control);
  place.hwnd = dialog;
  place.lpszText = const_cast<wchar_t*>(reason);  // it is copied
  AddTool(tips, place);
}

void TellControlTip(HWND window, int number, int id, std::span<wchar_t> tip) {
  const HWND control = GetDlgItem(window, id);
  FormatControlTip(number, id, control != nullptr && IsWindowEnabled(control) == FALSE, tip);
}

HWND PrepareControlTips(HWND window, int number, TipText text) {
  const HWND tips = MakeTips(window);
  SetWindowSubclass(window, TipProcedure, static_cast<UINT_PTR>(number), reinterpret_cast<DWORD_PTR>(text));
  for (const ControlTip& row : ControlTips()) {
    const HWND control = row.window == number ? GetDlgItem(window, row.id) : nullptr;
    if (control != nullptr) AddControlTip(tips, control);
  }
  return tips;
}

HWND PrepareMainTips(HWND window) {
  return PrepareControlTips(window, ID_DIALOG_MAIN, TellMainTip);
}

void AddControlTip(HWND tips, HWND control) {
  TTTOOLINFOW own = ToolOf(GetParent(control));
  own.uFlags |= TTF_IDISHWND;
  own.uId = reinterpret_cast<UINT_PTR>(control);
  AddTool(tips, own);
  AddTool(tips, PlaceOf(control));
}

void PlaceTip(HWND tips, HWND window, int id, const RECT& place) {
  const TTTOOLINFOW tool = PlaceOf(window, id, place);
  SendMessageW(tips, TTM_DELTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  AddTool(tips, tool);
}

}  // namespace tw
