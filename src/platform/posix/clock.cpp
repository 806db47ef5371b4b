#include "platform/clock.h"

#include "platform/posix/system_clock.h"

namespace tw {

uint32_t MillisecondClock() {
  return static_cast<uint32_t>(posix::SteadyNow_us() / 1000);
}

int64_t UnixMilliseconds() {
  return posix::UnixMilliseconds();
}

CalendarTime LocalNow() {
  const int64_t now_ms = UnixMilliseconds();
  return posix::CalendarFromUnixMilliseconds(now_ms + posix::UtcOffset_ms(now_ms));
}

CalendarTime LocalFromUnixSeconds(int64_t seconds) {
  return CalendarFromUnixSeconds(seconds + posix::UtcOffset_ms(seconds * 1000) / 1000);
}

void SleepMilliseconds(uint32_t duration_ms) {
  posix::SleepMilliseconds(duration_ms);
}

}  // namespace tw
