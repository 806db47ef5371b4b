// The time marks of one channel: a numbered text per ping, drawn across the echogram while "Timestamp" is
// ticked. The list belongs to the process; its lock guards it between the worker and the view.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"

namespace tw {

inline constexpr uint32_t kSingleMarkPeriod_ms = 30'000;  // and of all that is played
inline constexpr uint32_t kDualMarkPeriod_ms = 15'000;    // of each channel of a live dual run

struct MarkedPing {
  uint32_t time_s;   // since 1970-01-01 00:00:00 UTC
  int64_t ringTime;  // as StorePing has published it
};

// How many pings lie between two marks: the period over the interval, truncated; 0 for an interval of 0.
[[nodiscard]] int32_t MarkInterval(uint32_t period_ms, uint32_t pingInterval_ms);

void ClearMarks(MarkList& marks);

// Counts a ping of a run: when `interval_pings` have come since the last mark the number rises. The ping's
// text goes to the head of the list, which keeps the newest 1,490.
void AddMark(MarkList& marks, int32_t interval_pings, const MarkedPing& ping);

// The same of a played ping, `passed_ms` of recorded time behind the one before: the number rises when 30 s
// have passed since the last mark.
void AddPlayedMark(MarkList& marks, int64_t passed_ms, const MarkedPing& ping);

}  // namespace tw
