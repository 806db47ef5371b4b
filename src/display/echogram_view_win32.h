// The windows of the display: the echogram view and the playback slider below it, children of the main
// window, whose GWLP_USERDATA holds the state record. GUI thread.
//
// The view never repaints by itself: it paints when the main window invalidates it, and nothing before the
// state record says that start-up has finished.
#pragma once

#include <windows.h>

#include "app/state/app_state.h"
#include "display/panel.h"
#include "display/zoom.h"

namespace tw {

// Classes "KT710 Echoshow" and "EchoSliderbar class". False when the system refuses.
[[nodiscard]] bool RegisterEchogramClass(HINSTANCE instance);
[[nodiscard]] bool RegisterSliderClass(HINSTANCE instance);

// The main window implements this: hides its controls and gives their place to the echogram, or undoes that.
// The view calls it for Ctrl and the left button.
void ToggleFullWindow(AppState& state);

// The main window implements this too: a picture of the view was written.
void TellScreenshot(AppState& state, const wchar_t* path);

// What a notch of the wheel does over the view: another time scale, unless time marks or pictures need
// theirs, or another depth range of a panel.
void ZoomTimeScale(AppState& state, WheelTurn turn);
void ZoomRange(AppState& state, PanelPlace place, WheelTurn turn);

}  // namespace tw
