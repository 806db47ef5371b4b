// The acquisition workers of the binary echo modes, 100 and 101: the device's blocks become "TR57" frames in
// ring and record file.
#pragma once

#include "acquisition/live_worker.h"

namespace tw {

extern const LiveMode kBinaryEcho;

// Thread body; `state` is the state record.
void BinaryEchoWorker(void* state);

}  // namespace tw
