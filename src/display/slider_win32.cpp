// The playback slider's window; the main window shows it during a playback. It may be a child of any window
// whose GWLP_USERDATA holds the state record.
#include "display/echogram_view_win32.h"

// Needs the types of windows.h.
#include <windowsx.h>

#include <new>

#include "app/state/slider_messages.h"
#include "display/drawing_win32.h"
#include "display/slider_state.h"

namespace tw {
namespace {

constexpr wchar_t kClassName[] = L"EchoSliderbar class";

struct Slider {
  SliderState state;
  OffscreenPicture picture;
};

Slider* SliderOf(HWND window) {
  return reinterpret_cast<Slider*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

// Null until the main window has made its record.
AppState* StateOfParent(HWND window) {
  return reinterpret_cast<AppState*>(GetWindowLongPtrW(GetParent(window), GWLP_USERDATA));
}

void Repaint(HWND window) {
  InvalidateRect(window, nullptr, FALSE);
}

bool OnCreate(HWND window) {
  Slider* const slider = new (std::nothrow) Slider{};
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(slider));
  return slider != nullptr;
}

void OnPaint(HWND window, Slider& slider) {
  PAINTSTRUCT paint;
  const HDC screen = BeginPaint(window, &paint);
  RECT client{};
  GetClientRect(window, &client);
  if (screen != nullptr && slider.picture.Resize(screen, client.right, client.bottom)) {
    DrawSlider(slider.state, slider.picture.Pixels());
    BitBlt(screen, 0, 0, client.right, client.bottom, slider.picture.Dc(), 0, 0, SRCCOPY);
  }
  EndPaint(window, &paint);
}

void OnSize(HWND window, Slider& slider, int32_t width, int32_t height) {
  const HDC screen = GetDC(window);
  slider.state.Resize({width, height, GetDeviceCaps(screen, LOGPIXELSX)});
  ReleaseDC(window, screen);
  Repaint(window);
}

// The plain number is looked for first: it is no pointer.
bool TakeNews(SliderState& slider, WPARAM parameter, LPARAM position) {
  if (parameter == kProgressSpan) return slider.TakePosition(static_cast<uint64_t>(position));
  const auto progress = ReceiveProgress(parameter);
  return progress != nullptr && slider.TakeProgress(*progress);
}

void Seek(AppState* state, const std::optional<uint64_t>& position) {
  if (position && state != nullptr) RequestSeek(state->seekRequest, *position);
}

// With the playback bar its keys count while the slider has the focus.
void OnPress(HWND window, Slider& slider, Point cursor) {
  AppState* const state = StateOfParent(window);
  const bool bar = state != nullptr && state->options.playbackBar != 0;
  if (bar) SetFocus(window);
  slider.state.Follow(bar);
  Seek(state, slider.state.Press(cursor));
  if (slider.state.IsDragging()) SetCapture(window);
}

void OnRelease(HWND window, Slider& slider) {
  slider.state.Release();
  if (GetCapture() == window) ReleaseCapture();
}

void OnMove(HWND window, Slider& slider, Point cursor, bool isButtonHeld) {
  const std::optional<uint64_t> position = slider.state.Move(cursor, isButtonHeld);
  Seek(StateOfParent(window), position);
  TRACKMOUSEEVENT leaving{sizeof leaving, TME_LEAVE, window, 0};
  TrackMouseEvent(&leaving);
  Repaint(window);
}

LRESULT CALLBACK SliderProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_CREATE) return OnCreate(window) ? 0 : -1;
  Slider* const slider = SliderOf(window);
  if (slider == nullptr) return DefWindowProcW(window, message, wParam, lParam);
  const Point cursor{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
  switch (message) {
    case WM_NCDESTROY:
      SetWindowLongPtrW(window, GWLP_USERDATA, 0);
      delete slider;
      return DefWindowProcW(window, message, wParam, lParam);
    case WM_ERASEBKGND:
      return 1;  // the picture covers all
    case WM_PAINT:
      OnPaint(window, *slider);
      return 0;
    case WM_SIZE:
      OnSize(window, *slider, LOWORD(lParam), HIWORD(lParam));
      return 0;
    case WM_USER:
      if (TakeNews(slider->state, wParam, lParam)) Repaint(window);
      return 0;
    case WM_LBUTTONDOWN:
      OnPress(window, *slider, cursor);
      return 0;
    case WM_LBUTTONUP:
      OnRelease(window, *slider);
      return 0;
    case WM_CAPTURECHANGED:
      slider->state.Release();
      return 0;
    case WM_MOUSEMOVE:
      OnMove(window, *slider, cursor, (wParam & MK_LBUTTON) != 0);
      return 0;
    case WM_MOUSELEAVE:
      slider->state.Leave();
      Repaint(window);
      return 0;
    default:
      return DefWindowProcW(window, message, wParam, lParam);
  }
}

}  // namespace

bool RegisterSliderClass(HINSTANCE instance) {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = SliderProcedure;
  windowClass.hInstance = instance;
  windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
  windowClass.lpszClassName = kClassName;
  return RegisterClassExW(&windowClass) != 0;
}

}  // namespace tw
