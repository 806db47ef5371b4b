// A recording that goes on in a new file, by the clock or by its size, where the option says so. GUI thread.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// How many periods of the option the local clock has seen: files are split when a new one begins, each full
// hour where the period is one. 0 without the option.
[[nodiscard]] int64_t SplitPeriodNow(const AppState& state);

// To be called once a second of a run.
void SplitWhenDue(AppState& state);

}  // namespace tw
