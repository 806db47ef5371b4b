// The operator's marks beside a recording: what the logs of events in its folder tell. Any thread.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "app/state/event_marks.h"

namespace tw {

inline constexpr size_t kMostMarks = 10'000;

// The marks of events_old.csv and events.csv in the recording's folder, in order of time: of all recordings
// of that folder, so that who shows them goes by their time. Empty where there is no log. Of a log, the first
// 20 MB are read; what is no line of a mark is left out, and so are marks beyond the first kMostMarks.
[[nodiscard]] std::vector<EventMark> ReadMarksBeside(const std::wstring& recording);

}  // namespace tw
