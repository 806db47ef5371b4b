#include "display/echogram_view_win32.h"

// Needs the types of windows.h.
#include <windowsx.h>

#include <algorithm>
#include <new>

#include "app/state/file_naming.h"
#include "base/shared_value.h"
#include "display/png_win32.h"
#include "display/readout_layer_win32.h"
#include "display/screenshot.h"
#include "display/view_painter_win32.h"
#include "display/zoom.h"
#include "gps/gps_worker.h"
#include "platform/clock.h"
#include "platform/debug_output.h"

namespace tw {
namespace {

constexpr wchar_t kClassName[] = L"KT710 Echoshow";

// What a view owns: nothing of the echo data, only its drawing objects.
struct View {
  ViewPainter painter;
  ReadOutLayer readOut;
  bool isTracked = false;  // the system tells when the cursor leaves
  uint32_t shownGpsUpdates = 0;
  bool manualShotRequested = false;
  AutomaticShots automaticShots{};
};

View* ViewOf(HWND window) {
  return reinterpret_cast<View*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

// Null until the main window has made its record.
AppState* StateOfParent(HWND window) {
  return reinterpret_cast<AppState*>(GetWindowLongPtrW(GetParent(window), GWLP_USERDATA));
}

DepthUnit UnitOf(const AppState& state) {
  return static_cast<DepthUnit>(state.options.depthUnit);
}

bool IsPainting(const AppState* state) {
  return state != nullptr && state->initialised != 0;
}

LRESULT OnCreate(HWND window) {
  View* const view = new (std::nothrow) View{};
  if (view == nullptr) return -1;
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(view));
  return 0;
}

void OnDestroyed(HWND window) {
  delete ViewOf(window);
  SetWindowLongPtrW(window, GWLP_USERDATA, 0);
}

// The position's text follows the fix, but not each sentence of it.
void RefreshPosition(AppState& state, View& view) {
  if (state.gpsThread == Handle::null) return;
  const uint32_t updates = LoadShared(globals.gpsUpdates);
  if (updates - view.shownGpsUpdates <= 1) return;
  view.shownGpsUpdates = updates;
  FormatPositionStatus(state);
}

// Without a word when it fails: the next paint is 100 ms away, and nobody asked for a message.
void SaveScreenshot(AppState& state, View& view, ShotKind kind) {
  const bool isDual = globals.dualMode != 0;
  const ShotFacts facts{.workingFolder = state.workingFolder,
                        .isDual = isDual,
                        .kind = kind,
                        .frequency_hz = DescribePanel(state, PanelPlace::single).frequency_hz,
                        .localTime = LocalNow()};
  wchar_t path[kPathSize];
  if (!NameScreenshot(path, facts, view.automaticShots)) return;
  if (SavePng(view.painter.Picture().Pixels(), path)) {
    TellScreenshot(state, path);
  } else {
    WriteDebugText(L"Screenshot not written\n");
  }
}

void ServeScreenshots(AppState& state, View& view) {
  if (view.manualShotRequested) SaveScreenshot(state, view, ShotKind::manual);
  view.manualShotRequested = false;
  if (ExchangeShared(globals.screenshotRequested, 0) == 0) return;
  SaveScreenshot(state, view, ShotKind::automatic);
  StoreShared(globals.autoCaptureRequested, 0);
}

void PaintView(HDC screen, AppState& state, View& view, const RECT& client) {
  if (LoadShared(globals.autoCaptureRequested) != 0) StoreShared(globals.screenshotRequested, 1);
  if (!view.painter.Paint(state, screen, client.right, client.bottom)) return;
  OffscreenPicture& picture = view.painter.Picture();
  const bool inShots = state.options.readOutInShots != 0;
  view.readOut.Draw(picture, view.painter.Panels(), UnitOf(state));
  BitBlt(screen, 0, 0, client.right, client.bottom, picture.Dc(), 0, 0, SRCCOPY);
  if (!inShots) view.readOut.Undo(picture);
  ServeScreenshots(state, view);
  if (inShots) view.readOut.Undo(picture);
  RefreshPosition(state, view);
}

// Copies those parts of the picture to the screen.
void Show(HDC screen, OffscreenPicture& picture, std::span<const Rect> rects) {
  for (const Rect& rect : rects) {
    BitBlt(screen, rect.left, rect.top, rect.Width(), rect.Height(), picture.Dc(), rect.left, rect.top,
           SRCCOPY);
  }
}

// The layer anew over the picture that is on the screen.
void RefreshReadOut(HWND window, AppState& state, View& view) {
  if (!IsPainting(&state) || view.painter.Panels().empty()) return;
  const HDC screen = GetDC(window);
  if (screen == nullptr) return;
  OffscreenPicture& picture = view.painter.Picture();
  Rect before[ReadOutLayer::kMostRects];
  const std::span<const Rect> changed = view.readOut.Changed();
  std::copy(changed.begin(), changed.end(), before);
  const std::span<const Rect> former(before, changed.size());
  view.readOut.Draw(picture, view.painter.Panels(), UnitOf(state));
  Show(screen, picture, former);
  Show(screen, picture, view.readOut.Changed());
  view.readOut.Undo(picture);
  ReleaseDC(window, screen);
}

void OnPaint(HWND window) {
  PAINTSTRUCT paint;
  const HDC screen = BeginPaint(window, &paint);
  AppState* const state = StateOfParent(window);
  View* const view = ViewOf(window);
  RECT client{};
  GetClientRect(window, &client);
  if (screen == nullptr) return;
  if (view != nullptr && IsPainting(state)) {
    PaintView(screen, *state, *view, client);
  } else {
    ::FillRect(screen, &client, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  }
  EndPaint(window, &paint);
}

}  // namespace

void ZoomTimeScale(AppState& state, WheelTurn turn) {
  if (globals.timestampTicked != 0 || globals.autoCaptureTicked != 0) return;
  state.timeScaleUpper = ZoomedTimeScale(state.timeScaleUpper, turn);
  if (globals.dualMode != 0) state.timeScaleLower = state.timeScaleUpper;
}

void ZoomRange(AppState& state, PanelPlace place, WheelTurn turn) {
  int32_t& range_mm = ChannelOf(state, RecordChannelOf(place)).displayRange_mm;
  range_mm = ZoomedRange(range_mm, DeviceRangeOf(ShownSettings(state), place), turn);
}

namespace {

// `at` is where the cursor stands on the screen.
void OnMouseWheel(HWND window, int delta, POINT at) {
  AppState* const state = StateOfParent(window);
  if (state == nullptr || delta == 0) return;
  const WheelTurn turn = delta > 0 ? WheelTurn::forward : WheelTurn::back;
  PanelPlace place = PanelPlace::single;
  if (globals.dualMode != 0) {
    RECT client{};
    GetClientRect(window, &client);
    ScreenToClient(window, &at);
    if (PtInRect(&client, at) == FALSE) return;
    place = at.y < client.bottom / 2 ? PanelPlace::upper : PanelPlace::lower;
  }
  if (GetAsyncKeyState(VK_SHIFT) < 0) {
    ZoomTimeScale(*state, turn);
  } else {
    ZoomRange(*state, place, turn);
  }
}

void OnMouseMove(HWND window, Point cursor) {
  if (GetFocus() != window) SetFocus(window);
  AppState* const state = StateOfParent(window);
  View* const view = ViewOf(window);
  if (state == nullptr || view == nullptr) return;
  if (!view->isTracked) {
    TRACKMOUSEEVENT track{sizeof track, TME_LEAVE, window, 0};
    view->isTracked = TrackMouseEvent(&track) != FALSE;
  }
  view->readOut.MoveTo(cursor);
  RefreshReadOut(window, *state, *view);
}

void OnMouseLeave(HWND window) {
  AppState* const state = StateOfParent(window);
  View* const view = ViewOf(window);
  if (state == nullptr || view == nullptr) return;
  view->isTracked = false;
  view->readOut.Leave();
  RefreshReadOut(window, *state, *view);
}

void OnCaptureLost(HWND window) {
  AppState* const state = StateOfParent(window);
  View* const view = ViewOf(window);
  if (state == nullptr || view == nullptr) return;
  view->readOut.EndMeasure();
  RefreshReadOut(window, *state, *view);
}

void OnLeftButton(HWND window, WPARAM keys, Point cursor) {
  AppState* const state = StateOfParent(window);
  View* const view = ViewOf(window);
  if (state == nullptr || view == nullptr) return;
  if ((keys & MK_CONTROL) != 0) return ToggleFullWindow(*state);
  view->readOut.MoveTo(cursor);
  if (view->readOut.BeginMeasure(view->painter.Panels())) SetCapture(window);
}

void OnRightButton(HWND window) {
  View* const view = ViewOf(window);
  if (view != nullptr) view->manualShotRequested = true;
  WriteDebugText(L"RightButtonDown\n");
}

LRESULT CALLBACK EchogramProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_CREATE:
      return OnCreate(window);
    case WM_NCDESTROY:
      OnDestroyed(window);
      return DefWindowProcW(window, message, wParam, lParam);
    case WM_ERASEBKGND:
      return 1;  // the picture covers all
    case WM_PAINT:
      OnPaint(window);
      return 0;
    case WM_MOUSEMOVE:
      OnMouseMove(window, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      return 0;
    case WM_MOUSELEAVE:
      OnMouseLeave(window);
      return 0;
    case WM_LBUTTONUP:
      if (GetCapture() == window) ReleaseCapture();
      return 0;
    case WM_CAPTURECHANGED:
      OnCaptureLost(window);
      return 0;
    case WM_MOUSEWHEEL:
      OnMouseWheel(window, GET_WHEEL_DELTA_WPARAM(wParam), {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      return 0;
    case WM_LBUTTONDOWN:
      OnLeftButton(window, wParam, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      return 0;
    case WM_RBUTTONDOWN:
      OnRightButton(window);
      return 0;
    default:
      return DefWindowProcW(window, message, wParam, lParam);
  }
}

}  // namespace

bool RegisterEchogramClass(HINSTANCE instance) {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = EchogramProcedure;
  windowClass.hInstance = instance;
  windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
  windowClass.lpszClassName = kClassName;
  return RegisterClassExW(&windowClass) != 0;
}

}  // namespace tw
