// The echogram view as a window, in a process of its own: what the wheel, the buttons and the paints do to
// the state record and the disk. Under Wine.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "app/app_state.h"
#include "app/posts.h"
#include "display/drawing_win32.h"
#include "display/echogram_view_win32.h"
#include "display/slider_messages.h"
#include "platform/memory.h"
#include "tests/display/test_ring.h"

namespace tw {

namespace {
int fullWindowToggles = 0;
}

// What the program around the view is asked for.
void ToggleFullWindow(AppState&) {
  ++fullWindowToggles;
}
void PostStatusText(AppState&, StatusPart, const wchar_t*) {}

namespace {

constexpr int kWidth = 794;
constexpr int kHeight = 560;
constexpr int kForward = 120;
constexpr int kBack = -120;

struct Shot {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> pixels;

  bool operator==(const Shot&) const = default;
};

Shot DecodePng(const std::wstring& path) {
  Gdiplus::GpBitmap* made = nullptr;
  if (flat::GdipCreateBitmapFromFile(path.c_str(), &made) != Gdiplus::Ok) return {};
  const OwnedImage image(made);
  UINT width = 0;
  UINT height = 0;
  flat::GdipGetImageWidth(made, &width);
  flat::GdipGetImageHeight(made, &height);
  const Gdiplus::Rect all(0, 0, static_cast<INT>(width), static_cast<INT>(height));
  Gdiplus::BitmapData data{};
  if (flat::GdipBitmapLockBits(made, &all, Gdiplus::ImageLockModeRead, PixelFormat32bppRGB, &data) !=
      Gdiplus::Ok) {
    return {};
  }
  Shot shot{static_cast<int>(width), static_cast<int>(height), {}};
  for (UINT y = 0; y < height; ++y) {
    const auto* row = reinterpret_cast<const uint32_t*>(static_cast<uint8_t*>(data.Scan0) +
                                                        static_cast<ptrdiff_t>(y) * data.Stride);
    for (UINT x = 0; x < width; ++x) shot.pixels.push_back(row[x] & 0xFFFFFF);
  }
  flat::GdipBitmapUnlockBits(made, &data);
  return shot;
}

// What the screen shows of a window.
Shot ReadWindow(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  const HDC dc = GetDC(window);
  OffscreenPicture copy;
  Shot shot{client.right, client.bottom, {}};
  if (copy.Resize(dc, client.right, client.bottom)) {
    BitBlt(copy.Dc(), 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
    const Canvas pixels = copy.Pixels();
    for (int y = 0; y < pixels.height; ++y) {
      for (int x = 0; x < pixels.width; ++x) shot.pixels.push_back(pixels.Row(y)[x] & 0xFFFFFF);
    }
  }
  ReleaseDC(window, dc);
  return shot;
}

class EchogramWindow : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    const Gdiplus::GdiplusStartupInput input;
    ASSERT_EQ(Gdiplus::GdiplusStartup(&token, &input, nullptr), Gdiplus::Ok);
    WNDCLASSW parentClass{};
    parentClass.lpfnWndProc = DefWindowProcW;
    parentClass.hInstance = GetModuleHandleW(nullptr);
    parentClass.lpszClassName = L"Parent";
    ASSERT_NE(RegisterClassW(&parentClass), 0);
    ASSERT_TRUE(RegisterEchogramClass(parentClass.hInstance));
    ASSERT_TRUE(RegisterSliderClass(parentClass.hInstance));
  }
  static void TearDownTestSuite() { Gdiplus::GdiplusShutdown(token); }

  EchogramWindow() {
    globals.dualMode = globals.timestampTicked = globals.autoCaptureTicked = 0;
    globals.screenshotRequested = globals.autoCaptureRequested = 0;
    fullWindowToggles = 0;
    FillState();
    wchar_t temporary[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    folder_ = std::filesystem::path(temporary) / L"tidewriter_view_test";
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directory(folder_);
    wcscpy_s(state_->workingFolder, folder_.c_str());
    parent_ = CreateWindowExW(0, L"Parent", L"", WS_POPUP | WS_VISIBLE, 100, 50, kWidth, kHeight, nullptr,
                              nullptr, nullptr, nullptr);
    SetWindowLongPtrW(parent_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(state_.get()));
    view_ = Child(L"KT710 Echoshow", 0, kHeight);
    Paint();
  }
  ~EchogramWindow() override {
    HoldShift(false);
    DestroyWindow(parent_);
    std::filesystem::remove_all(folder_);
  }

  void FillState() {
    state_->ringA = state_->ringB = ring_.get();
    for (int32_t i = 0; i < 60; ++i) FillSlot(*ring_, i, 88, 3'000);
    MakeLock(state_->ringLockA);
    MakeLock(state_->ringLockB);
    state_->ringIndexA = state_->ringIndexB = 59;
    BuildPalette(state_->palette);
    state_->inputFileA = state_->inputFileB = Handle::invalid;
    state_->displayRangeUpper = state_->displayRangeLower = 10'000;
    state_->timeScaleUpper = state_->timeScaleLower = 150;
    state_->echogramEnabled = 1;
    DeviceSettings& settings = state_->settings;
    settings.soundSpeed_mps = 1'500.0f;
    settings.frequencyInUse_hz = settings.highFrequency_hz = 447'000;
    settings.lowFrequency_hz = 200'000;
    settings.rangeHigh_mm = 200'000;
    settings.rangeLow_mm = 50'000;
    state_->initialised = 1;
  }

  HWND Child(const wchar_t* className, int top, int height) {
    return CreateWindowExW(0, className, L"", WS_CHILD | WS_VISIBLE, 0, top, kWidth, height, parent_, nullptr,
                           nullptr, nullptr);
  }

  void Paint() {
    MSG message;
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
    InvalidateRect(view_, nullptr, FALSE);
    UpdateWindow(view_);
  }

  // With the cursor at this place of the view.
  void Turn(int delta, int x = 300, int y = 100) {
    POINT at{x, y};
    ClientToScreen(view_, &at);
    SendMessageW(view_, WM_MOUSEWHEEL, MAKEWPARAM(0, delta), MAKELPARAM(at.x, at.y));
  }

  void HoldShift(bool held) {
    keybd_event(VK_SHIFT, 0, held ? 0 : KEYEVENTF_KEYUP, 0);
    ASSERT_EQ(GetAsyncKeyState(VK_SHIFT) < 0, held);
  }

  [[nodiscard]] std::vector<std::wstring> Files(const std::filesystem::path& folder) const {
    std::vector<std::wstring> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      if (entry.is_regular_file()) names.push_back(entry.path().filename().wstring());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

  static inline ULONG_PTR token = 0;
  TestRing ring_ = MakeRing();
  std::unique_ptr<AppState> state_ = std::make_unique<AppState>();
  std::filesystem::path folder_;
  HWND parent_ = nullptr;
  HWND view_ = nullptr;
};

TEST_F(EchogramWindow, WheelGoesThroughAllRangesAndStopsAtTheEnds) {
  constexpr int32_t kOutwards[] = {15'000, 20'000, 30'000,  40'000,  50'000,  60'000,  70'000,
                                   80'000, 90'000, 100'000, 120'000, 150'000, 200'000, 200'000};
  for (const int32_t range_mm : kOutwards) {
    Turn(kBack);
    EXPECT_EQ(state_->displayRangeUpper, range_mm);
  }
  constexpr int32_t kInwards[] = {150'000, 120'000, 100'000, 90'000, 80'000, 70'000, 60'000, 50'000, 40'000,
                                  30'000,  20'000,  15'000,  10'000, 5'000,  3'000,  2'000,  1'000,  1'000};
  for (const int32_t range_mm : kInwards) {
    Turn(kForward);
    EXPECT_EQ(state_->displayRangeUpper, range_mm);
  }
  EXPECT_EQ(state_->displayRangeLower, 10'000);
  EXPECT_EQ(state_->timeScaleUpper, 150);
}

TEST_F(EchogramWindow, OnlyTheWheelsDirectionCounts) {
  Turn(1'200);
  EXPECT_EQ(state_->displayRangeUpper, 5'000);
  Turn(-7);
  EXPECT_EQ(state_->displayRangeUpper, 10'000);
  Turn(0);
  EXPECT_EQ(state_->displayRangeUpper, 10'000);
}

TEST_F(EchogramWindow, ShiftGoesThroughAllTimeScales) {
  HoldShift(true);
  for (const int32_t scale_s : {180, 210, 240, 270, 300, 300}) {
    Turn(kBack);
    EXPECT_EQ(state_->timeScaleUpper, scale_s);
  }
  for (const int32_t scale_s : {270, 240, 210, 180, 150, 120, 60, 30, 20, 10, 10}) {
    Turn(kForward);
    EXPECT_EQ(state_->timeScaleUpper, scale_s);
  }
  EXPECT_EQ(state_->timeScaleLower, 150) << "the single view has one scale";
  EXPECT_EQ(state_->displayRangeUpper, 10'000);
}

TEST_F(EchogramWindow, TimeScaleStandsWhileStampsOrCapturesNeedIt) {
  HoldShift(true);
  for (int32_t* const box : {&globals.timestampTicked, &globals.autoCaptureTicked}) {
    *box = 1;
    Turn(kForward);
    EXPECT_EQ(state_->timeScaleUpper, 150);
    *box = 0;
  }
  HoldShift(false);
  globals.timestampTicked = 1;
  Turn(kForward);
  EXPECT_EQ(state_->displayRangeUpper, 5'000) << "the range is free";
}

TEST_F(EchogramWindow, DualViewZoomsThePanelUnderTheCursor) {
  globals.dualMode = 1;
  Turn(kForward, 300, kHeight / 2 - 1);
  EXPECT_EQ(state_->displayRangeUpper, 5'000);
  EXPECT_EQ(state_->displayRangeLower, 10'000);
  for (int i = 0; i < 10; ++i) Turn(kBack, 300, kHeight / 2);
  EXPECT_EQ(state_->displayRangeUpper, 5'000);
  EXPECT_EQ(state_->displayRangeLower, 50'000) << "the low channel's range is its limit";

  Turn(kForward, -1, 100);
  Turn(kForward, 300, kHeight);
  EXPECT_EQ(state_->displayRangeUpper, 5'000) << "outside";
  EXPECT_EQ(state_->displayRangeLower, 50'000);

  HoldShift(true);
  state_->timeScaleLower = 300;
  Turn(kForward, 300, kHeight - 1);
  EXPECT_EQ(state_->timeScaleUpper, 120);
  EXPECT_EQ(state_->timeScaleLower, 120);
  Turn(kForward, kWidth, 100);
  EXPECT_EQ(state_->timeScaleUpper, 120) << "outside";
}

TEST_F(EchogramWindow, DeviceRangeThatIsNoStepAllowsOneMetreOnly) {
  state_->settings.rangeHigh_mm = 25'000;
  for (const int turn : {kForward, kBack}) {
    state_->displayRangeUpper = 10'000;
    Turn(turn);
    EXPECT_EQ(state_->displayRangeUpper, 1'000);
  }
}

TEST_F(EchogramWindow, FullWindowNeedsControl) {
  SendMessageW(view_, WM_LBUTTONDOWN, MK_LBUTTON, 0);
  EXPECT_EQ(fullWindowToggles, 0);
  SendMessageW(view_, WM_LBUTTONDOWN, MK_LBUTTON | MK_CONTROL, 0);
  EXPECT_EQ(fullWindowToggles, 1);
}

TEST_F(EchogramWindow, CursorBringsTheFocusForTheWheel) {
  SetFocus(parent_);
  SendMessageW(view_, WM_MOUSEMOVE, 0, 0);
  EXPECT_EQ(GetFocus(), view_);
}

TEST_F(EchogramWindow, RightClickSavesWhatTheNextPaintShows) {
  SendMessageW(view_, WM_RBUTTONDOWN, MK_RBUTTON, 0);
  EXPECT_TRUE(Files(folder_).empty());
  Paint();
  const auto files = Files(folder_);
  ASSERT_EQ(files.size(), 1u);
  EXPECT_TRUE(files[0].ends_with(L"_Dual_450kHz_ScreenShot(Manual)_1.png")) << files[0].size();
  EXPECT_EQ(files[0].size(), std::wstring(L"20250314_093005_Dual_450kHz_ScreenShot(Manual)_1.png").size());
  const Shot shot = DecodePng(folder_ / files[0]);
  EXPECT_EQ(shot.width, kWidth);
  EXPECT_EQ(shot.height, kHeight);
  EXPECT_TRUE(shot == ReadWindow(view_));
  Paint();
  EXPECT_EQ(Files(folder_).size(), 1u) << "one click, one picture";
}

TEST_F(EchogramWindow, AutomaticShotsCountUpUnderTheFirstOnesTime) {
  for (int i = 0; i < 3; ++i) {
    globals.screenshotRequested = 1;
    Paint();
    EXPECT_EQ(globals.screenshotRequested, 0);
  }
  globals.autoCaptureRequested = 1;  // a worker's wish
  Paint();
  EXPECT_EQ(globals.autoCaptureRequested, 0);
  const auto files = Files(folder_);
  ASSERT_EQ(files.size(), 4u);
  for (size_t i = 0; i < files.size(); ++i) {
    EXPECT_EQ(files[i].substr(0, 15), files[0].substr(0, 15));
    EXPECT_TRUE(files[i].ends_with(L"_Dual_450kHz_ScreenShot(Auto)_" + std::to_wstring(i + 1) + L".png"));
  }
  EXPECT_TRUE(DecodePng(folder_ / files[3]) == ReadWindow(view_));
}

TEST_F(EchogramWindow, DualShotsStandInAFolderOfTheirOwn) {
  globals.dualMode = 1;
  SendMessageW(view_, WM_RBUTTONDOWN, MK_RBUTTON, 0);
  Paint();
  EXPECT_TRUE(Files(folder_).empty());
  const auto files = Files(folder_ / L"ScreenShot");
  ASSERT_EQ(files.size(), 1u);
  EXPECT_TRUE(files[0].ends_with(L"_Dual_ScreenShot(Manual)_1.png"));
  EXPECT_TRUE(DecodePng(folder_ / L"ScreenShot" / files[0]) == ReadWindow(view_));
}

TEST_F(EchogramWindow, PaintsMakeNothingAndKeepNothing) {
  for (int i = 0; i < 100; ++i) Paint();
  const uint32_t made = drawingCounts.made;
  const uint32_t released = drawingCounts.released;
  const size_t resident = ResidentBytes();
  for (int i = 0; i < 1'900; ++i) {
    state_->ringIndexA = 20 + i % 40;
    ring_->stamps[state_->ringIndexA] += 2;
    globals.dualMode = i / 100 % 2;
    Paint();
  }
  EXPECT_LE(drawingCounts.made - made, 0u) << "of both views";
  EXPECT_EQ(drawingCounts.released, released);
  EXPECT_LE(ResidentBytes(), resident + (20u << 20)) << "the lower panel's columns, and no more";
}

TEST_F(EchogramWindow, SliderTakesNewsAndSeeksOnADrag) {
  const HWND slider = Child(L"EchoSliderbar class", kHeight - 22, 22);
  const auto send = [&](uint64_t position) {
    auto* const block = new ProgressBlock{Handle::null, kProgressSpan, 1'000, 1, position, 3'200'000};
    SendMessageW(slider, WM_USER, reinterpret_cast<WPARAM>(block), 0);
  };
  const auto colourAt = [&](size_t x) {
    UpdateWindow(slider);
    return ReadWindow(slider).pixels[10 * size_t{kWidth} + x];
  };
  EXPECT_EQ(colourAt(5), 0x3E3E42u);
  send(0);  // a thumb of 79 pixels on a track of 715
  EXPECT_EQ(colourAt(5), 0x686868u);
  EXPECT_EQ(colourAt(100), 0x3E3E42u);
  SendMessageW(slider, WM_USER, 320, 1'600'000);
  EXPECT_EQ(colourAt(5), 0x3E3E42u);
  EXPECT_EQ(colourAt(400), 0x686868u);

  SendMessageW(slider, WM_MOUSEMOVE, 0, MAKELPARAM(400, 10));
  EXPECT_EQ(colourAt(400), 0x9E9E9Eu);
  SendMessageW(slider, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(400, 10));
  SendMessageW(slider, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(410, 10));
  EXPECT_EQ(TakeSeekRequest(state_->seekRequest), uint64_t{371} * 3'200'000 / 715);
  send(0);
  EXPECT_EQ(colourAt(410), 0x9E9E9Eu) << "the file's news wait while it is dragged";
  SendMessageW(slider, WM_LBUTTONUP, 0, MAKELPARAM(410, 10));
  send(0);
  EXPECT_EQ(colourAt(5), 0x686868u);
  EXPECT_EQ(TakeSeekRequest(state_->seekRequest), std::nullopt);
}

}  // namespace
}  // namespace tw
