#include "display/echogram_image.h"

#include <algorithm>
#include <cmath>

#include "base/bytes.h"

namespace tw {

namespace {

// Fills `offsets` for the rows from `firstRow`; returns how many rows have a sample within reach. The sample
// grows with the row, so those are the first ones.
int32_t FindRowOffsets(const EchogramScale& scale, int32_t height, int32_t firstRow, int32_t rows,
                       uint32_t* offsets) {
  for (int32_t i = 0; i < rows; ++i) {
    const double position = SamplePosition(firstRow + i, scale, height);
    if (!(position < static_cast<double>(kMaxSlotSamples))) return i;
    offsets[i] = static_cast<uint32_t>(position) * 2;
  }
  return rows;
}

// What bounds a full image is fetching samples from memory: a slot is 60,000 bytes, and with a deep range
// each row's sample stands in a cache line of its own. So a tile of 16 columns (one cache line of the
// picture) is painted in blocks of rows that cover about 1 KiB of each slot, and meanwhile the lines of the
// next block are asked for, a few at a time.
constexpr uint32_t kBlockBytes = 1'024;
constexpr int32_t kMinBlockRows = 16;
constexpr int32_t kMaxBlockRows = 64;
constexpr int32_t kChunksPerBlock = 4;
constexpr uint32_t kCacheLine = 64;

// Consecutive rows: the byte offsets of their samples, ascending.
struct RowBlock {
  const uint32_t* offsets;
  int32_t rows;
  uint32_t pitch;  // bytes from one row's sample to the next, rounded down
};

RowBlock Slice(const RowBlock& block, int32_t first, int32_t rows) {
  first = std::min(first, block.rows);
  return {block.offsets + first, std::min(rows, block.rows - first), block.pitch};
}

int32_t BlockRows(uint32_t pitch) {
  return std::clamp(static_cast<int32_t>(kBlockBytes / std::max(pitch, 1u)), kMinBlockRows, kMaxBlockRows);
}

// Always inline: a function that does nothing but this counts as one without effect, and calls of it are
// dropped.
__attribute__((always_inline)) inline void Prefetch(const SlotSamples* columns, const RowBlock& block) {
  const int32_t rowsPerLine = std::max(1, static_cast<int32_t>(kCacheLine / std::max(block.pitch, 1u)));
  for (int32_t y = 0; y < block.rows; y += rowsPerLine) {
    for (int32_t x = 0; x < kGroupColumns; ++x) __builtin_prefetch(columns[x].first + block.offsets[y]);
  }
}

// A slot with an unusually long header reaches less far than the others; the rest of its column is black.
void PaintBoundedColumn(const SlotSamples& slot, const RowBlock& block, const AmplitudeColours& colours,
                        Pixel* out, ptrdiff_t stride) {
  const uint32_t* end = block.offsets + block.rows;
  const auto reach = static_cast<uint32_t>(slot.count * 2);
  const auto rows = static_cast<int32_t>(std::lower_bound(block.offsets, end, reach) - block.offsets);
  PaintColumn(slot, block.offsets, rows, colours.pixels, out, stride);
  for (int32_t y = rows; y < block.rows; ++y) out[y * stride] = kBlack;
}

void PaintGroup(const SlotSamples* columns, const RowBlock& block, const SlotSamples* nextColumns,
                const RowBlock& nextBlock, const AmplitudeColours& colours, Pixel* out, ptrdiff_t stride) {
  SlotSamples group[kGroupColumns];
  bool full = true;
  for (int32_t x = 0; x < kGroupColumns; ++x) {
    group[x] = columns[x];
    full = full && columns[x].count == kMaxSlotSamples;
  }
  const int32_t chunk = BlockRows(block.pitch) / kChunksPerBlock;
  for (int32_t y = 0; y < block.rows; y += chunk) {
    Prefetch(nextColumns, Slice(nextBlock, y, chunk));
    const RowBlock rows = Slice(block, y, chunk);
    if (full) {
      PaintColumns(group, rows.offsets, rows.rows, colours.pixels, out + y * stride, stride);
    } else {
      for (int32_t x = 0; x < kGroupColumns; ++x) {
        PaintBoundedColumn(group[x], rows, colours, out + y * stride + x, stride);
      }
    }
  }
}

void PaintTile(const SlotSamples* columns, const SlotSamples* nextColumns, const RowBlock& band,
               const AmplitudeColours& colours, const Canvas& tile) {
  const int32_t blockRows = BlockRows(band.pitch);
  for (int32_t y = 0; y < band.rows; y += blockRows) {
    const RowBlock block = Slice(band, y, blockRows);
    const bool isLast = y + blockRows >= band.rows;
    const RowBlock nextBlock = Slice(band, isLast ? 0 : y + blockRows, blockRows);
    int32_t x = 0;
    for (; x + kGroupColumns <= tile.width; x += kGroupColumns) {
      PaintGroup(columns + x, block, (isLast ? nextColumns : columns) + x, nextBlock, colours,
                 tile.Row(y) + x, tile.stride);
    }
    for (; x < tile.width; ++x) {
      PaintBoundedColumn(columns[x], block, colours, tile.Row(y) + x, tile.stride);
    }
  }
}

// Finds the slots of a tile's columns, and asks for the headers of the tile behind it. Columns beyond the
// image repeat its last one.
void FindColumns(const PingRing& ring, const EchogramScale& scale, int32_t left, int32_t width,
                 SlotSamples (&columns)[kTileColumns]) {
  const auto slotAt = [&](int32_t x) {
    return SlotAt(ring, SlotOfColumn(std::min(x, width - 1), width, scale.newest, scale.timeScale_s));
  };
  for (int32_t x = 0; x < kTileColumns; ++x) {
    __builtin_prefetch(slotAt(left + kTileColumns + x) + frame::kHeaderLength);
    columns[x] = FindSamples(slotAt(left + x));
  }
}

// A band is as many rows as the scratch memory holds.
void RenderBand(const PingRing& ring, const EchogramScale& scale, const AmplitudeColours& colours,
                EchogramScratch& scratch, const Canvas& image, int32_t firstRow) {
  const int32_t rows = std::min(image.height - firstRow, kBandRows);
  const int32_t reached = FindRowOffsets(scale, image.height, firstRow, rows, scratch.offsets);
  FillRect(image, {0, firstRow + reached, image.width, firstRow + rows}, kBlack);
  if (reached == 0) return;
  const uint32_t span = scratch.offsets[reached - 1] - scratch.offsets[0];
  const RowBlock band{scratch.offsets, reached, span / static_cast<uint32_t>(reached)};
  FindColumns(ring, scale, 0, image.width, scratch.columns[0]);
  for (int32_t left = 0, tile = 0; left < image.width; left += kTileColumns, ++tile) {
    const auto& columns = scratch.columns[tile % 2];
    auto& nextColumns = scratch.columns[(tile + 1) % 2];
    FindColumns(ring, scale, left + kTileColumns, image.width, nextColumns);
    PaintTile(columns, nextColumns, band, colours,
              Part(image, {left, firstRow, left + kTileColumns, firstRow + reached}));
  }
}

}  // namespace

void BuildAmplitudeColours(const DisplayPalette& palette, AmplitudeColours& colours) {
  for (size_t i = 0; i < kPaletteEntries; ++i) {
    colours.pixels[i] = i < kFirstVisibleAmplitude ? kBlack : LoadLe<uint32_t>(palette.entries[i]);
  }
}

int32_t SlotOfColumn(int32_t x, int32_t width, int32_t newest, int32_t timeScale_s) {
  const double pingsPerColumn = timeScale_s * 10.0 / width;
  const double difference = newest - (width - x) * pingsPerColumn;
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<int64_t>(difference)) % kRingSlots);
}

bool IsDrawable(const EchogramScale& scale, int32_t height) {
  return height > 0 && scale.range_mm > 0 && std::isfinite(scale.soundSpeed_mps) && scale.soundSpeed_mps > 0;
}

double SamplePosition(double y, const EchogramScale& scale, int32_t height) {
  const double range_m = scale.range_mm / 1000.0;
  return 2.0 * y * range_m * kGridFrequency_hz / (height * static_cast<double>(scale.soundSpeed_mps));
}

void RenderEchogram(const PingRing& ring, const EchogramScale& scale, const AmplitudeColours& colours,
                    EchogramScratch& scratch, const Canvas& image) {
  if (image.width <= 0 || !IsDrawable(scale, image.height)) {
    FillRect(image, {0, 0, image.width, image.height}, kBlack);
    return;
  }
  for (int32_t row = 0; row < image.height; row += kBandRows) {
    RenderBand(ring, scale, colours, scratch, image, row);
  }
}

}  // namespace tw
