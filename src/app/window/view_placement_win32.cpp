#include "app/window/view_placement_win32.h"

// Needs the types of windows.h.
#include <commctrl.h>

#include <iterator>

#include "app/settings/persistent_settings.h"
#include "app/window/control_ids.h"
#include "app/window/playback_bar_win32.h"
#include "app/window/window_handles_win32.h"
#include "display/scaling.h"

namespace tw {
namespace {

int32_t ReadScreenDpi() {
  const HDC screen = GetDC(nullptr);
  const int dpi = GetDeviceCaps(screen, LOGPIXELSX);
  ReleaseDC(nullptr, screen);
  return dpi;
}

Box BoxOf(const RECT& rect) {
  return {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top};
}

void Place(HWND window, const Box& box) {
  if (window != nullptr) MoveWindow(window, box.x, box.y, box.width, box.height, TRUE);
}

}  // namespace

int32_t ScreenDpi() {
  static const int32_t dpi = ReadScreenDpi();
  return dpi;
}

Box WorkAreaOf(HWND window) {
  MONITORINFO monitor{};
  monitor.cbSize = sizeof(monitor);
  if (GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor) == FALSE) {
    SystemParametersInfoW(SPI_GETWORKAREA, 0, &monitor.rcWork, 0);  // the first monitor's
  }
  return BoxOf(monitor.rcWork);
}

void FitIntoWorkArea(HWND window) {
  RECT place{};
  GetWindowRect(window, &place);
  Place(window, WithinWorkArea(BoxOf(place), WorkAreaOf(window)));
}

HWND CreateStatusBar(HWND mainWindow) {
  const HWND bar = CreateWindowExW(0, STATUSCLASSNAMEW, L"", WS_CHILD | WS_VISIBLE | SBARS_SIZEGRIP, 0, 0, 0,
                                   0, mainWindow, nullptr, GetModuleHandleW(nullptr), nullptr);
  constexpr int kParts = static_cast<int>(std::size(kStatusEdges)) + 1;
  int edges[kParts];
  for (int i = 0; i + 1 < kParts; ++i) edges[i] = ScalePixels(kStatusEdges[i], ScreenDpi());
  edges[kParts - 1] = -1;  // up to the window's end
  if (bar != nullptr) SendMessageW(bar, SB_SETPARTS, kParts, reinterpret_cast<LPARAM>(edges));
  return bar;
}

void PlaceViews(AppState& state) {
  RECT client{};
  GetClientRect(MainWindow(state), &client);
  const bool playback = state.playbackActive != 0;
  const bool bar = playback && state.options.playbackBar != 0;
  const WindowLayout layout{client.right, client.bottom, state.fullWindow != 0, playback, ScreenDpi(), bar};
  const HWND slider = ToWindow(state.sliderWindow);

  if (state.statusBar != Handle::null) SendMessageW(ToWindow(state.statusBar), WM_SIZE, 0, 0);
  Place(Control(state, ID_ECHOGRAM), EchogramBox(layout));
  if (playback) Place(slider, SliderBox(layout));
  ShowPlaybackBar(state, PlaybackBarBox(layout), bar);
  ShowWindow(slider, playback ? SW_SHOWNA : SW_HIDE);
  globals.sliderQuarterWidth = client.right / 4;
}

void KeepWindowPlacement(AppState& state) {
  const HWND window = MainWindow(state);
  if (state.initialised == 0 || state.fullScreen != 0 || IsIconic(window) != FALSE) return;
  RECT place{};
  GetWindowRect(window, &place);
  state.windowPlacement = {static_cast<uint32_t>(GetWindowLongW(window, GWL_STYLE)),
                           static_cast<uint32_t>(GetWindowLongW(window, GWL_EXSTYLE)),
                           state.fullScreen,
                           IsZoomed(window) != FALSE ? 1 : 0,
                           place.left,
                           place.top,
                           place.right,
                           place.bottom};
  SaveWindowPlacement(state.windowPlacement);
}

void LeaveFullScreen(AppState& state) {
  if (state.fullScreen == 0) return;
  const HWND window = MainWindow(state);
  const WindowPlacement& old = state.windowPlacement;
  SetWindowLongW(window, GWL_STYLE, static_cast<LONG>(old.style));
  SetWindowLongW(window, GWL_EXSTYLE, static_cast<LONG>(old.extendedStyle));
  SetWindowPos(window, nullptr, old.left, old.top, old.right - old.left, old.bottom - old.top,
               SWP_NOZORDER | SWP_NOACTIVATE | SWP_FRAMECHANGED);
  if (old.maximised != 0) ShowWindow(window, SW_MAXIMIZE);
  state.fullScreen = 0;
}

}  // namespace tw
