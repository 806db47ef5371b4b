// The line of text under the image: time, ping number, altitude and temperature of the newest ping, with
// pitch and roll where they are known. Pure functions over UTF-8.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "display/ring_view.h"

namespace tw {

// Both lines are cut to the buffer, with a terminating zero; 160 characters hold any sensible values. The
// ping number is the program's running counter.
void FormatSingleStatus(std::span<char> out, const ShownPing& ping, uint32_t pingNumber, bool withAttitude);
void FormatDualStatus(std::span<char> out, const ShownPing& ping, uint32_t pingNumber, float altitudeHigh_m,
                      float altitudeLow_m, bool withAttitude);

// Whether a dual run of this family (0, 1 or 2) sends attitude in this output mode.
[[nodiscard]] bool DualModeHasAttitude(int32_t deviceFamily, int32_t outputMode);

}  // namespace tw
