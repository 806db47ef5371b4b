// The choices of the controls that change nothing but what the echogram shows. GUI thread.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// "Timestamp" was ticked or unticked. Ticked, it sets both time scales back.
void ToggleTimestamp(AppState& state);

// "Auto Capture" was ticked: a screenshot each 135 s from now on, in a live dual run each 67 s; or unticked:
// one last screenshot.
void ToggleAutoCapture(AppState& state);

// Lets the timer of live screenshots run exactly while "Auto Capture" is ticked and a live worker runs; after
// a start, a stop and a run that goes on. A timer that runs with the right period is left alone, so that what
// interrupts a run leaves no gap between two pictures.
void RefreshCaptureTimer(AppState& state);

}  // namespace tw
