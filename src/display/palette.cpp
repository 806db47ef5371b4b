#include "display/palette.h"

#include <cmath>

namespace tw {

namespace {

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

}  // namespace

void BuildPalette(DisplayPalette& palette) {
  for (size_t i = 0; i < kPaletteEntries; ++i) {
    const float strength = static_cast<float>(i);
    const float brightness = 1.2f + 1.96f * strength / 4'095.0f;
    const float lightness = static_cast<float>(std::log10(static_cast<double>(brightness)));
    const float sextant = ((270.0f - 270.0f * strength / 4'095.0f) / 360.0f) * 6.0f;
    const Colour colour = ColourOfHue(sextant, lightness);
    uint8_t(&entry)[4] = palette.entries[i];
    entry[0] = ByteOfComponent(colour.blue);
    entry[1] = ByteOfComponent(colour.green);
    entry[2] = ByteOfComponent(colour.red);
    entry[3] = 0;
  }
}

}  // namespace tw
