// How a run goes on after its link was lost: the worker stays, with its rings and record files, and takes the
// stream up again when the device is back. Acquisition worker only.
//
// The port of a run that is away is the null handle: the run still counts as running, and who stops it finds
// nothing to close.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"

namespace tw {

struct LiveStart;

// What the return asks of the worker that it belongs to.
class AwayWorker {
 public:
  virtual ~AwayWorker() = default;

  // The run is to end, or has ended already. Asked at least every 200 ms; shows on the way that time passes.
  [[nodiscard]] virtual bool GivenUp() = 0;

  // Reads from the port for 2 s at most. True: a whole ping came, and with `identity` not null one that tells
  // this identity; the worker has it and reads on from this port.
  [[nodiscard]] virtual bool Listen(Handle port, const char* identity) = 0;
};

// What run control does for it, on the worker's thread.
struct LinkRescue {
  // The port of the run, opened anew; Handle::invalid: it is not there. `attempt` counts from 0.
  Handle (*open)(AppState& state, const LiveStart& start, uint32_t attempt);

  // That attempt's port is at the run's own speed: who streams there may still have the run's settings.
  bool (*isAtSpeedOfRun)(uint32_t attempt);

  // Brings the device behind the open port to stream as the run wants it. False: it does not answer (which
  // the record's `linkAway` tells), is another device, or the worker has given up.
  bool (*restart)(AppState& state, const LiveStart& start, Handle port, uint32_t attempt, AwayWorker& worker);
};

// Why a run is away; shown in the status bar.
enum class AwayFor : int32_t { nothing, silence, port, answer, otherDevice };

// Tells it, unless the run is over: a call of the system may have outlasted it.
void NoteAway(AppState& state, const LiveStart& start, AwayFor reason);

// Waits for the device: listens on a port that is only silent, then opens it anew every 2 s, or at once after
// `linkRetry` was signalled. Returns the port that streams again, which is the run's by then; Handle::invalid
// when the worker has given up. `failed`: the port is dead, not silent.
[[nodiscard]] Handle AwaitReturn(AppState& state, const LiveStart& start, bool failed, AwayWorker& worker);

}  // namespace tw
