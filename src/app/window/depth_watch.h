// What the operator reads and hears of the depth: the figures in their window, the alarm. GUI thread.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"

namespace tw {

// To be called with each repaint, with the millisecond clock's time.
void WatchDepth(AppState& state, uint32_t now_ms);

}  // namespace tw
