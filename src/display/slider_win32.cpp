// The playback slider: an empty bar until a file is played; the main window shows it during a playback.
#include "display/echogram_view_win32.h"

namespace tw {
namespace {

constexpr wchar_t kClassName[] = L"EchoSliderbar class";
constexpr COLORREF kBackground = RGB(0x3E, 0x3E, 0x42);

void OnPaint(HWND window) {
  PAINTSTRUCT paint;
  const HDC screen = BeginPaint(window, &paint);
  if (screen != nullptr) {
    SetDCBrushColor(screen, kBackground);
    ::FillRect(screen, &paint.rcPaint, static_cast<HBRUSH>(GetStockObject(DC_BRUSH)));
  }
  EndPaint(window, &paint);
}

LRESULT CALLBACK SliderProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_ERASEBKGND:
      return 1;
    case WM_PAINT:
      OnPaint(window);
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
