#include "display/palette.h"

#include <algorithm>
#include <cmath>

#include "base/bytes.h"
#include "display/colour_schemes.h"

namespace tw {

namespace {

constexpr int32_t kStrongest = kPaletteEntries - 1;
constexpr int32_t kLeastContrast_percent = 5;

struct Colour {
  float red;
  float green;
  float blue;
};

// A fully saturated colour of the hue circle; `sextant` 0 (red) to below 6. With the saturation at 1 the
// darkest component is 0 over the whole table.
Colour ColourOfHue(float sextant, float lightness) {
  const float brightest = lightness > 0.5f ? (lightness + 1.0f) - lightness : 2.0f * lightness;
  const float darkest = 2.0f * lightness - brightest;
  if (brightest <= 0.0f) return {0.0f, 0.0f, 0.0f};
  const int sector = static_cast<int>(sextant);
  const float fraction = sextant - static_cast<float>(sector);
  const float rising = (brightest - darkest) * fraction + darkest;
  const float falling = brightest - (brightest - darkest) * fraction;
  switch (sector) {
    case 0:
      return {brightest, rising, darkest};
    case 1:
      return {falling, brightest, darkest};
    case 2:
      return {darkest, brightest, rising};
    case 3:
      return {darkest, falling, brightest};
    case 4:
      return {rising, darkest, brightest};
    default:
      return {brightest, darkest, falling};
  }
}

uint8_t ByteOfComponent(float component) {
  return static_cast<uint8_t>(component * 255.0f + 0.5f);
}

Pixel StandardColour(size_t entry) {
  const float strength = static_cast<float>(entry);
  const float brightness = 1.2f + 1.96f * strength / 4'095.0f;
  const float lightness = static_cast<float>(std::log10(static_cast<double>(brightness)));
  const float sextant = ((270.0f - 270.0f * strength / 4'095.0f) / 360.0f) * 6.0f;
  const Colour colour = ColourOfHue(sextant, lightness);
  return Pixel{ByteOfComponent(colour.red)} << 16 | Pixel{ByteOfComponent(colour.green)} << 8 |
         ByteOfComponent(colour.blue);
}

Pixel ColourOf(ColourScheme scheme, size_t entry) {
  return scheme == kStandardColours ? StandardColour(entry)
                                    : ColourOfScheme(scheme, static_cast<double>(entry) / kStrongest);
}

PaletteChoice Bound(const PaletteChoice& choice) {
  const int32_t lower = std::clamp(choice.lower_percent, 0, 100 - kLeastContrast_percent);
  return {choice.scheme, lower, std::clamp(choice.upper_percent, lower + kLeastContrast_percent, 100)};
}

// Never 0: the upper bound is not.
uint32_t StampOf(const PaletteChoice& choice) {
  return static_cast<uint32_t>(choice.scheme) << 16 | static_cast<uint32_t>(choice.lower_percent) << 8 |
         static_cast<uint32_t>(choice.upper_percent);
}

}  // namespace

void BuildPalette(DisplayPalette& palette, const PaletteChoice& choice) {
  const PaletteChoice bound = Bound(choice);
  const int32_t lower = bound.lower_percent * kStrongest / 100;
  const int32_t upper = bound.upper_percent * kStrongest / 100;
  palette.stamp = StampOf(bound);
  palette.background = bound.scheme == kBlackOnWhite ? kPaper : kBlack;
  palette.weakest = lower;
  for (int32_t i = 0; i <= kStrongest; ++i) {
    const int32_t entry = std::clamp((i - lower) * kStrongest / (upper - lower), 0, kStrongest);
    const Pixel colour = i < lower ? palette.background : ColourOf(bound.scheme, static_cast<size_t>(entry));
    StoreLe(palette.entries[i], colour);
  }
}

bool IsBuiltFrom(const DisplayPalette& palette, const PaletteChoice& choice) {
  return palette.stamp == StampOf(Bound(choice));
}

}  // namespace tw
