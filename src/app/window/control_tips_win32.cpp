#include "app/window/control_tips_win32.h"

// Needs the types of windows.h.
#include <commctrl.h>

#include "app/settings/control_tips.h"
#include "app/window/window_handles_win32.h"

namespace tw {
namespace {

constexpr LONG kWidth = 600;
constexpr LPARAM kShown_ms = 15'000;

TTTOOLINFOW ToolOf(HWND window) {
  TTTOOLINFOW tool{};
  tool.cbSize = TTTOOLINFOW_V2_SIZE;
  tool.uFlags = TTF_SUBCLASS;
  tool.hwnd = window;
  tool.lpszText = LPSTR_TEXTCALLBACKW;
  return tool;
}

// A disabled control gets no mouse: the window below it does. This is for its place there.
TTTOOLINFOW PlaceOf(HWND window, HWND control) {
  TTTOOLINFOW tool = ToolOf(window);
  tool.uId = static_cast<UINT_PTR>(GetDlgCtrlID(control));
  GetWindowRect(control, &tool.rect);
  MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&tool.rect), 2);
  return tool;
}

void AddTool(HWND tips, const TTTOOLINFOW& tool) {
  SendMessageW(tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
}

void AddControl(HWND window, HWND tips, int id) {
  const HWND control = GetDlgItem(window, id);
  TTTOOLINFOW own = ToolOf(window);
  own.uFlags |= TTF_IDISHWND;
  own.uId = reinterpret_cast<UINT_PTR>(control);
  AddTool(tips, own);
  AddTool(tips, PlaceOf(window, control));
}

}  // namespace

HWND MakeTips(HWND dialog) {
  const HWND tips = CreateWindowExW(
      WS_EX_TOPMOST, TOOLTIPS_CLASSW, nullptr, WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, CW_USEDEFAULT,
      CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, dialog, nullptr, GetModuleHandleW(nullptr), nullptr);
  SendMessageW(tips, TTM_SETMAXTIPWIDTH, 0, kWidth);  // with it, a tip may have lines
  SendMessageW(tips, TTM_SETDELAYTIME, TTDT_AUTOPOP, kShown_ms);
  return tips;
}

void AddGreyTip(HWND tips, HWND dialog, HWND control, const wchar_t* reason) {
  TTTOOLINFOW place = PlaceOf(dialog, control);
  place.lpszText = const_cast<wchar_t*>(reason);  // it is copied
  AddTool(tips, place);
}

HWND PrepareControlTips(const AppState& state) {
  const HWND tips = MakeTips(MainWindow(state));
  for (const ControlTip& row : ControlTips()) AddControl(MainWindow(state), tips, row.id);
  return tips;
}

// The text is read behind this call.
void AnswerTipRequest(const AppState& state, NMHDR& request) {
  static wchar_t text[kControlTipSize];
  if (request.code != TTN_GETDISPINFOW) return;
  auto& tip = reinterpret_cast<NMTTDISPINFOW&>(request);
  const bool ofControl = (tip.uFlags & TTF_IDISHWND) != 0;
  const int id =
      ofControl ? GetDlgCtrlID(reinterpret_cast<HWND>(request.idFrom)) : static_cast<int>(request.idFrom);
  const bool shown = IsWindowVisible(Control(state, id)) != FALSE;  // not every family has every control
  FormatControlTip(state, shown ? id : 0, text);
  tip.lpszText = text;
}

}  // namespace tw
