// A text's anti-aliased shape, kept as coverage and blended by our own code: labels hardly ever change, and
// asking the system for 70 of them in each paint costs more than the echogram. GUI thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "display/canvas.h"

namespace tw {

struct TextMask {
  Point offset;  // of its upper left corner from the text's place
  int32_t width;
  int32_t height;
  std::vector<uint8_t> coverage;  // row by row, 255 is all of a pixel
};

// Takes the shape of what was drawn in white on black, the text's place being the canvas' corner.
[[nodiscard]] TextMask MaskOf(const Canvas& drawn);

// Blends the mask in one colour over the canvas.
void BlendMask(const Canvas& canvas, const TextMask& mask, Point at, Pixel colour);

}  // namespace tw
