// Run control: what the main window's buttons and timers do with the device, the GPS receiver and the
// workers. GUI thread. Start blocks for some seconds while it talks to the device; no function here pumps
// messages except while a message box is shown.
//
// The program is idle (no device port open) or running (device port open, acquisition worker started).
// Whatever fails leaves it idle, with the ports and record files closed and "Start" enabled.
#pragma once

#include "app/app_state.h"

namespace tw {

// "Start": ends a playback, connects, identifies the device, opens record files, starts device and workers.
// Without effect while running.
void StartRun(AppState& state);

// "Stop": ends the workers (waits 3 s at most), closes ports and record files. Sends nothing to the device,
// which goes on streaming. Ends a playback too. Harmless while idle.
void StopRun(AppState& state);

// "Record Data" was ticked or unticked.
void ToggleRecording(AppState& state);

// One of the main window's timers has fired. Without effect before the start-up is over.
void HandleTimer(AppState& state, int timer);

}  // namespace tw
