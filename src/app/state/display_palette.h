// The echogram's colours: entry i is the colour of the 12-bit amplitude i. Built once at start-up, then read
// only.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tw {

inline constexpr size_t kPaletteEntries = 4'096;

struct DisplayPalette {
  uint8_t entries[kPaletteEntries][4];  // blue, green, red, 0
};

}  // namespace tw
