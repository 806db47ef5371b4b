// The machine's own saving of power. GUI thread: what is asked for holds as long as its thread lives.
#pragma once

namespace tw {

// Keeps the system from sleeping by itself, or lets it again. A lid that is closed and a power button are
// obeyed all the same. Without effect where the system leaves this to a service.
void KeepSystemAwake(bool awake);

}  // namespace tw
