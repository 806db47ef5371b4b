// The acquisition workers of the echo text modes: 2 and 4 of the first device family; 2, 4, 5 and 6 of the
// others.
#pragma once

#include "acquisition/live_worker.h"

namespace tw {

extern const LiveMode kFirstFamilyEchoText;
extern const LiveMode kSecondFamilyEchoText;

// Thread bodies; `state` is the state record.
void EchoTextWorker(void* state);
void SecondFamilyEchoTextWorker(void* state);

}  // namespace tw
