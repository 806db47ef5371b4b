// The acquisition worker of the echo text modes of the first device family (modes 2 and 4).
#pragma once

#include "acquisition/live_worker.h"

namespace tw {

extern const LiveMode kFirstFamilyEchoText;

// Thread body; `state` is the state record.
void EchoTextWorker(void* state);

}  // namespace tw
