#include "gps/gps_fix.h"

#include <algorithm>

#include "base/calendar.h"
#include "platform/clock.h"

namespace tw {

uint32_t UnixSecondsOfFix(const GpsTime& utc) {
  const CalendarTime time{utc.year + 1900, utc.month + 1, utc.day, utc.hour, utc.minute, utc.second, 0};
  return static_cast<uint32_t>(std::clamp<int64_t>(UnixSecondsFromCalendar(time), 0, UINT32_MAX));
}

bool HasPosition(const GpsFix& fix) {
  return (fix.presence & (kHasGga | kHasRmc)) != 0;
}

void ClearFix(GpsFix& fix) {
  const CalendarTime now = UtcNow();
  fix = GpsFix{};
  fix.utc = {now.year - 1900, now.month - 1, now.day, now.hour, now.minute, now.second, now.millisecond / 10};
  fix.quality = 1;
}

}  // namespace tw
