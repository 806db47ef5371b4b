// Start-up and shutdown, as far as they need no window of their own. GUI thread; the main window calls these
// in the order in which they stand here.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// The state record, zero-filled, for the life of the process; null when there is no memory.
[[nodiscard]] AppState* AllocateState();

// Port and speed selectors with the stored choices in them.
void FillCommunicationControls(AppState& state);

// Sets the timers that run all the time.
void StartTimers(AppState& state);

// Start-up values of the settings and the display; marks the files and the device port as closed. The GPS
// port stays the null handle.
void SetStartUpValues(AppState& state);

// The events that steer playback and recording. Without them the process ends.
void MakeRunEvents(AppState& state);

// Both ping rings, zero-filled and not resident. When there is no memory: the system's text, then the end of
// the process with exit code 1.
void AllocateRings(AppState& state);

// The locks, and the events that end workers.
void MakeLocks(AppState& state);

// Working folder and recording flag, as stored.
void LoadRecordingChoices(AppState& state);

// All of the above from FillCommunicationControls on, in its order, with the texts of the idle
// program and the palette between them. The
// status bar exists; `initialised` is set by the caller when the window is shown.
void StartUp(AppState& state);

// Asks for a last screenshot and closes the record file.
void BeginShutDown(AppState& state);

// After the window has left full-screen: stores its position.
void FinishShutDown(AppState& state);

}  // namespace tw
