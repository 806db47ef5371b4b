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

#include "acquisition/time_marks.h"
#include "app/state/app_state.h"
#include "app/state/posts.h"
#include "app/state/slider_messages.h"
#include "display/drawing_win32.h"
#include "display/echogram_view_win32.h"
#include "platform/memory.h"
#include "tests/display/test_ring.h"
#include "tests/window/view_picture.h"

namespace tw {

namespace {
int fullWindowToggles = 0;
}

// What the program around the view is asked for.
void ToggleFullWindow(AppState&) {
  ++fullWindowToggles;
}
void TellScreenshot(AppState&, const wchar_t*) {}
void PostStatusText(AppState&, StatusPart, const wchar_t*) {}

namespace {

constexpr int kWidth = 794;
constexpr int kHeight = 560;
constexpr int kForward = 120;
constexpr int kBack = -120;
constexpr uint32_t kTrack = 0x3E3E42;
constexpr uint32_t kThumb = 0x686868;
constexpr uint32_t kHovered = 0x9E9E9E;

Picture DecodePng(const std::filesystem::path& path) {
  Gdiplus::GpBitmap* made = nullptr;
  if (flat::GdipCreateBitmapFromFile(path.c_str(), &made) != Gdiplus::Ok) return {};
  const OwnedImage image(made);
  UINT width = 0;
  UINT height = 0;
  flat::GdipGetImageWidth(made, &width);
  flat::GdipGetImageHeight(made, &height);
  const Gdiplus::Rect all(0, 0, static_cast<INT>(width), static_cast<INT>(height));
  Picture picture{all.Width, all.Height, std::vector<uint32_t>(size_t{width} * height)};
  Gdiplus::BitmapData data{width, height, all.Width * 4, PixelFormat32bppRGB, picture.pixels.data(), 0};
  constexpr UINT kIntoData = Gdiplus::ImageLockModeRead | Gdiplus::ImageLockModeUserInputBuf;
  if (flat::GdipBitmapLockBits(made, &all, kIntoData, PixelFormat32bppRGB, &data) != Gdiplus::Ok) return {};
  flat::GdipBitmapUnlockBits(made, &data);
  for (uint32_t& pixel : picture.pixels) pixel &= 0xFFFFFF;
  return picture;
}

// What was painted in a window of this process, whether or not it has come to the screen yet.
Picture ReadWindow(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  const HDC dc = GetDC(window);
  OffscreenPicture copy;
  Picture picture{client.right, client.bottom, {}};
  if (copy.Resize(dc, client.right, client.bottom)) {
    BitBlt(copy.Dc(), 0, 0, client.right, client.bottom, dc, 0, 0, SRCCOPY);
    const Canvas pixels = copy.Pixels();
    picture.pixels.assign(pixels.pixels, pixels.Row(pixels.height));
    for (uint32_t& pixel : picture.pixels) pixel &= 0xFFFFFF;
  }
  ReleaseDC(window, dc);
  return picture;
}

// What goes to the debugger: in the end the system raises it as single bytes, in an exception that nobody
// need handle.
std::string debugged;
LONG CALLBACK NoteDebugText(EXCEPTION_POINTERS* raised) {
  const EXCEPTION_RECORD& record = *raised->ExceptionRecord;
  if (record.ExceptionCode == DBG_PRINTEXCEPTION_C)
    debugged += reinterpret_cast<const char*>(record.ExceptionInformation[1]);
  return EXCEPTION_CONTINUE_SEARCH;
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
    MakeLock(globals.marksA.lock);
    MakeLock(globals.linesA.lock);
    MakeLock(globals.linesB.lock);
    MakeLock(globals.marksB.lock);
    // Once, since it takes a system without window manager two seconds.
    parent = CreateWindowExW(0, L"Parent", L"", WS_POPUP | WS_VISIBLE, 100, 50, kWidth, kHeight, nullptr,
                             nullptr, nullptr, nullptr);
  }
  static void TearDownTestSuite() {
    DestroyWindow(parent);
    Gdiplus::GdiplusShutdown(token);
  }

  EchogramWindow() {
    globals.dualMode = globals.timestampTicked = globals.autoCaptureTicked = 0;
    globals.screenshotRequested = globals.autoCaptureRequested = 0;
    fullWindowToggles = 0;
    FillViewState(*state_, *ring_, *ring_);
    for (int32_t i = 0; i < 60; ++i) FillSlot(*ring_, i, 88, 3'000);
    state_->ringIndexA = state_->ringIndexB = 59;
    wchar_t temporary[MAX_PATH];
    GetTempPathW(MAX_PATH, temporary);
    folder_ = std::filesystem::path(temporary) / L"tidewriter_view_test";
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directory(folder_);
    wcscpy_s(state_->workingFolder, folder_.c_str());
    SetWindowLongPtrW(parent, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(state_.get()));
    view_ = Child(L"KT710 Echoshow", 0, kHeight);
    Paint();
  }
  ~EchogramWindow() override {
    HoldShift(false);
    DestroyWindow(view_);
    std::filesystem::remove_all(folder_);
  }

  HWND Child(const wchar_t* className, int top, int height) {
    return CreateWindowExW(0, className, L"", WS_CHILD | WS_VISIBLE, 0, top, kWidth, height, parent, nullptr,
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

  // One turn a step.
  void ExpectSteps(int delta, const int32_t& shown, std::initializer_list<int32_t> steps) {
    for (const int32_t step : steps) {
      Turn(delta);
      EXPECT_EQ(shown, step);
    }
  }

  void ExpectRanges(int32_t upper_mm, int32_t lower_mm) const {
    EXPECT_EQ(state_->displayRangeUpper, upper_mm);
    EXPECT_EQ(state_->displayRangeLower, lower_mm);
  }

  void ExpectShown(const std::filesystem::path& png) const {
    const Picture shot = DecodePng(png);
    EXPECT_EQ(shot.width, kWidth);
    EXPECT_EQ(shot.height, kHeight);
    EXPECT_TRUE(shot.pixels == ReadWindow(view_).pixels);
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
  static inline HWND parent = nullptr;
  TestRing ring_ = MakeRing();
  std::unique_ptr<AppState> state_ = std::make_unique<AppState>();
  std::filesystem::path folder_;
  HWND view_ = nullptr;
};

TEST_F(EchogramWindow, NoDataStandsOverTheNewestColumnsIfThatIsWanted) {
  const Picture live = ReadWindow(view_);
  state_->noData_s = 12;
  Paint();
  EXPECT_EQ(ReadWindow(view_).pixels, live.pixels) << "the option is off";
  state_->options.noDataOverEchogram = 1;
  Paint();
  const Picture told = ReadWindow(view_);
  const int right = kWidth - 120;
  int changed = 0;
  for (int i = 0; i < told.width * told.height; ++i) {
    if (told.pixels[static_cast<size_t>(i)] == live.pixels[static_cast<size_t>(i)]) continue;
    ++changed;
    EXPECT_TRUE(i % told.width < right && i % told.width >= right - 148) << i % told.width;
  }
  EXPECT_GT(changed, 500);
}

TEST_F(EchogramWindow, WheelChoosesTheRangeAndWithShiftTheTimeScale) {
  ExpectSteps(kBack, state_->displayRangeUpper, {15'000, 20'000});
  ExpectSteps(1'200, state_->displayRangeUpper, {15'000, 10'000, 5'000});
  ExpectSteps(-7, state_->displayRangeUpper, {10'000});
  ExpectSteps(0, state_->displayRangeUpper, {10'000});
  EXPECT_EQ(state_->displayRangeLower, 10'000);
  EXPECT_EQ(state_->timeScaleUpper, 150);
  HoldShift(true);
  ExpectSteps(kBack, state_->timeScaleUpper, {180});
  ExpectSteps(kForward, state_->timeScaleUpper, {150, 120});
  EXPECT_EQ(state_->timeScaleLower, 150) << "the single view has one scale";
  EXPECT_EQ(state_->displayRangeUpper, 10'000);
}

TEST_F(EchogramWindow, TimeScaleStandsWhileStampsOrCapturesNeedIt) {
  for (int32_t* const box : {&globals.timestampTicked, &globals.autoCaptureTicked}) {
    *box = 1;
    HoldShift(true);
    ExpectSteps(kForward, state_->timeScaleUpper, {150});
    HoldShift(false);
    state_->displayRangeUpper = 10'000;
    ExpectSteps(kForward, state_->displayRangeUpper, {5'000});
    *box = 0;
  }
}

TEST_F(EchogramWindow, DualViewZoomsThePanelUnderTheCursor) {
  globals.dualMode = 1;
  Turn(kForward, 300, kHeight / 2 - 1);
  ExpectRanges(5'000, 10'000);
  for (int i = 0; i < 10; ++i) Turn(kBack, 300, kHeight / 2);
  ExpectRanges(5'000, 50'000);  // the low channel's range is its limit
  Turn(kForward, -1, 100);
  Turn(kForward, 300, kHeight);
  ExpectRanges(5'000, 50'000);  // outside

  HoldShift(true);
  state_->timeScaleLower = 300;
  Turn(kForward, 300, kHeight - 1);
  Turn(kForward, kWidth, 100);  // outside
  EXPECT_EQ(state_->timeScaleUpper, 120);
  EXPECT_EQ(state_->timeScaleLower, 120);
}

TEST_F(EchogramWindow, FullWindowNeedsControl) {
  SendMessageW(view_, WM_LBUTTONDOWN, MK_LBUTTON, 0);
  EXPECT_EQ(fullWindowToggles, 0);
  SendMessageW(view_, WM_LBUTTONDOWN, MK_LBUTTON | MK_CONTROL, 0);
  EXPECT_EQ(fullWindowToggles, 1);
}

TEST_F(EchogramWindow, CursorBringsTheFocusForTheWheel) {
  SetFocus(parent);
  SendMessageW(view_, WM_MOUSEMOVE, 0, 0);
  EXPECT_EQ(GetFocus(), view_);
}

TEST_F(EchogramWindow, TheReadOutFollowsTheCursorAndLeavesNoTrace) {
  const Picture bare = ReadWindow(view_);
  POINT at{300, 100};
  ClientToScreen(view_, &at);
  SetCursorPos(at.x, at.y);
  for (const int32_t inShots : {0, 1}) {
    state_->options.readOutInShots = inShots;
    SendMessageW(view_, WM_MOUSEMOVE, 0, MAKELPARAM(200, 90));
    SendMessageW(view_, WM_MOUSEMOVE, 0, MAKELPARAM(300, 100));
    const Picture told = ReadWindow(view_);
    EXPECT_FALSE(told.pixels == bare.pixels);
    SendMessageW(view_, WM_RBUTTONDOWN, MK_RBUTTON, 0);
    Paint();
    EXPECT_TRUE(ReadWindow(view_).pixels == told.pixels) << "a paint shows the same as a move";
    const std::vector<std::wstring> files = Files(folder_);
    ASSERT_EQ(files.size(), 1u);
    EXPECT_TRUE(DecodePng(folder_ / files[0]).pixels == (inShots != 0 ? told : bare).pixels);
    SendMessageW(view_, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(300, 100));
    SendMessageW(view_, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(kWidth + 50, -20));
    EXPECT_FALSE(ReadWindow(view_).pixels == told.pixels) << "a measure ends at the image's edge";
    SendMessageW(view_, WM_LBUTTONUP, 0, MAKELPARAM(kWidth + 50, -20));
    SendMessageW(view_, WM_MOUSELEAVE, 0, 0);
    EXPECT_TRUE(ReadWindow(view_).pixels == bare.pixels);
    std::filesystem::remove(folder_ / files[0]);
  }
}

TEST_F(EchogramWindow, RightClickSavesWhatTheNextPaintShows) {
  const struct {
    int32_t dualMode;
    const wchar_t* folder;
    const wchar_t* nameBehindTime;
  } rows[] = {{0, L"", L"_Dual_450kHz_ScreenShot(Manual)_1.png"},
              {1, L"ScreenShot", L"_Dual_ScreenShot(Manual)_1.png"}};
  void* const noting = AddVectoredExceptionHandler(1, NoteDebugText);
  for (const auto& row : rows) {
    globals.dualMode = row.dualMode;
    Paint();
    debugged.clear();
    SendMessageW(view_, WM_RBUTTONDOWN, MK_RBUTTON, 0);
    EXPECT_EQ(debugged, "RightButtonDown\n");
    const std::filesystem::path folder = folder_ / row.folder;
    EXPECT_TRUE(!std::filesystem::exists(folder) || Files(folder).empty());
    Paint();
    const auto files = Files(folder);
    ASSERT_EQ(files.size(), 1u);
    EXPECT_EQ(files[0].substr(15), row.nameBehindTime);
    ExpectShown(folder / files[0]);
    Paint();
    EXPECT_EQ(Files(folder).size(), 1u) << "one click, one picture";
  }
  RemoveVectoredExceptionHandler(noting);
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
    EXPECT_EQ(files[i].substr(15), L"_Dual_450kHz_ScreenShot(Auto)_" + std::to_wstring(i + 1) + L".png");
  }
  ExpectShown(folder_ / files[3]);
}

// A text runs downwards, its letters to the left of its place; other white is in the margins alone.
TEST_F(EchogramWindow, MarksStandInTheColumnsOfTheirOwnPanel) {
  constexpr int kLetters = 25;
  state_->ringIndexA = state_->ringIndexB = 2'000;
  state_->ringTimeA = 52'000;
  state_->ringTimeB = 72'000;
  ClearMarks(globals.marksA);
  ClearMarks(globals.marksB);
  AddMark(globals.marksA, 300, {1'700'000'000, 51'650});  // 35 s ago
  AddMark(globals.marksB, 300, {1'700'000'000, 71'475});  // 52.5 s ago
  globals.timestampTicked = 1;
  const auto whiteFrom = [&](int left, int right) {
    const Picture picture = ReadWindow(view_);
    int white = 0;
    for (int x = left; x < right; ++x) {
      for (int y = 30; y < 130; ++y) white += picture.At(x, y) == 0xFFFFFF ? 1 : 0;
    }
    return white;
  };
  Paint();
  EXPECT_GT(whiteFrom(524 - kLetters, 524), 0) << "350 of 1,500 slots from the right edge";
  EXPECT_EQ(whiteFrom(30, 524 - kLetters) + whiteFrom(525, 674), 0);
  globals.dualMode = 1;
  Paint();
  EXPECT_GT(whiteFrom(374 - kLetters, 374), 0) << "350 of 750";
  EXPECT_GT(whiteFrom(224 - kLetters, 224), 0) << "525 of 750; the text reaches into the upper panel";
  EXPECT_EQ(whiteFrom(30, 224 - kLetters) + whiteFrom(225, 374 - kLetters) + whiteFrom(375, 674), 0);
}

// What this process holds: our own count of drawing objects, the system's of them (Wine always says 0) and of
// windows, and memory.
struct Holdings {
  uint32_t made = drawingCounts.made;
  uint32_t released = drawingCounts.released;
  DWORD drawing = GetGuiResources(GetCurrentProcess(), GR_GDIOBJECTS);
  DWORD user = GetGuiResources(GetCurrentProcess(), GR_USEROBJECTS);
  size_t resident = ResidentBytes();
};

TEST_F(EchogramWindow, TenThousandPaintsHoldWhatOneHundredDo) {
  constexpr size_t kHeapsOwn = 256 << 10;  // the system's heaps round up
  for (uint32_t i = 0; i < kMaxMarks; ++i)
    AddMark(globals.marksA, 300, {1'700'000'000 + i, i - int64_t{kMaxMarks}});
  globals.dualMode = globals.timestampTicked = 1;
  MoveWindow(view_, 0, 0, 500, 400, FALSE);
  const auto paintAt = [&](int32_t newest) {
    state_->ringIndexA = state_->ringIndexB = newest;
    ring_->stamps[newest] += 2;
    Paint();
  };
  for (int32_t i = 1; i <= 100; ++i) paintAt(i * 101 % kRingSlots);  // each part of the ring is shown once
  const Holdings early;
  for (int32_t i = 101; i <= 10'000; ++i) paintAt(i % kRingSlots);
  const Holdings late;
  EXPECT_EQ(late.made, early.made) << "nothing is made for a paint";
  EXPECT_EQ(late.released, early.released);
  EXPECT_EQ(late.drawing, early.drawing);
  EXPECT_EQ(late.user, early.user);
  EXPECT_LE(late.resident, early.resident + kHeapsOwn);
}

TEST_F(EchogramWindow, SliderTakesNewsAndSeeksOnADrag) {
  const HWND slider = Child(L"EchoSliderbar class", kHeight - 22, 22);
  const auto send = [&](uint64_t position) {
    const uintptr_t block = SendProgress({Handle::null, kProgressSpan, 1'000, 1, position, 3'200'000});
    SendMessageW(slider, WM_USER, block, 0);
    for (const WPARAM number : {WPARAM{1}, WPARAM{4'096}, WPARAM{block}})  // no block, or none any more
      SendMessageW(slider, WM_USER, number, 0);
  };
  const auto mouse = [&](UINT message, WPARAM buttons, int x) {
    SendMessageW(slider, message, buttons, MAKELPARAM(x, 10));
  };
  const auto colourAt = [&](int x) {
    UpdateWindow(slider);
    return ReadWindow(slider).At(x, 10);
  };
  EXPECT_EQ(colourAt(5), kTrack) << "no file, no thumb";
  send(0);  // a thumb of 79 pixels on a track of 715
  EXPECT_EQ(colourAt(5), kThumb);
  EXPECT_EQ(colourAt(100), kTrack);
  SendMessageW(slider, WM_USER, 320, 1'600'000);
  EXPECT_EQ(colourAt(5), kTrack);
  EXPECT_EQ(colourAt(400), kThumb);

  mouse(WM_MOUSEMOVE, 0, 400);
  EXPECT_EQ(colourAt(400), kHovered);
  mouse(WM_MOUSELEAVE, 0, 0);
  EXPECT_EQ(colourAt(400), kThumb);
  mouse(WM_LBUTTONDOWN, MK_LBUTTON, 400);
  mouse(WM_MOUSEMOVE, MK_LBUTTON, 410);
  EXPECT_EQ(TakeSeekRequest(state_->seekRequest), uint64_t{371} * 3'200'000 / 715);
  send(0);
  EXPECT_EQ(colourAt(410), kHovered) << "the file's news wait while it is dragged";
  mouse(WM_LBUTTONUP, 0, 410);
  send(0);
  EXPECT_EQ(colourAt(5), kThumb);
  EXPECT_EQ(TakeSeekRequest(state_->seekRequest), std::nullopt);
  DestroyWindow(slider);
}

}  // namespace
}  // namespace tw
