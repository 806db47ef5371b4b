// The one place where pixel figures meet the screen's resolution: every length of the user interface is
// written down for 96 dots per inch and goes through ScalePixels.
#pragma once

#include <cstdint>

namespace tw {

inline constexpr int32_t kBaseDpi = 96;

// Pixels at `dpi` for a length given at 96; rounded to nearest, halves away from zero. A resolution of 0 or
// less counts as 96. Lengths up to a million.
[[nodiscard]] constexpr int32_t ScalePixels(int32_t length, int32_t dpi) {
  if (dpi <= 0) dpi = kBaseDpi;
  const int64_t scaled = int64_t{length} * dpi;
  return static_cast<int32_t>((scaled + (scaled < 0 ? -kBaseDpi / 2 : kBaseDpi / 2)) / kBaseDpi);
}

}  // namespace tw
