#include "display/palette.h"

#include <gtest/gtest.h>

#include <vector>

namespace tw {
namespace {

// Computed in double precision by a separate script from the formula: lightness log10(1.2 + 1.96 i / 4,095),
// full saturation, hue from 270 degrees down to 0.
TEST(Palette, HasTheColoursOfTheFormula) {
  const struct {
    const char* what;
    size_t entry;
    std::vector<uint8_t> bytes;  // blue, green, red, 0
  } rows[] = {
      {"weakest: violet", 0, {40, 0, 20, 0}},
      {"last black amplitude", 63, {46, 0, 20, 0}},
      {"first visible amplitude", 64, {46, 0, 20, 0}},
      {"violet meets blue", 455, {77, 0, 0, 0}},
      {"between blue and cyan", 910, {109, 54, 0, 0}},
      {"next to it", 911, {109, 55, 0, 0}},
      {"cyan", 1'365, {137, 137, 0, 0}},
      {"between cyan and green", 1'820, {81, 161, 0, 0}},
      {"middle", 2'047, {43, 173, 0, 0}},
      {"between green and yellow", 2'730, {0, 204, 102, 0}},
      {"towards yellow", 3'000, {0, 215, 171, 0}},
      {"orange", 3'640, {0, 120, 239, 0}},
      {"last but one", 4'094, {0, 0, 255, 0}},
      {"strongest: red", 4'095, {0, 0, 255, 0}},
  };
  DisplayPalette palette;
  BuildPalette(palette);
  for (const auto& row : rows) {
    const uint8_t(&entry)[4] = palette.entries[row.entry];
    EXPECT_EQ(std::vector<uint8_t>(entry, entry + 4), row.bytes) << row.what;
  }
}

}  // namespace
}  // namespace tw
