#include "app/window/control_fonts_win32.h"

#include <algorithm>

#include "acquisition/output_mode.h"
#include "app/window/control_ids.h"
#include "app/window/window_handles_win32.h"

namespace tw {
namespace {

bool DescribeFont(HWND control, LOGFONTW& font) {
  const auto used = reinterpret_cast<HFONT>(SendMessageW(control, WM_GETFONT, 0, 0));
  return GetObjectW(used, sizeof(font), &font) != 0;
}

// The longest name of all outputs in a font.
LONG WidestOutput(HDC dc, HFONT font) {
  const HGDIOBJ before = SelectObject(dc, font);
  LONG widest = 0;
  for (const DeviceFamily family : {DeviceFamily::first, DeviceFamily::second, DeviceFamily::third}) {
    for (const OutputModeRow& mode : OfferedModes(family)) {
      SIZE extent{};
      GetTextExtentPoint32W(dc, mode.name.data(), static_cast<int>(mode.name.size()), &extent);
      widest = std::max(widest, extent.cx);
    }
  }
  SelectObject(dc, before);
  return widest;
}

// The largest font, not above the described one and not below two thirds of it, in which each name fits.
HFONT LargestFitting(HWND control, LOGFONTW font, LONG room) {
  const HDC dc = GetDC(control);
  const LONG smallest = font.lfHeight * 2 / 3;  // heights of characters are negative
  HFONT fitting = CreateFontIndirectW(&font);
  while (font.lfHeight < smallest && WidestOutput(dc, fitting) > room) {
    DeleteObject(fitting);
    ++font.lfHeight;
    fitting = CreateFontIndirectW(&font);
  }
  ReleaseDC(control, dc);
  return fitting;
}

LONG HeightOf(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return place.bottom - place.top;
}

// A selector follows its font; this one stays as high as its neighbours.
void SetFontOfSameHeight(HWND combo, HFONT font) {
  constexpr auto kClosedPart = static_cast<WPARAM>(-1);
  const LONG before = HeightOf(combo);
  SendMessageW(combo, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  const LRESULT part = SendMessageW(combo, CB_GETITEMHEIGHT, kClosedPart, 0);
  SendMessageW(combo, CB_SETITEMHEIGHT, kClosedPart, part);  // now its height is settled
  SendMessageW(combo, CB_SETITEMHEIGHT, kClosedPart, part + before - HeightOf(combo));
}

}  // namespace

// The fonts live as long as the window, which is as long as the process.

void SetArrowFont(const AppState& state) {
  LOGFONTW font{};
  if (!DescribeFont(Control(state, ID_RESUME), font)) return;
  lstrcpynW(font.lfFaceName, L"Arial", LF_FACESIZE);
  const HFONT arrows = CreateFontIndirectW(&font);
  constexpr int kArrowButtons[] = {ID_FAST_BACK, ID_BACK, ID_PAUSE, ID_RESUME};
  for (const int id : kArrowButtons) {
    SendMessageW(Control(state, id), WM_SETFONT, reinterpret_cast<WPARAM>(arrows), FALSE);
  }
}

void FitOutputFont(const AppState& state) {
  constexpr LONG kMargin = 3;  // of the text within its part of the selector
  const HWND combo = Control(state, ID_OUTPUT);
  LOGFONTW font{};
  COMBOBOXINFO parts{};
  parts.cbSize = sizeof(parts);
  if (!DescribeFont(combo, font) || GetComboBoxInfo(combo, &parts) == FALSE) return;
  const HFONT fitting = LargestFitting(combo, font, parts.rcItem.right - parts.rcItem.left - 2 * kMargin);
  SetFontOfSameHeight(combo, fitting);
}

}  // namespace tw
