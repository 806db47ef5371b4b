// Run control: the steps that start, change and end a run of the device, the GPS receiver and the workers.
// No window below here: choices come in as values, what fails goes out as a fault, and TellRunChanged says on
// the way what has changed. GUI thread, or the one thread of a program without a window. A step blocks for
// some seconds while it talks to the device.
//
// The program is idle (no device port open) or running (device port open, acquisition worker started). A
// fault leaves ports and files as they are, so that the operator is told before or after they are closed;
// CloseAfter closes them.
#pragma once

#include "app/run/elapsed_log.h"
#include "app/run/run_choices.h"
#include "app/run/run_fault.h"
#include "app/state/app_state.h"

namespace tw {

// The ranges of the channels that the two panels show; the lower one is 0 unless both frequencies run.
struct PanelRanges {
  int32_t upper_mm = 0;
  int32_t lower_mm = 0;
};

// As they are with the settings in force.
[[nodiscard]] PanelRanges RangesInForce(const AppState& state);

// From idle: connects, identifies the device, opens record files, starts device and workers. No file is being
// played or converted any more.
RunResult BeginRun(AppState& state, const RunChoices& choices, const ElapsedLog& log);

// Ends the workers (waits 3 s at most), closes ports and record files. Sends nothing to the device, which
// goes on streaming. Harmless while idle.
void EndRun(AppState& state);

// Something is open or alive that EndRun has to close, which may take its time.
[[nodiscard]] bool HoldsRun(AppState& state);

// Ends the acquisition worker, as long as that takes, and brings the device to its prompt: what the next
// three steps begin with.
RunResult InterruptRun(AppState& state);

// Sends what differs from the applied settings, and reads everything back. After `dualOldRefused` the run can
// be resumed.
RunResult SendSettings(AppState& state, const RunChoices& choices);

// The same with the device's own defaults; choices that wait are dropped.
RunResult SendDefaults(AppState& state);

// Tells the device and the port a new speed and goes on with the run.
RunResult SwitchSpeed(AppState& state, int32_t speed_bps, const RunChoices& choices);

// Goes on with the settings that were read back: fresh record files, device, workers. A panel whose range is
// still the one before stays zoomed as the operator left it.
RunResult ResumeRun(AppState& state, const RunChoices& choices, PanelRanges before);

// Closes what a fault has left open; the run of a fault in mid-run is ended.
void CloseAfter(AppState& state, RunFault fault, const ElapsedLog* log = nullptr);

// Recording from now on or no more; a running device gets fresh record files at once.
void SwitchRecording(AppState& state, bool record);

}  // namespace tw
