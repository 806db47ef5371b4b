#include "gps/gps_fix.h"

#include "platform/clock.h"

namespace tw {

void ClearFix(GpsFix& fix) {
  const CalendarTime now = UtcNow();
  fix = GpsFix{};
  fix.utc = {now.year - 1900, now.month - 1, now.day, now.hour, now.minute, now.second, now.millisecond / 10};
  fix.quality = 1;
}

}  // namespace tw
