// The colours of the schemes other than the standard one. Two are even: their lightness L* (CIE 1976, white
// D65) grows in equal steps with the echo's strength, so that equal differences look equal, and in grey or to
// eyes that miss red or green the order stays. docs/palettes.md holds the figures. Pure; any thread.
#pragma once

#include "app/state/options.h"
#include "display/canvas.h"

namespace tw {

// Of an echo of that strength, 0 to 1. Never kStandardColours, whose colours are BuildPalette's own.
[[nodiscard]] Pixel ColourOfScheme(ColourScheme scheme, double strength);

}  // namespace tw
