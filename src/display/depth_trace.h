// The altitude of each ping as a line over the image, so that one sees what the device takes for the bottom.
// GUI thread.
#pragma once

#include <cstdint>

#include "display/canvas.h"
#include "display/echogram_image.h"

namespace tw {

inline constexpr Pixel kTraceColour = 0xFFFFFF;
inline constexpr Pixel kTraceEdge = 0x000000;

// White between black edges: no palette hides it. It is broken where a ping has no bottom (an altitude of 0
// or less, or not a number), where there is no ping, and where the bottom lies below the image.
void DrawDepthTrace(const PingRing& ring, const EchogramScale& scale, int32_t dpi, const Canvas& image);

}  // namespace tw
