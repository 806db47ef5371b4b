#include "display/palette.h"

#include <gtest/gtest.h>

namespace tw {
namespace {

struct PaletteCase {
  const char* what;
  size_t entry;
  uint8_t blue;
  uint8_t green;
  uint8_t red;
};

// Computed in double precision by a separate script from the formula: lightness log10(1.2 + 1.96 i / 4,095),
// full saturation, hue from 270 degrees down to 0.
constexpr PaletteCase kCases[] = {
    {"weakest: violet", 0, 40, 0, 20},
    {"last black amplitude", 63, 46, 0, 20},
    {"first visible amplitude", 64, 46, 0, 20},
    {"violet meets blue", 455, 77, 0, 0},
    {"between blue and cyan", 910, 109, 54, 0},
    {"next to it", 911, 109, 55, 0},
    {"cyan", 1'365, 137, 137, 0},
    {"between cyan and green", 1'820, 81, 161, 0},
    {"middle", 2'047, 43, 173, 0},
    {"between green and yellow", 2'730, 0, 204, 102},
    {"towards yellow", 3'000, 0, 215, 171},
    {"orange", 3'640, 0, 120, 239},
    {"last but one", 4'094, 0, 0, 255},
    {"strongest: red", 4'095, 0, 0, 255},
};

TEST(Palette, HasTheColoursOfTheFormula) {
  DisplayPalette palette;
  BuildPalette(palette);
  for (const PaletteCase& c : kCases) {
    SCOPED_TRACE(c.what);
    const uint8_t(&entry)[4] = palette.entries[c.entry];
    EXPECT_EQ(entry[0], c.blue);
    EXPECT_EQ(entry[1], c.green);
    EXPECT_EQ(entry[2], c.red);
    EXPECT_EQ(entry[3], 0);
  }
}

}  // namespace
}  // namespace tw
