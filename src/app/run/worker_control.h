// Starting and ending the worker threads. GUI thread.
#pragma once

#include <cstdint>

#include "app/run/run_fault.h"
#include "app/state/app_state.h"

namespace tw {

// Starts the device and the worker for its stream: replaces a mode that the family does not have by 3, sends
// the start sequence, starts the acquisition thread and, when a GPS port is open and no GPS worker runs, the
// GPS thread. `none`, or which thread the system does not give.
[[nodiscard]] RunFault StartWorkers(AppState& state);

// Makes the number of each worker that was started before stale; once a Start and once a Stop. Not between
// the acquisition workers of one run, because the GPS worker stays for the whole of it.
void RaiseRunNumber(AppState& state);

// Asks the acquisition worker to end and waits for it, at most `limit_ms` (kWaitForever: as long as it
// takes), then forgets it. RaiseRunNumber makes one that is still alive afterwards harmless.
void EndAcquisition(AppState& state, uint32_t limit_ms);

}  // namespace tw
