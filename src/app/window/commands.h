// What the main window's buttons, boxes and timers do with a run: they read what is chosen, ask what has to
// be asked, carry out the steps of run control, and tell what failed. GUI thread. Start blocks for some
// seconds while it talks to the device; no function here pumps messages except while a message box is shown.
// What was clicked and typed meanwhile is thrown away.
//
// Whatever fails leaves the program idle, with the ports and record files closed and "Start" enabled.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// "Start": ends a playback, connects, identifies the device, opens record files, starts device and workers.
// Without effect while running.
void StartRun(AppState& state);

// A start without a hand on it, with the option for it: once the ports that are selected are there, and every
// 10 s until one succeeds or the operator has started or stopped something. A failure is told in the status
// bar alone.
void StartByItself(AppState& state);

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

// "Options" was left with "OK": stores what was entered.
void TakeOptions(AppState& state, const Options& entered);

// One of the main window's timers has fired. Without effect before the start-up is over.
void HandleTimer(AppState& state, int timer);

// Ends a playback or conversion, and gives the echogram the place of the slider.
void EndFileWorkers(AppState& state);

// The program is to be closed: false when the operator, asked because it records, wants it to go on. With the
// option for it; not asked at the end of the system's session.
[[nodiscard]] bool MayClose(AppState& state);

// Empties what workers tell in the status bar. Posted, so that it comes behind what they have posted.
void ClearLiveTexts(AppState& state);

}  // namespace tw
