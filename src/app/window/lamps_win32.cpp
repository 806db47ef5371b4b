#include "app/window/lamps_win32.h"

// Needs the types of windows.h.
#include <commctrl.h>

#include <algorithm>
#include <cwchar>
#include <iterator>

#include "app/settings/lamp_face.h"
#include "app/window/control_ids.h"
#include "app/window/system_colours_win32.h"
#include "app/window/ui.h"
#include "app/window/window_handles_win32.h"
#include "base/text_format.h"
#include "display/drawing_win32.h"
#include "platform/clock.h"

namespace tw {
namespace {

constexpr COLORREF kRed = RGB(200, 0, 0);
constexpr COLORREF kGreen = RGB(0, 120, 0);
constexpr COLORREF kWhite = RGB(255, 255, 255);

constexpr wchar_t kNothingTold[] = L"No receiver";

constexpr int kLampIds[] = {ID_RECORDING_LAMP, ID_RECEIVER_LAMP};

// As they are shown; the windows read from here when they are drawn.
struct Shown {
  LampFace faces[std::size(kLampIds)];
  wchar_t alarm[kStatusTextSize];  // of the status bar
  HWND tips;
  uint32_t told_ms[std::size(kLampIds)];  // the millisecond clock when the tip was last renewed
};
constinit Shown shown{};

size_t IndexOf(int id) {
  return id == ID_RECORDING_LAMP ? 0 : 1;
}

TOOLINFOW ToolOf(const AppState& state, int id, wchar_t* text) {
  TOOLINFOW tool{};
  tool.cbSize = TTTOOLINFOW_V2_SIZE;
  tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
  tool.hwnd = MainWindow(state);
  tool.uId = reinterpret_cast<UINT_PTR>(Control(state, id));
  tool.lpszText = text;
  return tool;
}

COLORREF RedLetters() {
  return ColourOf(kRed, COLOR_BTNTEXT);
}

COLORREF LettersOf(LampColour colour) {
  switch (colour) {
    case LampColour::grey:
      return GetSysColor(COLOR_GRAYTEXT);
    case LampColour::green:
      return ColourOf(kGreen, COLOR_BTNTEXT);
    case LampColour::red:
      return RedLetters();
    case LampColour::alarm:
      return ColourOf(kWhite, COLOR_HIGHLIGHTTEXT);
  }
  return RedLetters();
}

void FillWith(HDC dc, const RECT& place, COLORREF colour) {
  SetDCBrushColor(dc, colour);
  ::FillRect(dc, &place, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
}

constexpr UINT kDrawing = DT_NOPREFIX | DT_WORDBREAK;

SIZE ExtentOf(HDC dc, const wchar_t* text, LONG width) {
  RECT place{0, 0, width, 0};
  if (text[0] != L'\0') DrawTextW(dc, text, -1, &place, kDrawing | DT_CALCRECT);
  return {place.right, place.bottom};
}

// The largest font, not above the control's own and not below half of it, in which both texts fit.
OwnedGdiFont FittingFont(HDC dc, HWND control, const LampFace& face, const SIZE& room) {
  LOGFONTW font{};
  const auto used = reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
  if (GetObjectW(used, sizeof(font), &font) == 0) return {};
  for (const LONG smallest = font.lfHeight / 2;; ++font.lfHeight) {  // heights of characters are negative
    OwnedGdiFont tried(CreateFontIndirectW(&font));
    const HGDIOBJ before = SelectObject(dc, tried.Get());
    const SIZE first = ExtentOf(dc, face.text, room.cx);
    const SIZE second = ExtentOf(dc, face.second, room.cx);
    SelectObject(dc, before);
    const bool fits = std::max(first.cx, second.cx) <= room.cx && first.cy + second.cy <= room.cy;
    if (fits || font.lfHeight >= smallest) return tried;
  }
}

// In the middle of the lamp, one text below the other.
void DrawTexts(HDC dc, HWND control, const RECT& place, const LampFace& face) {
  const SIZE room{place.right - place.left, place.bottom - place.top};
  const OwnedGdiFont font = FittingFont(dc, control, face, room);
  if (!font) return;
  const HGDIOBJ before = SelectObject(dc, font.Get());
  const LONG height = ExtentOf(dc, face.text, room.cx).cy;
  const LONG below = ExtentOf(dc, face.second, room.cx).cy;
  RECT line = place;
  line.top += std::max<LONG>(0, (room.cy - height - below) / 2);
  constexpr UINT kCentred = kDrawing | DT_CENTER;
  SetBkMode(dc, TRANSPARENT);
  SetTextColor(dc, LettersOf(face.colour));
  DrawTextW(dc, face.text, -1, &line, kCentred);
  line.top += height;
  if (face.colour != LampColour::alarm) SetTextColor(dc, RedLetters());
  DrawTextW(dc, face.second, -1, &line, kCentred);
  SelectObject(dc, before);
}

void DrawLamp(const DRAWITEMSTRUCT& item, const LampFace& face) {
  const COLORREF ground =
      face.colour == LampColour::alarm ? ColourOf(kRed, COLOR_HIGHLIGHT) : GetSysColor(COLOR_BTNFACE);
  FillWith(item.hDC, item.rcItem, ground);
  if (face.text[0] != L'\0' || face.second[0] != L'\0') {
    return DrawTexts(item.hDC, item.hwndItem, item.rcItem, face);
  }
  RECT line = item.rcItem;  // of the heading
  line.top += (line.bottom - line.top) * 4 / 9;
  DrawEdge(item.hDC, &line, EDGE_ETCHED, BF_TOP);
}

void DrawStatus(const DRAWITEMSTRUCT& item) {
  RECT place = item.rcItem;
  SetBkMode(item.hDC, TRANSPARENT);
  SetTextColor(item.hDC, RedLetters());
  DrawTextW(item.hDC, shown.alarm, -1, &place, DT_NOPREFIX | DT_SINGLELINE | DT_VCENTER);
}

// For who reads the screen aloud; it is not drawn.
const wchar_t* SpokenText(const LampFace& face) {
  return face.text[0] == L'\0' ? kNothingTold : face.text;
}

// A tip may be shown at this moment: it would flicker with each ping.
void RenewTip(AppState& state, int id, const wchar_t* text) {
  constexpr uint32_t kTipPeriod_ms = 1'000;
  const size_t index = IndexOf(id);
  LampFace& face = shown.faces[index];
  const uint32_t now_ms = MillisecondClock();
  if (std::wcscmp(face.tip, text) == 0 || now_ms - shown.told_ms[index] < kTipPeriod_ms) return;
  shown.told_ms[index] = now_ms;
  CopyWide(face.tip, text);
  TOOLINFOW tool = ToolOf(state, id, face.tip);
  SendMessageW(shown.tips, TTM_UPDATETIPTEXTW, 0, reinterpret_cast<LPARAM>(&tool));
}

}  // namespace

void PrepareLamps(const AppState& state, HWND tips) {
  shown.tips = tips;
  SetWindowTextW(Control(state, ID_RECEIVER_LAMP), kNothingTold);
  for (const int id : kLampIds) {
    wchar_t none[] = L"";
    TOOLINFOW tool = ToolOf(state, id, none);
    SendMessageW(shown.tips, TTM_ADDTOOLW, 0, reinterpret_cast<LPARAM>(&tool));
  }
}

void DrawLampItem(const AppState& state, const DRAWITEMSTRUCT& item) {
  if (item.hwndItem == ToWindow(state.statusBar)) return DrawStatus(item);
  for (const int id : kLampIds) {
    if (item.hwndItem == Control(state, id)) DrawLamp(item, shown.faces[IndexOf(id)]);
  }
}

void ShowLamp(AppState& state, int id, const LampFace& face) {
  RenewTip(state, id, face.tip);
  LampFace& before = shown.faces[IndexOf(id)];
  if (face.colour == before.colour && std::wcscmp(face.text, before.text) == 0 &&
      std::wcscmp(face.second, before.second) == 0) {
    return;
  }
  before.colour = face.colour;
  CopyWide(before.text, face.text);
  CopyWide(before.second, face.second);
  SetWindowTextW(Control(state, id), SpokenText(face));
  InvalidateRect(Control(state, id), nullptr, FALSE);
}

void SetStatusAlarm(AppState& state, StatusPart part, const wchar_t* text) {
  CopyWide(shown.alarm, text);
  SendMessageW(ToWindow(state.statusBar), SB_SETTEXTW, static_cast<WPARAM>(part) | SBT_OWNERDRAW,
               reinterpret_cast<LPARAM>(shown.alarm));
}

}  // namespace tw
