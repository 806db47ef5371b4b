// The live acquisition worker: one loop for every output mode, from the bytes of the device port to rings,
// record files, time marks and status texts. It is the only writer of rings while it runs, and the only one
// who records. What the device streams is a StreamForm; the loop itself knows no format.
#pragma once

#include <cstdint>

#include "acquisition/link_return.h"
#include "acquisition/stream_form.h"
#include "app/state/app_state.h"

namespace tw {

// Everything that a worker has from the GUI thread, which goes on with choices of its own.
struct LiveStart {
  const StreamForm* form;   // of what the device streams
  DeviceSettings settings;  // as the device has them
  DeviceFamily deviceFamily;
  bool dual;
  Handle port;
  uint32_t runNumber;
  const LinkRescue* rescue = nullptr;  // null: a lost link is flagged and ends the run
  uint32_t silence_ms = 0;             // with it: without a ping for so long, and three intervals, it is lost
};

// Lays the values out for the worker that is started next, which takes them as its first step. What an
// earlier worker did not come to take is freed. False without memory. GUI thread.
[[nodiscard]] bool HandOver(AppState& state, const LiveStart& start);

// The body of an acquisition thread; `context` is the state record. Runs until stopEvent is signalled, the
// device port fails, or the run number has become stale; in the first two cases it closes the record files at
// its end. With a rescue a port that fails or is silent does not end it: it stays until the device is back. A
// worker for which nothing was laid out, and one that hung in a call of the system until its number was
// stale, touches nothing and posts nothing any more.
void AcquisitionWorker(void* context);

}  // namespace tw
