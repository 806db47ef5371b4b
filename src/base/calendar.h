// Calendar arithmetic in the proleptic Gregorian calendar, UTC, without the C library's time zones. Any
// thread.
#pragma once

#include <cstdint>

namespace tw {

// A moment as people write it. Month 1 to 12, day 1 to 31, full year.
struct CalendarTime {
  int32_t year;
  int32_t month;
  int32_t day;
  int32_t hour;
  int32_t minute;
  int32_t second;
  int32_t millisecond;
};

// Seconds since 1970-01-01 00:00:00. Fields outside their range carry over (month 13 is January of the next
// year); years from -100000 to 100000. Milliseconds are not counted.
[[nodiscard]] int64_t UnixSecondsFromCalendar(const CalendarTime& time);

// The reverse, for every 32-bit number of seconds and beyond (years -100000 to 100000).
[[nodiscard]] CalendarTime CalendarFromUnixSeconds(int64_t seconds);

}  // namespace tw
