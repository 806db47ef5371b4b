// Depth for other programs, as the options want it. GUI thread.
#pragma once

#include "app/state/app_state.h"
#include "outputs/output_options.h"

namespace tw {

// Bounded. Pure.
[[nodiscard]] OutputOptions OutputsOf(const Options& options);

// Begins with the options as they are now, in the place of those before. With all outputs off no worker tells
// anything of its pings.
void RestartOutputs(AppState& state);

// At the end of the program.
void StopOutputs(AppState& state);

}  // namespace tw
