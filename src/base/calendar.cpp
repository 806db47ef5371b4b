#include "base/calendar.h"

namespace tw {
namespace {

constexpr int64_t kSecondsPerDay = 86'400;

constexpr int64_t FloorDivide(int64_t value, int64_t divisor) {
  return value / divisor - (value % divisor < 0 ? 1 : 0);
}

// The year is taken to begin in March, so that a leap day is its last day; an era is 400 years.
constexpr int64_t DaysFromCivil(int64_t year, int64_t month, int64_t day) {
  year += FloorDivide(month - 1, 12);
  month = (month - 1) - FloorDivide(month - 1, 12) * 12 + 1;
  if (month <= 2) --year;
  const int64_t era = FloorDivide(year, 400);
  const int64_t yearOfEra = year - era * 400;
  const int64_t dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  return era * 146'097 + yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear - 719'468;
}

}  // namespace

int64_t UnixSecondsFromCalendar(const CalendarTime& time) {
  return DaysFromCivil(time.year, time.month, time.day) * kSecondsPerDay + int64_t{time.hour} * 3600 +
         int64_t{time.minute} * 60 + time.second;
}

CalendarTime CalendarFromUnixSeconds(int64_t seconds) {
  const int64_t days = FloorDivide(seconds, kSecondsPerDay);
  const int64_t secondOfDay = seconds - days * kSecondsPerDay;
  const int64_t shifted = days + 719'468;
  const int64_t era = FloorDivide(shifted, 146'097);
  const int64_t dayOfEra = shifted - era * 146'097;
  const int64_t yearOfEra = (dayOfEra - dayOfEra / 1'460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
  const int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const int64_t marchMonth = (5 * dayOfYear + 2) / 153;
  const int64_t month = marchMonth < 10 ? marchMonth + 3 : marchMonth - 9;
  CalendarTime time{};
  time.year = static_cast<int32_t>(yearOfEra + era * 400 + (month <= 2 ? 1 : 0));
  time.month = static_cast<int32_t>(month);
  time.day = static_cast<int32_t>(dayOfYear - (153 * marchMonth + 2) / 5 + 1);
  time.hour = static_cast<int32_t>(secondOfDay / 3600);
  time.minute = static_cast<int32_t>(secondOfDay / 60 % 60);
  time.second = static_cast<int32_t>(secondOfDay % 60);
  return time;
}

}  // namespace tw
