// Time: a millisecond clock for intervals, the wall clock, and sleep. Any thread.
#pragma once

#include <cstdint>

#include "base/calendar.h"

namespace tw {

inline constexpr uint32_t kWaitForever = 0xFFFFFFFFu;

// Milliseconds since some moment before the program began; wraps after 49.7 days, so only 32-bit differences
// mean anything.
[[nodiscard]] uint32_t MillisecondClock();

// The wall clock, UTC, in milliseconds since 1970-01-01 00:00:00.
[[nodiscard]] int64_t UnixMilliseconds();

// The wall clock as a calendar moment.
[[nodiscard]] CalendarTime UtcNow();
[[nodiscard]] CalendarTime LocalNow();

// What local clocks show at a moment in seconds since 1970-01-01 00:00:00, by the rules of that date.
// For the years 1970 to 9999.
[[nodiscard]] CalendarTime LocalFromUnixSeconds(int64_t seconds);

void SleepMilliseconds(uint32_t duration_ms);

// Asks for (and gives back) the system's finest timer period; without effect where there is none.
void RaiseTimerResolution();
void RestoreTimerResolution();

}  // namespace tw
