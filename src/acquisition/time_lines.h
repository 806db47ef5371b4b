// Lines across the echogram at moments of a run: where it begins or goes on, and what the operator marks. The
// list of a channel belongs to the process; its lock guards it between the worker and the view.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"

namespace tw {

// Puts the line at the head of the list, which keeps the newest kMaxTimeLines. Any thread.
void AddTimeLine(TimeLineList& list, const TimeLine& line);

void ClearTimeLines(TimeLineList& list);

}  // namespace tw
