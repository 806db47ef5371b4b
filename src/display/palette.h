// Builds the echogram's colours.
#pragma once

#include "app/state/display_palette.h"

namespace tw {

void BuildPalette(DisplayPalette& palette);

}  // namespace tw
