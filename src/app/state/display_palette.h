// The echogram's colours: entry i is the colour of the 12-bit amplitude i. Built at start-up and whenever the
// operator chooses others; GUI thread.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tw {

inline constexpr size_t kPaletteEntries = 4'096;

struct DisplayPalette {
  uint8_t entries[kPaletteEntries][4];  // blue, green, red, 0
  uint32_t background;                  // 0x00RRGGBB: of the image and of all that lies around it
  int32_t weakest;                      // amplitudes below it have the background's colour
  uint32_t stamp;  // another one for each choice of colours, 0 for none: what is kept in colours has its own
};

}  // namespace tw
