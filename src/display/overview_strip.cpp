#include "display/overview_strip.h"

#include <algorithm>

#include "base/bytes.h"
#include "display/palette.h"

namespace tw {
namespace {

constexpr Pixel kEmptyColour = 0x3E3E42;
constexpr Pixel kLineOnBlack = 0xFFFFFF;

float DeepestOf(std::span<const OverviewColumn, kOverviewColumns> columns) {
  float deepest = 0.0f;
  for (const OverviewColumn& column : columns)
    deepest = std::max(deepest, column.hasPing ? column.depth_m : 0.0f);
  return deepest;
}

// Eight bits to twelve: full scale stays full scale.
Pixel ColourOf(uint8_t echo, const DisplayPalette& palette) {
  const auto amplitude = static_cast<size_t>((echo << 4) | (echo >> 4));
  return LoadLe<uint32_t>(palette.entries[amplitude]);
}

void DrawColumn(const OverviewColumn& column, int32_t x, const DisplayPalette& palette,
                const Canvas& canvas) {
  for (int32_t y = 0; y < canvas.height; ++y) {
    const auto row = static_cast<size_t>(y) * kOverviewRows / static_cast<size_t>(canvas.height);
    canvas.Row(y)[x] = column.hasPing ? ColourOf(column.echoes[row], palette) : kEmptyColour;
  }
}

void DrawDepths(std::span<const OverviewColumn, kOverviewColumns> columns, float lowest_m, Pixel ink,
                int32_t lineWidth, const Canvas& canvas) {
  if (!(lowest_m > 0.0f)) return;
  const auto room = static_cast<float>(std::max(canvas.height - lineWidth, 0));
  int32_t before = -1;
  for (int32_t x = 0; x < canvas.width; ++x) {
    const OverviewColumn& column = columns[OverviewColumnAt(x, canvas.width)];
    const bool known = column.hasPing && column.depth_m > 0.0f && column.depth_m <= lowest_m;
    const int32_t y = known ? static_cast<int32_t>(column.depth_m / lowest_m * room) : -1;
    const int32_t from = before < 0 ? y : before;
    if (known) FillRect(canvas, {x, std::min(from, y), x + 1, std::max(from, y) + lineWidth}, ink);
    before = y;
  }
}

}  // namespace

size_t OverviewColumnAt(int32_t x, int32_t width) {
  if (width <= 0) return 0;
  const auto inside = static_cast<size_t>(std::clamp(x, 0, width - 1));
  return inside * kOverviewColumns / static_cast<size_t>(width);
}

uint64_t StripPosition(int32_t x, int32_t width, uint64_t fileSize) {
  if (width <= 0) return 0;
  const auto inside = static_cast<uint64_t>(std::clamp(x, 0, width - 1));
  const auto whole = static_cast<uint64_t>(width);
  return fileSize / whole * inside + fileSize % whole * inside / whole;
}

int32_t StripX(uint64_t position, int32_t width, uint64_t fileSize) {
  if (fileSize == 0 || width <= 0) return 0;
  const double share = static_cast<double>(std::min(position, fileSize)) / static_cast<double>(fileSize);
  return std::min(static_cast<int32_t>(share * width), width - 1);
}

void DrawOverview(std::span<const OverviewColumn, kOverviewColumns> columns, float reach_m,
                  const DisplayPalette& palette, int32_t mark_x, int32_t lineWidth, const Canvas& canvas) {
  for (int32_t x = 0; x < canvas.width; ++x)
    DrawColumn(columns[OverviewColumnAt(x, canvas.width)], x, palette, canvas);
  const Pixel ink = InkOn(palette, kLineOnBlack);
  DrawDepths(columns, reach_m > 0.0f ? reach_m : DeepestOf(columns), ink, lineWidth, canvas);
  if (mark_x < 0) return;
  FillRect(canvas, {mark_x - lineWidth, 0, mark_x + 2 * lineWidth, canvas.height}, palette.background);
  FillRect(canvas, {mark_x, 0, mark_x + lineWidth, canvas.height}, ink);
}

}  // namespace tw
