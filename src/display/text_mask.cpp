#include "display/text_mask.h"

#include <algorithm>

namespace tw {

namespace {

constexpr uint32_t kFull = 255;

uint8_t CoverageOf(Pixel white) {
  return static_cast<uint8_t>(white & kFull);
}

Rect Bounds(const Canvas& drawn) {
  Rect bounds{drawn.width, drawn.height, 0, 0};
  for (int32_t y = 0; y < drawn.height; ++y) {
    for (int32_t x = 0; x < drawn.width; ++x) {
      if (CoverageOf(drawn.Row(y)[x]) == 0) continue;
      bounds = {std::min(bounds.left, x), std::min(bounds.top, y), std::max(bounds.right, x + 1), y + 1};
    }
  }
  return bounds;
}

// Between the two, rounded to nearest.
uint32_t Mix(uint32_t under, uint32_t over, uint32_t coverage) {
  return (under * (kFull - coverage) + over * coverage + kFull / 2) / kFull;
}

Pixel Blend(Pixel under, Pixel over, uint32_t coverage) {
  Pixel mixed = 0;
  for (const int shift : {0, 8, 16}) {
    mixed |= Mix(under >> shift & kFull, over >> shift & kFull, coverage) << shift;
  }
  return mixed;
}

}  // namespace

TextMask MaskOf(const Canvas& drawn) {
  const Rect bounds = Bounds(drawn);
  if (bounds.IsEmpty()) return {};
  TextMask mask{{bounds.left, bounds.top}, bounds.Width(), bounds.Height(), {}};
  mask.coverage.reserve(static_cast<size_t>(mask.width) * static_cast<size_t>(mask.height));
  for (int32_t y = bounds.top; y < bounds.bottom; ++y) {
    for (int32_t x = bounds.left; x < bounds.right; ++x) {
      mask.coverage.push_back(CoverageOf(drawn.Row(y)[x]));
    }
  }
  return mask;
}

void BlendMask(const Canvas& canvas, const TextMask& mask, Point at, Pixel colour) {
  const int32_t left = at.x + mask.offset.x;
  const int32_t top = at.y + mask.offset.y;
  const int32_t firstX = std::max(0, -left);
  const int32_t endX = std::min(mask.width, canvas.width - left);
  for (int32_t y = std::max(0, -top); y < std::min(mask.height, canvas.height - top); ++y) {
    const uint8_t* const coverage = mask.coverage.data() + static_cast<ptrdiff_t>(y) * mask.width;
    Pixel* const row = canvas.Row(top + y) + left;
    for (int32_t x = firstX; x < endX; ++x) {
      if (coverage[x] != 0) row[x] = Blend(row[x], colour, coverage[x]);
    }
  }
}

}  // namespace tw
