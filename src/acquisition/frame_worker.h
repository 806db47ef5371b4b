// The acquisition workers of the binary echo modes, 100 and 101: the device's blocks become "TR57" frames in
// ring and record file. A dual device of the first family has a file for each channel.
#pragma once

#include "acquisition/live_worker.h"

namespace tw {

extern const LiveMode kFirstFamilyBinaryEcho;
extern const LiveMode kSecondFamilyBinaryEcho;

// Thread bodies; `state` is the state record.
void BinaryEchoWorker(void* state);
void SecondFamilyBinaryEchoWorker(void* state);

}  // namespace tw
