// Reading ring slots that a worker may be writing at this moment: mixed data for one paint is accepted, a
// read outside the slot is not. Nothing else in the display touches slot bytes; the loops that do are exempt
// from race detection. GUI thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "acquisition/ping_ring.h"
#include "display/canvas.h"

namespace tw {

// The header values that the view shows.
struct ShownPing {
  uint32_t time_s;  // since 1970-01-01 00:00:00 UTC
  float altitude_m;
  float temperature_c;
  float pitch_deg;  // kNoAttitude or more: none
  float roll_deg;
};

// Where the samples of a slot stand.
struct SlotSamples {
  const uint8_t* first;
  size_t count;  // readable samples, at most kMaxSlotSamples
};

// The slot at any index; an index outside the ring is taken modulo its size, a negative one is slot 0.
[[nodiscard]] const uint8_t* SlotAt(const PingRing& ring, int32_t index);

// Whether a ping has been stored there since the ring was cleared.
[[nodiscard]] bool HoldsPing(const uint8_t* slot);

[[nodiscard]] ShownPing ReadShownPing(const uint8_t* slot);
[[nodiscard]] PingHeader ReadHeader(const uint8_t* slot);

// Sample `index` of a slot; 0 where it holds none.
[[nodiscard]] uint16_t ReadSample(const uint8_t* slot, size_t index);

// Samples stand 640 bytes behind the header's end. A header length outside 36 to 4,096 (a zeroed slot has 0)
// counts as the 88 that this program writes.
[[nodiscard]] SlotSamples FindSamples(const uint8_t* slot);

// Paints one column a slot, column i at out + columns[i]: pixel y of a column is pixels[amplitude of the
// sample at byte offset offsets[y] behind `first`], with a pixel for each 16-bit value. The caller has
// checked that every sample lies inside its slot. Four slots go faster than four times one, since they share
// offsets and row.
inline constexpr int32_t kGroupColumns = 4;
void PaintColumns(const SlotSamples* slots, const int32_t* columns, const uint32_t* offsets, int32_t rows,
                  const Pixel* pixels, Pixel* out, ptrdiff_t stride);
void PaintColumn(const SlotSamples& slot, const uint32_t* offsets, int32_t rows, const Pixel* pixels,
                 Pixel* out, ptrdiff_t stride);

// amplitudes[i] = sample i for i below `count`, not clamped; samples beyond the slot's reach are 0.
void CopyAmplitudes(const SlotSamples& samples, size_t count, uint16_t* amplitudes);

}  // namespace tw
