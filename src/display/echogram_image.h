// The echogram: one column per image column, time from left to right, depth downwards, rendered from a ring
// straight into a 32-bit top-down picture. GUI thread. Nothing is allocated: the scratch memory is the
// caller's and is kept between paints.
#pragma once

#include <cstddef>
#include <cstdint>

#include "display/canvas.h"
#include "display/palette.h"
#include "display/ring_view.h"

namespace tw {

inline constexpr uint16_t kFirstVisibleAmplitude = 64;

// The pixel of each amplitude: black below kFirstVisibleAmplitude, else the palette's entry.
struct AmplitudeColours {
  Pixel pixels[kPaletteEntries];
};

void BuildAmplitudeColours(const DisplayPalette& palette, AmplitudeColours& colours);

// What part of a ring is shown, and how large.
struct EchogramScale {
  int32_t newest;       // index of the newest ping's slot
  int32_t timeScale_s;  // across the image's width
  int32_t range_mm;     // down the image's height
  float soundSpeed_mps;
};

inline constexpr int32_t kTileColumns = 16;
inline constexpr int32_t kBandRows = 2'048;

// Work memory of RenderEchogram; its content means nothing between calls.
struct EchogramScratch {
  uint32_t offsets[kBandRows];           // of each row's sample, in bytes
  SlotSamples columns[2][kTileColumns];  // of the tile being painted and of the next one
};

// The slot that column x of an image `width` columns wide shows: the rightmost shows the newest less one
// column's worth of pings.
// kept: a column older than index 0 is the unsigned value of the negative difference modulo the ring's size,
// not the ring's wrap (2^32 is no multiple of 10,000).
[[nodiscard]] int32_t SlotOfColumn(int32_t x, int32_t width, int32_t newest, int32_t timeScale_s);

// False when range, sound speed or height is 0 or less, or not a number.
[[nodiscard]] bool IsDrawable(const EchogramScale& scale, int32_t height);

// The sample, with its fraction, at row y (which may have one too) of an image `height` rows high. Only for a
// scale that is drawable; may be infinite.
[[nodiscard]] double SamplePosition(double y, const EchogramScale& scale, int32_t height);

// Fills the whole image. A row whose sample lies beyond the slot, and all of an image whose scale cannot be
// drawn, is black.
void RenderEchogram(const PingRing& ring, const EchogramScale& scale, const AmplitudeColours& colours,
                    EchogramScratch& scratch, const Canvas& image);

}  // namespace tw
