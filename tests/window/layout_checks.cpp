#include "tests/window/layout_checks.h"

#include <gtest/gtest.h>

#include <cstdio>

#include "app/window/control_ids.h"
#include "display/scaling.h"

namespace tw {
namespace {

bool HasArrows(int id) {
  return id == ID_FAST_BACK || id == ID_BACK || id == ID_PAUSE || id == ID_RESUME;
}

int ScreenDpi() {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dpi;
}

// As it is drawn: the ampersand ahead of a letter underlines it.
std::wstring Drawn(const ControlPlace& control, const std::wstring& text) {
  if (control.className != L"Static" || (control.style & SS_NOPREFIX) != 0) return text;
  std::wstring drawn = text;
  std::erase(drawn, L'&');
  return drawn;
}

// The size of a text in the font of the dialog templates; arrows have one of their own.
SIZE Extent(const std::wstring& text, int id) {
  const HDC screen = GetDC(nullptr);
  const HFONT font = CreateFontW(-MulDiv(9, GetDeviceCaps(screen, LOGPIXELSY), 72), 0, 0, 0, FW_NORMAL, 0, 0,
                                 0, DEFAULT_CHARSET, 0, 0, 0, 0, HasArrows(id) ? L"Arial" : L"Segoe UI");
  const HGDIOBJ before = SelectObject(screen, font);
  SIZE extent{};
  GetTextExtentPoint32W(screen, text.c_str(), static_cast<int>(text.size()), &extent);
  SelectObject(screen, before);
  DeleteObject(font);
  ReleaseDC(nullptr, screen);
  return extent;
}

// What a control needs beside its text: the box of a check box, the borders of a button or an edit, the arrow
// of a selector.
int Surroundings(const ControlPlace& control) {
  constexpr int kBorder = 3;
  constexpr int kCheckGap = 3;
  const LONG kind = control.style & BS_TYPEMASK;
  if (control.className == L"ComboBox") return GetSystemMetrics(SM_CXVSCROLL) + 2 * kBorder;
  if (control.className == L"Edit") return 2 * kBorder;
  if (control.className != L"Button") return 0;
  return kind == BS_AUTOCHECKBOX || kind == BS_AUTORADIOBUTTON ? GetSystemMetrics(SM_CXMENUCHECK) + kCheckGap
                                                               : 2 * kBorder;
}

}  // namespace

int Scaled(int length) {
  return ScalePixels(length, ScreenDpi());
}

std::string Name(const ControlPlace& control) {
  char text[160];
  std::snprintf(text, sizeof(text), "%d '%.60ls' (%ld %ld %ld %ld)", control.id, control.text.c_str(),
                control.place.left, control.place.top, control.place.right, control.place.bottom);
  return text;
}

void ExpectNoIntersections(const std::vector<ControlPlace>& controls) {
  for (size_t i = 0; i < controls.size(); ++i) {
    for (size_t k = i + 1; k < controls.size(); ++k) {
      RECT common{};
      EXPECT_FALSE(IntersectRect(&common, &controls[i].place, &controls[k].place))
          << Name(controls[i]) << " and " << Name(controls[k]);
    }
  }
}

void ExpectTextFits(const ControlPlace& control, const std::wstring& text) {
  if (text.empty()) return;
  const SIZE extent = Extent(Drawn(control, text), control.id);
  const long width = control.place.right - control.place.left;
  EXPECT_LE(extent.cx + Surroundings(control), width) << Name(control);
  EXPECT_LE(extent.cy, control.place.bottom - control.place.top) << Name(control);
}

}  // namespace tw
