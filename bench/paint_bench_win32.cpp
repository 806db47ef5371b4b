// Whole paints of the echogram view at 1,920 x 1,080, in a window of its own over a synthetic sea bed, a new
// ping each: the single and the dual view, and moves of the cursor. Prints the median times and exits with 1
// when one is 8 ms or more, or when 10,000 paints make drawing objects or take memory that 100 have not. With
// a path as argument the picture is saved there as a PNG file; a second argument "dual", "marks" or
// "altitude" changes what is shown.
#include <windows.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <cwchar>
#include <memory>
#include <random>

#include "acquisition/time_marks.h"
#include "app/state/app_state.h"
#include "app/state/posts.h"
#include "base/bytes.h"
#include "bench/measure.h"
#include "display/echogram_view_win32.h"
#include "display/palette.h"
#include "display/png_win32.h"
#include "display/view_painter_win32.h"
#include "platform/memory.h"

namespace tw {

void ToggleFullWindow(AppState&) {}
void TellScreenshot(AppState&, const wchar_t*) {}

void PostStatusText(AppState&, StatusPart, const wchar_t*) {}

namespace {

constexpr int32_t kWidth = 1'920;
constexpr int32_t kHeight = 1'080;
constexpr int32_t kNewest = 3'000;
constexpr size_t kSamples = 25'000;
constexpr double kMetresPerSample = 0.0075;

// A rough bottom around 30 m with its second echo, fish, noise in the water.
void FillSlot(uint8_t* slot, int32_t index, std::minstd_rand& random) {
  const double depth_m = 30 + 4 * std::sin(index / 90.0) + std::sin(index / 17.0);
  StoreLe<uint32_t>(slot + frame::kHeaderLength, frame::kWrittenHeaderLength);
  StoreLe<uint32_t>(slot + frame::kTimeOfWork, 1'700'000'000u + static_cast<uint32_t>(index / 10));
  StoreLeFloat(slot + frame::kAltitude, static_cast<float>(depth_m));
  StoreLeFloat(slot + frame::kTemperature, 12.5f);
  StoreLeFloat(slot + frame::kPitch, -1.5f);
  StoreLeFloat(slot + frame::kRoll, 2.25f);
  for (size_t i = 0; i < kSamples; ++i) {
    const double at_m = static_cast<double>(i) * kMetresPerSample;
    const double bottom = at_m < depth_m ? 0 : 3'900 * std::exp((depth_m - at_m) / 2.5);
    const double second = at_m < 2 * depth_m ? 0 : 1'500 * std::exp((2 * depth_m - at_m) / 4);
    const double pulse = at_m < 0.6 ? 3'500 : 0;
    const auto noise = static_cast<double>(random() % 120);
    const double amplitude = std::min(bottom + second + pulse + noise, 4'095.0);
    StoreLe<uint16_t>(slot + kSlotSamples + 2 * i, static_cast<uint16_t>(amplitude));
  }
}

bool FillState(AppState& state) {
  state.ringA = static_cast<PingRing*>(AllocateZeroed(kRingSize));
  state.ringB = state.ringA;
  if (state.ringA == nullptr) return false;
  std::minstd_rand random(11);
  for (int32_t i = 0; i <= kNewest; ++i) FillSlot(state.ringA->slots[i], i, random);
  MakeLock(state.ringLockA);
  MakeLock(state.ringLockB);
  MakeLock(globals.marksA.lock);
  MakeLock(globals.linesA.lock);
  MakeLock(globals.linesB.lock);
  MakeLock(globals.marksB.lock);
  BuildPalette(state.palette);
  state.ringIndexA = state.ringIndexB = kNewest;
  state.ringTimeA = state.ringTimeB = kNewest;
  state.inputFileA = state.inputFileB = Handle::invalid;
  state.displayRangeUpper = state.displayRangeLower = 80'000;
  state.timeScaleUpper = state.timeScaleLower = 150;
  state.echogramEnabled = 1;
  state.settings.soundSpeed_mps = 1'500.0f;
  state.settings.frequencyInUse_hz = state.settings.highFrequency_hz = 447'000;
  state.settings.lowFrequency_hz = 200'000;
  state.settings.thresholdHigh_percent = state.settings.thresholdLow_percent = 20;
  state.settings.rangeHigh_mm = state.settings.rangeLow_mm = 200'000;
  state.initialised = 1;
  globals.pingCounter = 12'345;
  globals.attitudePresent = 1;
  return true;
}

void FillMarks() {
  globals.timestampTicked = 1;
  for (uint32_t i = 0; i < 1'490; ++i) {
    AddMark(globals.marksA, 300, {1'700'000'000u + i / 10, int64_t{kNewest} - 1'489 + i});
  }
}

LRESULT CALLBACK ParentProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  return DefWindowProcW(window, message, wParam, lParam);
}

HWND MakeView(AppState& state) {
  const HINSTANCE instance = GetModuleHandleW(nullptr);
  WNDCLASSW parentClass{};
  parentClass.lpfnWndProc = ParentProcedure;
  parentClass.hInstance = instance;
  parentClass.lpszClassName = L"Paint bench";
  if (RegisterClassW(&parentClass) == 0 || !RegisterEchogramClass(instance)) return nullptr;
  const HWND parent = CreateWindowExW(0, L"Paint bench", L"", WS_POPUP | WS_VISIBLE, 0, 0, kWidth, kHeight,
                                      nullptr, nullptr, instance, nullptr);
  SetWindowLongPtrW(parent, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(&state));
  return CreateWindowExW(0, L"KT710 Echoshow", L"", WS_CHILD | WS_VISIBLE, 0, 0, kWidth, kHeight, parent,
                         nullptr, instance, nullptr);
}

void Pump(uint32_t milliseconds) {
  const ULONGLONG end = GetTickCount64() + milliseconds;
  MSG message;
  do {
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) DispatchMessageW(&message);
    Sleep(10);
  } while (GetTickCount64() < end);
}

// Each paint shows one more ping, within the slots that are filled.
void PaintNext(AppState& state, HWND view) {
  state.ringIndexA = state.ringIndexA >= kNewest ? kNewest - 100 : state.ringIndexA + 1;
  state.ringIndexB = state.ringIndexA;
  state.ringA->stamps[state.ringIndexA] += 2;
  InvalidateRect(view, nullptr, FALSE);
  UpdateWindow(view);
}

bool MeasureTime(AppState& state, HWND view, const char* what) {
  for (int i = 0; i < 20; ++i) PaintNext(state, view);
  const double paint_ms = MedianMilliseconds([&] { PaintNext(state, view); });
  std::printf("%s, %d x %d: %.2f ms a paint\n", what, kWidth, kHeight, paint_ms);
  return paint_ms < 8;
}

// The system's own heaps may round up a little; a leak of one object a paint would be megabytes.
bool StaysTheSame(AppState& state, HWND view) {
  constexpr size_t kSlack = 256 << 10;
  for (int i = 0; i < 100; ++i) PaintNext(state, view);
  const uint32_t objects = drawingCounts.made - drawingCounts.released;
  const uint32_t made = drawingCounts.made;
  const size_t resident = ResidentBytes();
  for (int i = 100; i < 10'000; ++i) PaintNext(state, view);
  const uint32_t objectsLater = drawingCounts.made - drawingCounts.released;
  const size_t residentLater = ResidentBytes();
  std::printf(
      "after 100 paints %u drawing objects and %zu KiB, after 10,000 %u and %zu KiB; made meanwhile %u\n",
      objects, resident / 1024, objectsLater, residentLater / 1024, drawingCounts.made - made);
  return objects == objectsLater && drawingCounts.made == made && residentLater <= resident + kSlack;
}

// What a move of the cursor costs: the layer drawn, copied to the screen and taken away again.
bool MeasureMoves(AppState& state, HWND view) {
  int32_t x = 0;
  const auto move = [&] {
    x = (x + 37) % 1'500;
    SendMessageW(view, WM_MOUSEMOVE, 0, MAKELPARAM(100 + x, 100 + x / 2));
  };
  const double move_ms = MedianMilliseconds(move);
  std::printf("a move of the cursor: %.2f ms\n", move_ms);
  return MeasureTime(state, view, "with the read-out") && move_ms < 1;
}

bool SaveView(AppState& state, HWND view, const wchar_t* path) {
  const auto painter = std::make_unique<ViewPainter>();
  const HDC screen = GetDC(view);
  const bool painted = painter->Paint(state, screen, kWidth, kHeight);
  ReleaseDC(view, screen);
  return painted && SavePng(painter->Picture().Pixels(), path);
}

int Run(int argumentCount, wchar_t** arguments) {
  const auto state = std::make_unique<AppState>();
  const wchar_t* const variant = argumentCount > 2 ? arguments[2] : L"";
  if (!FillState(*state)) return 2;
  if (std::wcscmp(variant, L"dual") == 0) globals.dualMode = 1;
  if (std::wcscmp(variant, L"marks") == 0) FillMarks();
  if (std::wcscmp(variant, L"altitude") == 0) state->echogramEnabled = 0;
  const HWND view = MakeView(*state);
  if (view == nullptr) return 2;
  Pump(300);
  if (argumentCount > 1) return SaveView(*state, view, arguments[1]) ? 0 : 2;
  bool kept = MeasureTime(*state, view, "single view");
  globals.dualMode = 1;
  kept = MeasureTime(*state, view, "dual view") && kept;
  kept = MeasureMoves(*state, view) && kept;
  kept = StaysTheSame(*state, view) && kept;
  DestroyWindow(GetParent(view));
  std::printf("drawing objects left: %u\n", drawingCounts.made - drawingCounts.released);
  return kept && drawingCounts.made == drawingCounts.released ? 0 : 1;
}

}  // namespace
}  // namespace tw

int wmain(int argumentCount, wchar_t** arguments) {
  const Gdiplus::GdiplusStartupInput input;
  ULONG_PTR token = 0;
  if (Gdiplus::GdiplusStartup(&token, &input, nullptr) != Gdiplus::Ok) return 2;
  const int result = tw::Run(argumentCount, arguments);
  Gdiplus::GdiplusShutdown(token);
  return result;
}
