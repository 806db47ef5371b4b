#include "base/calendar.h"

#include <gtest/gtest.h>

namespace tw {
namespace {

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
    const CalendarTime back = CalendarFromUnixSeconds(row.seconds);
    EXPECT_EQ(back.year, row.time.year);
    EXPECT_EQ(back.month, row.time.month);
    EXPECT_EQ(back.day, row.time.day);
    EXPECT_EQ(back.hour, row.time.hour);
    EXPECT_EQ(back.minute, row.time.minute);
    EXPECT_EQ(back.second, row.time.second);
  }
}

TEST(Calendar, FieldsOutsideTheirRangeCarryOver) {
  EXPECT_EQ(UnixSecondsFromCalendar({1969, 13, 1, 0, 0, 0, 0}), 0);
  EXPECT_EQ(UnixSecondsFromCalendar({1970, 0, 32, 0, 0, 0, 0}), 0);
  EXPECT_EQ(UnixSecondsFromCalendar({1969, 12, 31, 24, 0, 0, 0}), 0);
}

}  // namespace
}  // namespace tw
