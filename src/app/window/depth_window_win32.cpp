// The depth in large figures: a small window above all others, as large as the operator draws it.
#include <windows.h>

#include <algorithm>
#include <cwchar>

#include "app/settings/depth_figures.h"
#include "app/settings/stored_options.h"
#include "app/window/ui.h"
#include "app/window/view_placement_win32.h"
#include "app/window/window_handles_win32.h"
#include "app/window/window_layout.h"
#include "display/drawing_win32.h"
#include "display/scaling.h"
#include "platform/registry.h"

namespace tw {
namespace {

constexpr wchar_t kClassName[] = L"Tidewriter depth";
constexpr const wchar_t* kPlaceNames[] = {L"DepthWindowLeft", L"DepthWindowTop", L"DepthWindowWidth",
                                          L"DepthWindowHeight"};

// At 96 dpi. A figure 100 pixels high is read from five metres.
constexpr int kWidth = 340;
constexpr int kHeight = 190;
constexpr int kLeast = 100;
constexpr int kFromEdge = 40;

// Of the height of one figure's part of the window.
constexpr double kFigureShare = 0.72;
constexpr double kNoteShare = 0.2;
constexpr double kLetterShare = 0.62;  // of a letter's width, at most, of its height

struct Shown {
  HWND window;
  DepthFigures figures;
};
constinit Shown shown{};

COLORREF ColourOf(DepthLook look) {
  switch (look) {
    case DepthLook::alive:
      return RGB(255, 255, 255);
    case DepthLook::alarm:
      return RGB(255, 70, 70);
    case DepthLook::stale:
    case DepthLook::nothing:
      break;
  }
  return RGB(128, 128, 128);
}

void DrawLine(HDC dc, const wchar_t* text, RECT place, int height, COLORREF colour, UINT where) {
  const OwnedGdiFont font(CreateFontW(-std::max(height, 8), 0, 0, 0, FW_BOLD, FALSE, FALSE, FALSE,
                                      DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                      ANTIALIASED_QUALITY, DEFAULT_PITCH | FF_SWISS, L"Segoe UI"));
  if (!font) return;
  const HGDIOBJ replaced = SelectObject(dc, font.Get());
  SetTextColor(dc, colour);
  SetBkMode(dc, TRANSPARENT);
  DrawTextW(dc, text, -1, &place, DT_CENTER | DT_SINGLELINE | DT_NOPREFIX | DT_NOCLIP | where);
  SelectObject(dc, replaced);
}

void DrawFigure(HDC dc, const DepthFigure& figure, RECT place) {
  const int width = place.right - place.left;
  const int height = place.bottom - place.top;
  const auto letters = static_cast<double>(std::max<size_t>(std::wcslen(figure.depth), 5));
  const auto notes = static_cast<double>(std::max<size_t>(std::wcslen(figure.note), 8));
  const int figureHeight =
      static_cast<int>(std::min(height * kFigureShare, width / (letters * kLetterShare)));
  const int noteHeight = static_cast<int>(std::min(height * kNoteShare, width / (notes * kLetterShare)));
  RECT upper = place;
  upper.bottom -= noteHeight;
  DrawLine(dc, figure.depth, upper, figureHeight, ColourOf(figure.look), DT_VCENTER);
  DrawLine(dc, figure.note, place, noteHeight, ColourOf(figure.look), DT_BOTTOM);
}

void Draw(HDC dc, const RECT& client) {
  FillRect(dc, &client, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  const int part = client.bottom / std::max(shown.figures.count, 1);
  for (int i = 0; i < shown.figures.count; ++i)
    DrawFigure(dc, shown.figures.figures[i], {0, i * part, client.right, (i + 1) * part});
}

// Aside first, so that nothing flickers.
void OnPaint(HWND window) {
  PAINTSTRUCT paint;
  const HDC screen = BeginPaint(window, &paint);
  RECT client{};
  GetClientRect(window, &client);
  OffscreenPicture picture;
  if (screen != nullptr && picture.Resize(screen, client.right, client.bottom)) {
    Draw(picture.Dc(), client);
    BitBlt(screen, 0, 0, client.right, client.bottom, picture.Dc(), 0, 0, SRCCOPY);
  }
  EndPaint(window, &paint);
}

void KeepPlace(HWND window) {
  RECT place{};
  if (IsIconic(window) != FALSE || GetWindowRect(window, &place) == FALSE) return;
  const LONG values[] = {place.left, place.top, place.right - place.left, place.bottom - place.top};
  for (size_t i = 0; i < std::size(values); ++i)
    static_cast<void>(WriteRegistryNumber(kOptionsKey, kPlaceNames[i], static_cast<uint32_t>(values[i])));
}

// Where it stood last, brought onto the screen; at first in the upper right corner of the main window.
Box PlaceOf(HWND owner) {
  Box box{};
  int* const parts[] = {&box.x, &box.y, &box.width, &box.height};
  bool stored = true;
  for (size_t i = 0; i < std::size(parts); ++i) {
    uint32_t value = 0;
    stored = stored && ReadRegistryNumber(kOptionsKey, kPlaceNames[i], value);
    *parts[i] = std::clamp(static_cast<int32_t>(value), -32'000, 32'000);
  }
  const int32_t dpi = ScreenDpi();
  if (!stored || box.width < kLeast || box.height < kLeast) {
    RECT main{};
    GetWindowRect(owner, &main);
    box.width = ScalePixels(kWidth, dpi);
    box.height = ScalePixels(kHeight, dpi);
    box.x = main.right - box.width - ScalePixels(kFromEdge, dpi);
    box.y = main.top + ScalePixels(2 * kFromEdge, dpi);
  }
  return WithinWorkArea(box, WorkAreaOf(owner));
}

// Closing it is the same as taking the option away.
void OnClose(HWND window) {
  AppState* const state = StateOf(GetWindow(window, GW_OWNER));
  if (state != nullptr) {
    state->options.depthWindow = 0;
    SaveOptions(state->options);
  }
  DestroyWindow(window);
}

LRESULT CALLBACK DepthProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_ERASEBKGND:
      return 1;  // the picture covers all
    case WM_PAINT:
      OnPaint(window);
      return 0;
    case WM_SIZE:
      InvalidateRect(window, nullptr, FALSE);
      return 0;
    case WM_EXITSIZEMOVE:
      KeepPlace(window);
      return 0;
    case WM_GETMINMAXINFO:
      reinterpret_cast<MINMAXINFO*>(lParam)->ptMinTrackSize = {kLeast, kLeast};
      return 0;
    case WM_CLOSE:
      OnClose(window);
      return 0;
    case WM_NCDESTROY:
      shown.window = nullptr;
      return DefWindowProcW(window, message, wParam, lParam);
    default:
      return DefWindowProcW(window, message, wParam, lParam);
  }
}

bool RegisterDepthClass() {
  static const bool registered = [] {
    WNDCLASSEXW windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.lpfnWndProc = DepthProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kClassName;
    return RegisterClassExW(&windowClass) != 0;
  }();
  return registered;
}

// It takes no focus from the main window.
void Open(const AppState& state) {
  if (!RegisterDepthClass()) return;
  const Box box = PlaceOf(MainWindow(state));
  constexpr DWORD kStyle = WS_POPUP | WS_CAPTION | WS_SYSMENU | WS_THICKFRAME;
  shown.window =
      CreateWindowExW(WS_EX_TOPMOST | WS_EX_TOOLWINDOW, kClassName, L"Depth", kStyle, box.x, box.y, box.width,
                      box.height, MainWindow(state), nullptr, GetModuleHandleW(nullptr), nullptr);
  if (shown.window != nullptr) ShowWindow(shown.window, SW_SHOWNOACTIVATE);
}

}  // namespace

void ShowDepthWindow(AppState& state, const DepthFigures* figures) {
  if (figures == nullptr) {
    if (shown.window != nullptr) DestroyWindow(shown.window);
    return;
  }
  const bool differs = !(shown.figures == *figures);
  shown.figures = *figures;
  if (shown.window == nullptr) {
    Open(state);
  } else if (differs) {
    InvalidateRect(shown.window, nullptr, FALSE);
  }
}

}  // namespace tw
