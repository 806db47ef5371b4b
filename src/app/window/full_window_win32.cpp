#include "app/window/full_window_win32.h"

#include "app/window/control_ids.h"
#include "app/window/view_placement_win32.h"
#include "app/window/window_handles_win32.h"
#include "display/echogram_view_win32.h"

namespace tw {
namespace {

// A control's own user data says whether it stays hidden in the normal view.
constexpr LONG_PTR kHidden = 1;

bool IsPermanent(const AppState& state, HWND child) {
  return child == ToWindow(state.statusBar) || child == ToWindow(state.sliderWindow) ||
         child == Control(state, ID_ECHOGRAM) || child == Control(state, ID_PLAYBACK_BAR);
}

template <typename Action>
void ForEachControl(const AppState& state, Action action) {
  const HWND mainWindow = MainWindow(state);
  for (HWND child = GetWindow(mainWindow, GW_CHILD); child != nullptr;
       child = GetWindow(child, GW_HWNDNEXT)) {
    if (!IsPermanent(state, child)) action(child);
  }
}

void Show(HWND control, bool visible) {
  ShowWindow(control, visible ? SW_SHOWNA : SW_HIDE);
}

}  // namespace

void RememberHiddenControls(AppState& state) {
  ForEachControl(state, [](HWND control) {
    const bool visible = (GetWindowLongW(control, GWL_STYLE) & WS_VISIBLE) != 0;
    if (!visible) SetWindowLongPtrW(control, GWLP_USERDATA, kHidden);
  });
}

void WantControlVisible(AppState& state, HWND control, bool visible) {
  SetWindowLongPtrW(control, GWLP_USERDATA, visible ? 0 : kHidden);
  Show(control, visible && state.fullWindow == 0);
}

void ToggleFullWindow(AppState& state) {
  state.fullWindow = state.fullWindow == 0 ? 1 : 0;
  const bool normal = state.fullWindow == 0;
  ForEachControl(state, [normal](HWND control) {
    Show(control, normal && GetWindowLongPtrW(control, GWLP_USERDATA) != kHidden);
  });
  PlaceViews(state);
}

}  // namespace tw
