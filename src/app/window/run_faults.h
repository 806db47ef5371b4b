// How the faults of run control are told: one row each. GUI thread.
#pragma once

#include "app/run/run_control.h"

namespace tw {

// "Echosounder is not connected". True when a device port is open, and its run is not waiting for the device.
[[nodiscard]] bool IsConnected(AppState& state);

// Tells the operator in a box and closes what the fault leaves open, in the order that is the fault's. The
// program is idle afterwards, except after `dualOldRefused`; without the acquisition worker's thread the
// process is over. `log` is that of a Start.
void TellFault(AppState& state, RunResult result, const ElapsedLog* log = nullptr);

// The same in the status bar, without a box.
void TellFaultQuietly(AppState& state, RunResult result, const ElapsedLog* log);

// "Unable to run working thread", and the end of the process.
[[noreturn]] void EndWithoutWorker(AppState& state);

}  // namespace tw
