// The main window as it stands on the screen: nothing overlaps, nothing is cut off.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <optional>

#include "app/control_ids.h"
#include "tests/window/program.h"
#include "tests/window/stored_choices.h"

namespace tw {
namespace {

constexpr int kColumnRight = 186;

struct WindowSize {
  int width;
  int height;
};
constexpr WindowSize kSizes[] = {{980, 750}, {1280, 800}, {1920, 1080}};

std::string Name(const ControlPlace& control) {
  char text[128];
  std::snprintf(text, sizeof(text), "%d '%.60ls' (%ld %ld %ld %ld)", control.id, control.text.c_str(),
                control.place.left, control.place.top, control.place.right, control.place.bottom);
  return text;
}

bool IsSlider(const ControlPlace& control) {
  return control.className == L"EchoSliderbar class";
}

bool HasArrows(int id) {
  return id == ID_FAST_BACK || id == ID_BACK || id == ID_PAUSE || id == ID_RESUME;
}

// The size of a text in the font of the dialog template; arrows have one of their own.
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

// What a control needs beside its text: the box of a check box, the borders of a button, the arrow of a
// selector.
int Surroundings(const ControlPlace& control) {
  constexpr int kBorder = 3;
  constexpr int kCheckGap = 3;
  const LONG kind = control.style & BS_TYPEMASK;
  if (control.className == L"ComboBox") return GetSystemMetrics(SM_CXVSCROLL) + 2 * kBorder;
  if (control.className != L"Button") return 0;
  return kind == BS_AUTOCHECKBOX || kind == BS_AUTORADIOBUTTON ? GetSystemMetrics(SM_CXMENUCHECK) + kCheckGap
                                                               : 2 * kBorder;
}

void ExpectTextFits(const ControlPlace& control, const std::wstring& text) {
  const SIZE extent = Extent(text, control.id);
  const long width = control.place.right - control.place.left;
  EXPECT_LE(extent.cx + Surroundings(control), width) << Name(control);
  EXPECT_LE(extent.cy, control.place.bottom - control.place.top) << Name(control);
}

class Layout : public ::testing::Test {
 protected:
  // Each test has the program at its first start.
  Layout() { ForgetStoredChoices(); }

  void ResizeTo(const WindowSize& size) {
    program_.emplace();
    program_->Resize(size.width, size.height);
    ASSERT_TRUE(WaitUntil(
        [&] {
          RECT window{};
          GetWindowRect(program_->Window(), &window);
          return window.right - window.left == size.width && window.bottom - window.top == size.height;
        },
        10));
  }

  std::optional<Program> program_;
};

TEST_F(Layout, NoTwoControlsIntersect) {
  for (const WindowSize& size : kSizes) {
    SCOPED_TRACE(size.width);
    ResizeTo(size);
    const std::vector<ControlPlace> controls = program_->Controls();
    ASSERT_GT(controls.size(), 30u);
    for (size_t i = 0; i < controls.size(); ++i) {
      for (size_t k = i + 1; k < controls.size(); ++k) {
        RECT common{};
        if (IsSlider(controls[i]) || IsSlider(controls[k])) continue;  // it has its place during a playback
        EXPECT_FALSE(IntersectRect(&common, &controls[i].place, &controls[k].place))
            << Name(controls[i]) << " and " << Name(controls[k]);
      }
    }
    EXPECT_EQ(program_->Exit(), 0);
  }
}

TEST_F(Layout, ControlsStandInTheirColumnAboveTheStatusBar) {
  ResizeTo(kSizes[0]);
  const SIZE client = program_->ClientSize();
  for (const ControlPlace& control : program_->Controls()) {
    EXPECT_GE(control.place.left, 0) << Name(control);
    EXPECT_LE(control.place.bottom, client.cy) << Name(control);
    const bool inColumn = control.id >= ID_DEVICE_PORT && control.id <= ID_MEASURED_INTERVAL;
    if (inColumn && control.id != ID_ECHOGRAM) {
      EXPECT_LT(control.place.right, kColumnRight) << Name(control);
    }
  }
}

TEST_F(Layout, EchogramFillsTheRest) {
  for (const WindowSize& size : kSizes) {
    SCOPED_TRACE(size.width);
    ResizeTo(size);
    const SIZE client = program_->ClientSize();
    RECT echogram{};
    GetWindowRect(program_->Control(ID_ECHOGRAM), &echogram);
    MapWindowPoints(nullptr, program_->Window(), reinterpret_cast<POINT*>(&echogram), 2);
    EXPECT_EQ(echogram.left, 186);
    EXPECT_EQ(echogram.top, 6);
    EXPECT_EQ(echogram.right - echogram.left, client.cx - 192);
    EXPECT_EQ(echogram.bottom - echogram.top, client.cy - 36);
    EXPECT_EQ(program_->Exit(), 0);
  }
}

TEST_F(Layout, ControlAndLeftButtonGiveTheEchogramAllTheWidth) {
  ResizeTo(kSizes[1]);
  const HWND echogram = program_->Control(ID_ECHOGRAM);
  const HWND start = program_->Control(ID_START);
  const auto width = [&] {
    RECT place{};
    GetWindowRect(echogram, &place);
    return place.right - place.left;
  };
  const long client = program_->ClientSize().cx;

  PostMessageW(echogram, WM_LBUTTONDOWN, MK_LBUTTON | MK_CONTROL, MAKELPARAM(50, 50));
  EXPECT_TRUE(WaitUntil([&] { return !IsWindowVisible(start) && width() == client - 12; }, 10));
  PostMessageW(echogram, WM_LBUTTONDOWN, MK_LBUTTON | MK_CONTROL, MAKELPARAM(50, 50));
  EXPECT_TRUE(WaitUntil([&] { return IsWindowVisible(start) && width() == client - 192; }, 10));
  EXPECT_FALSE(IsWindowVisible(program_->Control(ID_SAVE_ADDITIONAL))) << "it was hidden before";
}

TEST_F(Layout, WindowIsNeverSmallerThanItsControlsNeed) {
  ResizeTo(kSizes[1]);
  program_->Resize(300, 200);
  RECT window{};
  ASSERT_TRUE(WaitUntil(
      [&] {
        GetWindowRect(program_->Window(), &window);
        return window.right - window.left == 980;
      },
      10));
  EXPECT_EQ(window.bottom - window.top, 750);
}

TEST_F(Layout, EveryTextFits) {
  ResizeTo(kSizes[0]);
  for (const ControlPlace& control : program_->Controls()) {
    if (control.text.empty() || control.className == L"ComboBox" || control.id == 0) continue;
    ExpectTextFits(control, control.text);
  }
}

// The longest text that each selector of a first-family device shows.
struct SelectorText {
  int id;
  const wchar_t* text;
};
constexpr SelectorText kSelectorTexts[] = {
    {ID_DEVICE_PORT, L"COM256"}, {ID_DEVICE_SPEED, L"3000000"},         {ID_GPS_PORT, L"COM256"},
    {ID_GPS_SPEED, L"115200"},   {ID_OUTPUT, L"Echo Bin 8bit/compand"}, {ID_RANGE, L"200.000"},
    {ID_INTERVAL, L"1.00"},
};

TEST_F(Layout, EverySelectorShowsItsLongestText) {
  ResizeTo(kSizes[0]);
  const std::vector<ControlPlace> controls = program_->Controls();
  for (const SelectorText& row : kSelectorTexts) {
    const auto at = std::find_if(controls.begin(), controls.end(),
                                 [&](const ControlPlace& control) { return control.id == row.id; });
    ASSERT_NE(at, controls.end()) << row.id;
    ExpectTextFits(*at, row.text);
  }
}

}  // namespace
}  // namespace tw
