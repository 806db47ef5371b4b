// The choices of the controls that change nothing but what the echogram shows. GUI thread.
#pragma once

#include "app/app_state.h"

namespace tw {

// "Timestamp" was ticked or unticked. Ticked, it sets both time scales back.
void ToggleTimestamp(AppState& state);

// "Auto Capture" was ticked: a screenshot each 135 s from now on; or unticked: one last screenshot.
void ToggleAutoCapture(AppState& state);

// Lets the timer of live screenshots run exactly while "Auto Capture" is ticked and a live worker runs; after
// a start and a stop.
void RefreshCaptureTimer(AppState& state);

}  // namespace tw
