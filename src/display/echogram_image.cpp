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
// picture) is painted in blocks of rows that cover about 4 KiB of each slot, and meanwhile the lines of the
// next block are asked for, a few at a time.
constexpr uint32_t kBlockBytes = 4'096;
constexpr int32_t kMinBlockRows = 16;
constexpr int32_t kMaxBlockRows = 256;
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
__attribute__((always_inline)) inline void Prefetch(const SlotSamples* slots, const RowBlock& block) {
  const int32_t rowsPerLine = std::max(1, static_cast<int32_t>(kCacheLine / std::max(block.pitch, 1u)));
  for (int32_t y = 0; y < block.rows; y += rowsPerLine) {
    for (int32_t x = 0; x < kGroupColumns; ++x) __builtin_prefetch(slots[x].first + block.offsets[y]);
  }
}

// A slot with an unusually long header reaches less far than the others; the rest of its column is
// background.
void PaintBoundedColumn(const SlotSamples& slot, const RowBlock& block, const AmplitudeColours& colours,
                        Pixel* out, ptrdiff_t stride) {
  const uint32_t* end = block.offsets + block.rows;
  const auto reach = static_cast<uint32_t>(slot.count * 2);
  const auto rows = static_cast<int32_t>(std::lower_bound(block.offsets, end, reach) - block.offsets);
  PaintColumn(slot, block.offsets, rows, colours.pixels, out, stride);
  for (int32_t y = rows; y < block.rows; ++y) out[y * stride] = colours.background;
}

// Paints the group of columns that starts at `first` of the tile, and asks for the same group's next block.
void PaintGroup(const EchogramTile& tile, int32_t first, const RowBlock& block, const EchogramTile& nextTile,
                const RowBlock& nextBlock, const AmplitudeColours& colours, Pixel* out, ptrdiff_t stride) {
  const SlotSamples* const group = tile.samples + first;
  const int32_t* const columns = tile.columns + first;
  const bool full = std::all_of(group, group + kGroupColumns,
                                [](const SlotSamples& slot) { return slot.count == kMaxSlotSamples; });
  const int32_t chunk = BlockRows(block.pitch) / kChunksPerBlock;
  for (int32_t y = 0; y < block.rows; y += chunk) {
    Prefetch(nextTile.samples + first, Slice(nextBlock, y, chunk));
    const RowBlock rows = Slice(block, y, chunk);
    if (full) {
      PaintColumns(group, columns, rows.offsets, rows.rows, colours.pixels, out + y * stride, stride);
    } else {
      for (int32_t i = 0; i < kGroupColumns; ++i) {
        PaintBoundedColumn(group[i], rows, colours, out + y * stride + columns[i], stride);
      }
    }
  }
}

void PaintTile(const EchogramTile& tile, int32_t count, const EchogramTile& nextTile, const RowBlock& band,
               const AmplitudeColours& colours, Pixel* out, ptrdiff_t stride) {
  const int32_t blockRows = BlockRows(band.pitch);
  for (int32_t y = 0; y < band.rows; y += blockRows) {
    const RowBlock block = Slice(band, y, blockRows);
    const bool isLast = y + blockRows >= band.rows;
    const RowBlock nextBlock = Slice(band, isLast ? 0 : y + blockRows, blockRows);
    Pixel* const row = out + y * stride;
    int32_t i = 0;
    for (; i + kGroupColumns <= count; i += kGroupColumns) {
      PaintGroup(tile, i, block, isLast ? nextTile : tile, nextBlock, colours, row, stride);
    }
    for (; i < count; ++i) {
      PaintBoundedColumn(tile.samples[i], block, colours, row + tile.columns[i], stride);
    }
  }
}

// Finds the samples of the tile that starts at job `first`, and asks for the headers of the tile behind it.
// Beyond the last job the tile repeats that.
void FillTile(const PingRing& ring, std::span<const ColumnJob> jobs, size_t first, EchogramTile& tile) {
  const auto jobAt = [&](size_t i) { return jobs[std::min(i, jobs.size() - 1)]; };
  for (size_t i = 0; i < kTileColumns; ++i) {
    __builtin_prefetch(SlotAt(ring, jobAt(first + kTileColumns + i).slot) + frame::kHeaderLength);
    const ColumnJob job = jobAt(first + i);
    tile.samples[i] = FindSamples(SlotAt(ring, job.slot));
    tile.columns[i] = job.column;
  }
}

// A band is as many rows as the scratch memory holds. Returns how many of its rows have samples.
int32_t RenderBand(const PingRing& ring, std::span<const ColumnJob> jobs, const EchogramScale& scale,
                   const AmplitudeColours& colours, EchogramScratch& scratch, const Canvas& canvas,
                   int32_t firstRow) {
  const int32_t rows = std::min(canvas.height - firstRow, kBandRows);
  const int32_t reached = FindRowOffsets(scale, canvas.height, firstRow, rows, scratch.offsets);
  if (reached == 0) return 0;
  const uint32_t span = scratch.offsets[reached - 1] - scratch.offsets[0];
  const RowBlock band{scratch.offsets, reached, span / static_cast<uint32_t>(reached)};
  size_t tile = 0;
  FillTile(ring, jobs, 0, scratch.tiles[0]);
  for (size_t first = 0; first < jobs.size(); first += kTileColumns, tile ^= 1) {
    EchogramTile& nextTile = scratch.tiles[tile ^ 1];
    FillTile(ring, jobs, first + kTileColumns, nextTile);
    const auto count = static_cast<int32_t>(std::min(jobs.size() - first, size_t{kTileColumns}));
    PaintTile(scratch.tiles[tile], count, nextTile, band, colours, canvas.Row(firstRow), canvas.stride);
  }
  return reached;
}

}  // namespace

void BuildAmplitudeColours(const DisplayPalette& palette, AmplitudeColours& colours) {
  if (colours.stamp == palette.stamp) return;
  colours.stamp = palette.stamp;
  colours.background = palette.background;
  for (size_t i = 0; i < kPaletteEntries; ++i) {
    colours.pixels[i] =
        i < kFirstVisibleAmplitude ? colours.background : LoadLe<uint32_t>(palette.entries[i]);
  }
  std::fill(colours.pixels + kPaletteEntries, std::end(colours.pixels), colours.pixels[kMaxAmplitude]);
}

int32_t SlotOfColumn(int32_t x, int32_t width, int32_t newest, int32_t timeScale_s) {
  const double pingsPerColumn = timeScale_s * 10.0 / width;
  const double difference = newest - (width - x) * pingsPerColumn;
  return static_cast<int32_t>(static_cast<uint32_t>(static_cast<int64_t>(difference)) % kRingSlots);
}

int32_t ColumnOfAge(int64_t age, int32_t width, int32_t newest, int32_t timeScale_s) {
  const int64_t slotsInView = int64_t{timeScale_s} * 10;
  if (slotsInView <= 0 || age < 0 || age > std::min<int64_t>(slotsInView, newest)) return -1;
  return width - static_cast<int32_t>(age * width / slotsInView);
}

bool IsDrawable(const EchogramScale& scale, int32_t height) {
  return height > 0 && scale.range_mm > 0 && std::isfinite(scale.soundSpeed_mps) && scale.soundSpeed_mps > 0;
}

double SamplePosition(double y, const EchogramScale& scale, int32_t height) {
  const double range_m = scale.range_mm / 1000.0;
  return 2.0 * y * range_m * kGridFrequency_hz / (height * static_cast<double>(scale.soundSpeed_mps));
}

int32_t RenderColumns(const PingRing& ring, std::span<const ColumnJob> jobs, const EchogramScale& scale,
                      const AmplitudeColours& colours, EchogramScratch& scratch, const Canvas& canvas) {
  if (jobs.empty()) return 0;
  int32_t reached = 0;
  while (reached < canvas.height) {
    const int32_t more = RenderBand(ring, jobs, scale, colours, scratch, canvas, reached);
    reached += more;
    if (more < kBandRows) break;
  }
  return reached;
}

void RenderEchogram(const PingRing& ring, const EchogramScale& scale, const AmplitudeColours& colours,
                    EchogramScratch& scratch, const Canvas& image) {
  int32_t reached = 0;
  for (int32_t left = 0; left < image.width && IsDrawable(scale, image.height); left += kMaxJobs) {
    const int32_t count = std::min(image.width - left, kMaxJobs);
    for (int32_t i = 0; i < count; ++i) {
      const int32_t x = left + i;
      scratch.jobs[i] = {SlotOfColumn(x, image.width, scale.newest, scale.timeScale_s), x};
    }
    reached = RenderColumns(ring, {scratch.jobs, static_cast<size_t>(count)}, scale, colours, scratch, image);
  }
  FillRect(image, {0, reached, image.width, image.height}, colours.background);
}

}  // namespace tw
