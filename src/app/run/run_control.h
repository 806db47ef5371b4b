// Run control: what the main window's buttons and timers do with the device, the GPS receiver and the
// workers. GUI thread. Start blocks for some seconds while it talks to the device; no function here pumps
// messages except while a message box is shown. What was clicked and typed meanwhile is thrown away.
//
// The program is idle (no device port open) or running (device port open, acquisition worker started).
// Whatever fails leaves it idle, with the ports and record files closed and "Start" enabled.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// "Start": ends a playback, connects, identifies the device, opens record files, starts device and workers.
// Without effect while running.
void StartRun(AppState& state);

// "Stop": ends the workers (waits 3 s at most), closes ports and record files. Sends nothing to the device,
// which goes on streaming. Ends a playback too. Harmless while idle.
void StopRun(AppState& state);

// "Apply": interrupts the run, sends what differs from the applied settings, reads everything back, opens
// fresh record files and goes on. Without a device it only says so.
void ApplySettings(AppState& state);

// "Default Setting": the same with the device's own defaults, after a question.
void RestoreDefaults(AppState& state);

// Tells the device and the port a new speed of the device list, and goes on with the run.
void ChangeSpeed(AppState& state, int32_t speed_bps);

// Range or output was chosen anew: a running device gets it by itself a second later.
void NoteChoice(AppState& state);

// "Record Data" was ticked or unticked.
void ToggleRecording(AppState& state);

// One of the main window's timers has fired. Without effect before the start-up is over.
void HandleTimer(AppState& state, int timer);

}  // namespace tw
