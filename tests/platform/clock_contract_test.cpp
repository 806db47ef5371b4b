#include <gtest/gtest.h>

#include "platform/clock.h"

namespace tw {
namespace {

TEST(ClockContract, ASleepLastsAtLeastItsTimeOnTheMillisecondClock) {
  RaiseTimerResolution();
  const uint32_t before = MillisecondClock();
  SleepMilliseconds(30);
  const uint32_t lasted = MillisecondClock() - before;
  RestoreTimerResolution();
  EXPECT_GE(lasted, 28u);  // two clocks may round a millisecond apart
  EXPECT_LT(lasted, 30'000u);
}

TEST(ClockContract, TheWallClockAndItsCalendarAgree) {
  const int64_t before_ms = UnixMilliseconds();
  const CalendarTime now = UtcNow();
  const int64_t after_ms = UnixMilliseconds();
  const int64_t calendar_ms = UnixSecondsFromCalendar(now) * 1000 + now.millisecond;
  EXPECT_GE(calendar_ms, before_ms - 20);  // one clock may tick more coarsely than the other
  EXPECT_LE(calendar_ms, after_ms + 20);
  EXPECT_GT(before_ms, 1'700'000'000'000);  // after November 2023
}

TEST(ClockContract, LocalTimeIsWithinADayOfUtc) {
  const int64_t utc = UnixSecondsFromCalendar(UtcNow());
  const CalendarTime local = LocalNow();
  const int64_t offset = UnixSecondsFromCalendar(local) - utc;
  EXPECT_LE(offset, 15 * 3600);
  EXPECT_GE(offset, -13 * 3600);
  EXPECT_GE(local.millisecond, 0);
  EXPECT_LE(local.millisecond, 999);
}

}  // namespace
}  // namespace tw
