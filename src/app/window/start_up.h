// Start-up and shutdown, as far as they need no window of their own. GUI thread; the main window calls these
// in the order in which they stand here.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// Port and speed selectors with the stored choices in them.
void FillCommunicationControls(AppState& state);

// Sets the timers that run all the time.
void StartTimers(AppState& state);

// Working folder and recording flag, as stored.
void LoadRecordingChoices(AppState& state);

// The selectors, the timers, the record (see app/run/record_set_up.h), the palette, the texts of the idle
// program and the stored choices, in the order that they need. Without memory, events or locks: the system's
// text, then the end of the process with exit code 1. The status bar exists; `initialised` is set by the
// caller when the window is shown.
void StartUp(AppState& state);

// Asks for a last screenshot and closes the record file.
void BeginShutDown(AppState& state);

// After the window has left full-screen: stores its position.
void FinishShutDown(AppState& state);

}  // namespace tw
