// The system's own clocks, and waits by them. Any thread.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

#include "base/calendar.h"

namespace tw::posix {

// Microseconds since some moment; goes on evenly.
[[nodiscard]] int64_t SteadyNow_us();

// Milliseconds since 1970-01-01 00:00:00, UTC.
[[nodiscard]] int64_t UnixMilliseconds();
// What local time is ahead of UTC at that moment.
[[nodiscard]] int64_t UtcOffset_ms(int64_t unix_ms);
[[nodiscard]] CalendarTime CalendarFromUnixMilliseconds(int64_t unix_ms);

void SleepMilliseconds(uint32_t duration_ms);

// With the mutex locked: gives it up until the condition is notified or the deadline has come (kNever of
// monitor.h: without limit), or earlier for no reason at all.
void WaitUntil(std::mutex& mutex, std::condition_variable& condition, int64_t deadline_us);

}  // namespace tw::posix
