// Draws the overview of a recording as an echogram of a few rows, each pixel the strongest echo of its part
// of the file and of the water, so that one sees where the bottom is and where it was lost; over it the depth
// as a line, and the place of the playback. Plain drawing; any thread.
#pragma once

#include <cstdint>
#include <span>

#include "app/state/display_palette.h"
#include "app/state/overview.h"
#include "display/canvas.h"

namespace tw {

// The column of the overview that a pixel column of a strip shows; `x` is brought into the strip.
[[nodiscard]] size_t OverviewColumnAt(int32_t x, int32_t width);

// The place of the file that a pixel column means, and the pixel column of a place; both from one end to the
// other, whatever comes in.
[[nodiscard]] uint64_t StripPosition(int32_t x, int32_t width, uint64_t fileSize);
[[nodiscard]] int32_t StripX(uint64_t position, int32_t width, uint64_t fileSize);

// Fills the whole canvas. The upper edge is a depth of 0, the lower one that of the reach; where there is
// none the deepest depth stands near it. `mark_x` is the place of the playback; below 0: none.
void DrawOverview(std::span<const OverviewColumn, kOverviewColumns> columns, float reach_m,
                  const DisplayPalette& palette, int32_t mark_x, int32_t lineWidth, const Canvas& canvas);

}  // namespace tw
