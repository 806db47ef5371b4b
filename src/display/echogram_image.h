// The echogram: one column per image column, time from left to right, depth downwards, rendered from a ring
// straight into a 32-bit top-down picture. GUI thread. Nothing is allocated: the scratch memory is the
// caller's and is kept between paints.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "display/canvas.h"
#include "display/palette.h"
#include "display/ring_view.h"

namespace tw {

inline constexpr uint16_t kFirstVisibleAmplitude = 64;

// The pixel of each 16-bit sample: the background below kFirstVisibleAmplitude, else the palette's entry; the
// last one stands for all samples beyond kMaxAmplitude too, so that nothing has to be compared while a column
// is painted.
inline constexpr size_t kSampleValues = 65'536;
struct AmplitudeColours {
  Pixel pixels[kSampleValues];
  Pixel background;
  uint32_t stamp = 0;  // of the palette that they were built from
};

// Does nothing when they were built from a palette of this stamp.
void BuildAmplitudeColours(const DisplayPalette& palette, AmplitudeColours& colours);

// What part of a ring is shown, and how large.
struct EchogramScale {
  int32_t newest;       // index of the newest ping's slot
  int32_t timeScale_s;  // across the image's width
  int32_t range_mm;     // down the image's height
  float soundSpeed_mps;
};

// A slot to be painted, and the column of a canvas that it goes to.
struct ColumnJob {
  int32_t slot;
  int32_t column;
};

inline constexpr int32_t kTileColumns = 16;
struct EchogramTile {
  SlotSamples samples[kTileColumns];
  int32_t columns[kTileColumns];
};

inline constexpr int32_t kBandRows = 2'048;
inline constexpr int32_t kMaxJobs = 4'096;

// Work memory of the functions below; its content means nothing between calls.
struct EchogramScratch {
  uint32_t offsets[kBandRows];  // of each row's sample, in bytes
  EchogramTile tiles[2];        // the one being painted and the next one
  ColumnJob jobs[kMaxJobs];
};

// The slot that column x of an image `width` columns wide shows: the rightmost shows the newest less one
// column's worth of pings.
// kept: a column older than index 0 is the unsigned value of the negative difference modulo the ring's size,
// not the ring's wrap (2^32 is no multiple of 10,000).
[[nodiscard]] int32_t SlotOfColumn(int32_t x, int32_t width, int32_t newest, int32_t timeScale_s);

// The other way round: the column of the slot that lies `age` slots behind the newest. Where columns are
// coarser than slots and none shows that one, it is the column of the next newer slot shown. The newest
// itself counts as column `width`. Negative when that place is out of view or to the left of index 0, where
// the image shows other slots.
[[nodiscard]] int32_t ColumnOfAge(int64_t age, int32_t width, int32_t newest, int32_t timeScale_s);

// False when range, sound speed or height is 0 or less, or not a number.
[[nodiscard]] bool IsDrawable(const EchogramScale& scale, int32_t height);

// The sample, with its fraction, at row y (which may have one too) of an image `height` rows high. Only for a
// scale that is drawable; may be infinite.
[[nodiscard]] double SamplePosition(double y, const EchogramScale& scale, int32_t height);

// Paints slots into columns of a canvas; rows without a sample stay as they are. Returns how many rows, from
// the top, have one. The scale must be drawable for the canvas' height.
int32_t RenderColumns(const PingRing& ring, std::span<const ColumnJob> jobs, const EchogramScale& scale,
                      const AmplitudeColours& colours, EchogramScratch& scratch, const Canvas& canvas);

// Fills the whole image. A row whose sample lies beyond the slot, and all of an image whose scale cannot be
// drawn, is background.
void RenderEchogram(const PingRing& ring, const EchogramScale& scale, const AmplitudeColours& colours,
                    EchogramScratch& scratch, const Canvas& image);

}  // namespace tw
