#include "base/calendar.h"

#include <gtest/gtest.h>

#include <array>

namespace tw {
namespace {

std::array<int32_t, 6> FieldsOf(const CalendarTime& time) {
  return {time.year, time.month, time.day, time.hour, time.minute, time.second};
}

// Expected seconds from date(1): date -u -d '…' +%s
TEST(Calendar, ConvertsBothWays) {
  const struct {
    CalendarTime time;
    int64_t seconds;
  } rows[] = {
      {{1970, 1, 1, 0, 0, 0, 0}, 0},
      {{1969, 12, 31, 23, 59, 59, 0}, -1},
      {{2000, 2, 29, 12, 0, 0, 0}, 951825600},
      {{2026, 11, 16, 12, 34, 56, 0}, 1794832496},
      {{2038, 1, 19, 3, 14, 8, 0}, 2147483648},
      {{1901, 12, 13, 20, 45, 52, 0}, -2147483648},
      {{2100, 3, 1, 0, 0, 0, 0}, 4107542400},
      {{1601, 1, 1, 0, 0, 0, 0}, -11644473600},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(UnixSecondsFromCalendar(row.time), row.seconds);
    EXPECT_EQ(FieldsOf(CalendarFromUnixSeconds(row.seconds)), FieldsOf(row.time)) << row.seconds;
  }
}

TEST(Calendar, FieldsOutsideTheirRangeCarryOver) {
  EXPECT_EQ(UnixSecondsFromCalendar({1969, 13, 1, 0, 0, 0, 0}), 0);
  EXPECT_EQ(UnixSecondsFromCalendar({1970, 0, 32, 0, 0, 0, 0}), 0);
  EXPECT_EQ(UnixSecondsFromCalendar({1969, 12, 31, 24, 0, 0, 0}), 0);
}

}  // namespace
}  // namespace tw
