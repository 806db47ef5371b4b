// What is done with a fix as a whole: cleared, asked for a position or its time. On any thread, with the
// fix's lock held where it is shared.
#pragma once

#include "app/state/gps_fix.h"

namespace tw {

// The fix's time of day and date as seconds since 1970, UTC; bounded to 32 bits.
[[nodiscard]] uint32_t UnixSecondsOfFix(const GpsTime& utc);

// Whether a sentence with a position, GGA or RMC, has been applied since the fix was cleared.
[[nodiscard]] bool HasPosition(const GpsFix& fix);

// Zeroes the fix, takes the time from the system clock (UTC) and sets the quality to 1.
void ClearFix(GpsFix& fix);

}  // namespace tw
