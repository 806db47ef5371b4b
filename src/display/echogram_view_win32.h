// The windows of the display: the echogram view and the playback slider below it, children of the main
// window, whose GWLP_USERDATA holds the state record. GUI thread.
//
// The view never repaints by itself: it paints when the main window invalidates it, and nothing before the
// state record says that start-up has finished.
#pragma once

#include <windows.h>

#include "app/state/app_state.h"

namespace tw {

// Classes "KT710 Echoshow" and "EchoSliderbar class". False when the system refuses.
[[nodiscard]] bool RegisterEchogramClass(HINSTANCE instance);
[[nodiscard]] bool RegisterSliderClass(HINSTANCE instance);

// The main window implements this: hides its controls and gives their place to the echogram, or undoes that.
// The view calls it for Ctrl and the left button.
void ToggleFullWindow(AppState& state);

}  // namespace tw
