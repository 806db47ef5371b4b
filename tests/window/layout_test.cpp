// The main window as it stands on the screen: nothing overlaps, nothing is cut off.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>

#include "app/window/control_ids.h"
#include "tests/window/layout_checks.h"
#include "tests/window/program.h"
#include "tests/window/stored_choices.h"
#include "tests/window/view_picture.h"

namespace tw {
namespace {

// All figures are for 96 dots per inch; the screen has as many as the session says, and its size and task
// bar.

struct WindowSize {
  int width;
  int height;
};
constexpr WindowSize kSmallest{980, 750};
constexpr WindowSize kLarger{1280, 800};

RECT WorkArea() {
  RECT area{};
  SystemParametersInfoW(SPI_GETWORKAREA, 0, &area, 0);
  return area;
}

// In this screen's pixels, and no more than fits.
WindowSize OnThisScreen(const WindowSize& size) {
  const RECT area = WorkArea();
  return {std::min<int>(Scaled(size.width), area.right - area.left),
          std::min<int>(Scaled(size.height), area.bottom - area.top)};
}

void ExpectInside(const RECT& part, const RECT& whole, const std::string& what) {
  EXPECT_TRUE(part.left >= whole.left && part.top >= whole.top && part.right <= whole.right &&
              part.bottom <= whole.bottom)
      << what << " (" << part.left << ' ' << part.top << ' ' << part.right << ' ' << part.bottom << ')';
}

RECT PlaceOnScreen(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  return place;
}

class Layout : public ::testing::Test {
 protected:
  // Each test has the program at its first start.
  Layout() { ForgetStoredChoices(); }

  void ResizeTo(const WindowSize& size) {
    program_.emplace();
    const auto [width, height] = OnThisScreen(size);
    program_->Resize(width, height);
    ASSERT_TRUE(WaitUntil(
        [&, wide = width, high = height] {
          const RECT window = PlaceOnScreen(program_->Window());
          return window.right - window.left == wide && window.bottom - window.top == high;
        },
        10));
  }

  // As they are seen: not those that are hidden.
  [[nodiscard]] std::vector<ControlPlace> VisibleControls() const {
    std::vector<ControlPlace> controls = program_->Controls();
    std::erase_if(controls, [](const ControlPlace& control) { return !IsWindowVisible(control.window); });
    return controls;
  }

  void ExpectAllInWorkArea() const {
    const std::vector<ControlPlace> controls = VisibleControls();
    ASSERT_GT(controls.size(), 30u);
    ExpectNoIntersections(controls);  // the status bar is one of them
    for (const ControlPlace& control : controls) {
      ExpectInside(PlaceOnScreen(control.window), WorkArea(), Name(control));
      const SIZE client = program_->ClientSize();
      ExpectInside(control.place, {0, 0, client.cx, client.cy}, Name(control));
    }
  }

  std::optional<Program> program_;
};

// As the program opens, and maximised.
TEST_F(Layout, AllStandsInTheWorkAreaFromTheStart) {
  program_.emplace();
  ExpectInside(PlaceOnScreen(program_->Window()), WorkArea(), "the window");
  ExpectAllInWorkArea();
  SavePicture(program_->Window(), "main-window-first");
  ShowWindowAsync(program_->Window(), SW_MAXIMIZE);
  ASSERT_TRUE(WaitUntil([&] { return IsZoomed(program_->Window()) != FALSE; }, 10));
  ExpectAllInWorkArea();
  EXPECT_EQ(program_->Exit(), 0);
}

TEST_F(Layout, ControlAndLeftButtonGiveTheEchogramAllTheWidth) {
  ResizeTo(kLarger);
  const HWND echogram = program_->Control(ID_ECHOGRAM);
  const HWND start = program_->Control(ID_START);
  const auto width = [&] {
    RECT place{};
    GetWindowRect(echogram, &place);
    return place.right - place.left;
  };
  const long client = program_->ClientSize().cx;

  PostMessageW(echogram, WM_LBUTTONDOWN, MK_LBUTTON | MK_CONTROL, MAKELPARAM(50, 50));
  EXPECT_TRUE(WaitUntil([&] { return !IsWindowVisible(start) && width() == client - Scaled(12); }, 10));
  PostMessageW(echogram, WM_LBUTTONDOWN, MK_LBUTTON | MK_CONTROL, MAKELPARAM(50, 50));
  EXPECT_TRUE(WaitUntil([&] { return IsWindowVisible(start) && width() == client - Scaled(192); }, 10));
  EXPECT_FALSE(IsWindowVisible(program_->Control(ID_SAVE_ADDITIONAL))) << "it was hidden before";
}

TEST_F(Layout, WindowIsNeverSmallerThanItsControlsNeed) {
  ResizeTo(kLarger);
  program_->Resize(300, 200);
  RECT window{};
  ASSERT_TRUE(WaitUntil(
      [&] {
        GetWindowRect(program_->Window(), &window);
        return window.right - window.left == OnThisScreen(kSmallest).width;
      },
      10));
  EXPECT_EQ(window.bottom - window.top, OnThisScreen(kSmallest).height);
}

TEST_F(Layout, EveryTextFits) {
  ResizeTo(kSmallest);
  for (const ControlPlace& control : program_->Controls()) {
    const bool fitsItself = control.className == L"ComboBox" || control.id == ID_RECORDING_LAMP;
    if (!fitsItself && control.id != 0) ExpectTextFits(control, control.text);
  }
  SavePicture(program_->Window(), "main-window-idle");
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
  ResizeTo(kSmallest);
  const std::vector<ControlPlace> controls = program_->Controls();
  for (const SelectorText& row : kSelectorTexts) {
    const auto at = std::find_if(controls.begin(), controls.end(),
                                 [&](const ControlPlace& control) { return control.id == row.id; });
    ASSERT_NE(at, controls.end()) << row.id;
    ExpectTextFits(*at, row.text);
  }
}

// It has letters of its own; seen on the screen, its name ends ahead of the arrow.
TEST_F(Layout, EveryFamilysLongestOutputIsWhole) {
  ResizeTo(kSmallest);
  const HWND combo = program_->Control(ID_OUTPUT);
  const LRESULT item =
      SendMessageW(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"Echo txt Fixed 1000 Samples"));
  ASSERT_GE(SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(item), 0), 0);
  Sleep(500);  // until it is painted
  const Picture picture = PictureOf(combo);
  const RECT name{3, 3, picture.width - GetSystemMetrics(SM_CXVSCROLL) - 3, picture.height - 3};
  const auto drawnIn = [&](int left, int right) {
    int drawn = 0;
    for (int x = left; x < right; ++x) {
      for (int y = name.top; y < name.bottom; ++y)
        drawn += picture.At(x, y) != picture.At(name.left, name.top) ? 1 : 0;
    }
    return drawn;
  };
  EXPECT_GT(drawnIn(name.right - Scaled(30), name.right), 0) << "its last letters";
  EXPECT_EQ(drawnIn(name.right - 4, name.right), 0);
}

}  // namespace
}  // namespace tw
