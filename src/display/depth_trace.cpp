#include "display/depth_trace.h"

#include <algorithm>

#include "display/scaling.h"

namespace tw {
namespace {

constexpr int32_t kTraceWidth = 2;  // at 96 dpi
constexpr int32_t kNoBottom = -1;

// The row of the bottom in a column's slot.
int32_t RowOfBottom(const uint8_t* slot, double rowsPerMetre, int32_t height) {
  const double row = ReadShownPing(slot).altitude_m * rowsPerMetre;
  return row > 0 && row < height ? static_cast<int32_t>(row) : kNoBottom;
}

}  // namespace

void DrawDepthTrace(const PingRing& ring, const EchogramScale& scale, int32_t dpi, const Canvas& image) {
  if (scale.range_mm <= 0) return;
  const double rowsPerMetre = image.height * 1'000.0 / scale.range_mm;
  const int32_t thickness = ScalePixels(kTraceWidth, dpi);
  int32_t before = kNoBottom;
  for (int32_t x = 0; x < image.width; ++x) {
    const int32_t slot = SlotOfColumn(x, image.width, scale.newest, scale.timeScale_s);
    const int32_t row = RowOfBottom(SlotAt(ring, slot), rowsPerMetre, image.height);
    if (row != kNoBottom) {
      const int32_t from = before == kNoBottom ? row : before;
      const int32_t top = std::min(from, row) - thickness / 2;
      const int32_t bottom = std::max(from, row) - thickness / 2 + thickness;
      FillRect(image, {x, top - 1, x + 1, bottom + 1}, kTraceEdge);
      FillRect(image, {x, top, x + 1, bottom}, kTraceColour);
    }
    before = row;
  }
}

}  // namespace tw
