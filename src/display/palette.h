// Builds the echogram's colours. GUI thread.
#pragma once

#include <cstdint>

#include "app/state/display_palette.h"
#include "app/state/options.h"
#include "display/canvas.h"

namespace tw {

inline constexpr Pixel kPaper = 0xFFFFFF;

// Of the full scale: amplitudes below the lower bound have the background's colour, those from the upper one
// on the strongest, and between them the scheme's colours run evenly. Bounds that come closer to each other
// than 5 %, or cross, are 5 % apart: the lower one holds.
struct PaletteChoice {
  ColourScheme scheme = kStandardColours;
  int32_t lower_percent = 0;    // 0 to 95
  int32_t upper_percent = 100;  // 5 to 100
};

// Bounds beyond their own are brought into them.
void BuildPalette(DisplayPalette& palette, const PaletteChoice& choice = {});
[[nodiscard]] bool IsBuiltFrom(const DisplayPalette& palette, const PaletteChoice& choice);

// What is written on black is written in black on paper.
[[nodiscard]] constexpr Pixel InkOn(const DisplayPalette& palette, Pixel onBlack) {
  return palette.background == kBlack ? onBlack : kBlack;
}

}  // namespace tw
