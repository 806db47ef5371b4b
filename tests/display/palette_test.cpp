#include "display/palette.h"

#include <gtest/gtest.h>

#include <set>
#include <vector>

#include "base/bytes.h"

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

Pixel Entry(const DisplayPalette& palette, size_t entry) {
  return LoadLe<uint32_t>(palette.entries[entry]);
}

// The bounds, worked out by hand: 20 % of 4,095 are 819, 60 % are 2,457, and between them the scale's 4,095
// colours run over 1,638 amplitudes.
TEST(Palette, RunsBetweenTheBoundsOfTheContrast) {
  const struct {
    const char* what;
    PaletteChoice choice;
    int32_t weakest;
    size_t amplitude;
    size_t colourOf;  // of the same scheme in full
  } rows[] = {
      {"the lower bound has the weakest colour", {kBlueToYellow, 20, 60}, 819, 819, 0},
      {"half-way", {kBlueToYellow, 20, 60}, 819, 1'638, 2'047},
      {"the upper bound has the strongest", {kBlueToYellow, 20, 60}, 819, 2'457, 4'095},
      {"and so has what is stronger", {kBlueToYellow, 20, 60}, 819, 4'000, 4'095},
      {"the standard colours alike", {kStandardColours, 0, 50}, 0, 1'000, 2'000},
      {"crossing: the lower one holds, 5 % of contrast stay", {kGreyOnBlack, 60, 30}, 2'457, 2'661, 4'095},
      {"the highest lower bound", {kGreyOnBlack, 95, 5}, 3'890, 3'890, 0},
      {"beyond the sliders", {kGreyOnBlack, 5'000, -7}, 3'890, 3'890, 0},
  };
  for (const auto& row : rows) {
    DisplayPalette full;
    DisplayPalette palette;
    BuildPalette(full, {.scheme = row.choice.scheme});
    BuildPalette(palette, row.choice);
    EXPECT_EQ(palette.weakest, row.weakest) << row.what;
    EXPECT_EQ(Entry(palette, row.amplitude), Entry(full, row.colourOf)) << row.what;
    for (int32_t i = 0; i < row.weakest; ++i) ASSERT_EQ(Entry(palette, static_cast<size_t>(i)), kBlack) << i;
  }
}

// Kept columns are told apart by it.
TEST(Palette, HasAStampOfItsOwnForEachChoice) {
  std::set<uint32_t> stamps{0};
  DisplayPalette palette{};
  for (const ColourScheme scheme :
       {kStandardColours, kBlueToYellow, kVioletToYellow, kGreyOnBlack, kBlackOnWhite}) {
    for (const int32_t lower : {0, 1, 95}) {
      const PaletteChoice choice{scheme, lower, 100};
      EXPECT_FALSE(IsBuiltFrom(palette, choice));
      BuildPalette(palette, choice);
      EXPECT_TRUE(IsBuiltFrom(palette, choice));
      EXPECT_TRUE(stamps.insert(palette.stamp).second);
      EXPECT_EQ(palette.background, scheme == kBlackOnWhite ? kPaper : kBlack);
    }
  }
}

}  // namespace
}  // namespace tw
