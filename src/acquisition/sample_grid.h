// Bringing samples of any rate onto the 100 kHz grid of the echogram: each is repeated, none is interpolated.
// Pure; any thread.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "acquisition/ping_ring.h"
#include "base/bytes.h"

namespace tw {

// How often a sample stands on the grid: 100,000 / frequency, truncated; 0 when the frequency is 0, negative
// or above that of the grid.
[[nodiscard]] constexpr size_t GridRepeat(int64_t frequency_hz) {
  if (frequency_hz <= 0 || frequency_hz > kGridFrequency_hz) return 0;
  return kGridFrequency_hz / static_cast<size_t>(frequency_hz);
}

// Where samples go: numbers in memory, or bytes in the order of files. Four() writes the same sample four
// times.
struct GridNumbers {
  uint16_t* out;
  void One(size_t at, uint16_t value) const { out[at] = value; }
  void Four(size_t at, uint16_t value) const {
    const uint64_t values = value * 0x0001'0001'0001'0001u;
    std::memcpy(out + at, &values, sizeof values);
  }
};
struct GridBytes {
  uint8_t* out;
  void One(size_t at, uint16_t value) const { StoreLe(out + 2 * at, value); }
  void Four(size_t at, uint16_t value) const {
    StoreLe<uint64_t>(out + 2 * at, value * 0x0001'0001'0001'0001u);
  }
};

// Writes samples 0 to count − 1, as `sampleAt` gives them, `repeat` times each, to at most `room` places;
// returns how many were written. Nothing is written beyond `room`, and the work is bounded by it.
template <typename SampleAt, typename Grid>
[[nodiscard]] size_t SpreadOntoGrid(size_t count, size_t repeat, size_t room, SampleAt sampleAt, Grid grid) {
  constexpr size_t kStep = 4;
  if (repeat == 0) return 0;
  if (repeat == 1) {
    const size_t used = std::min(count, room);
    for (size_t i = 0; i < used; ++i) grid.One(i, sampleAt(i));
    return used;
  }
  // Whole steps, whose excess the next sample overwrites, as long as they fit.
  const size_t width = (repeat + kStep - 1) / kStep * kStep;
  size_t sample = 0;
  size_t used = 0;
  for (; sample < count && used + width <= room; ++sample, used += repeat) {
    const uint16_t value = sampleAt(sample);
    for (size_t i = 0; i < width; i += kStep) grid.Four(used + i, value);
  }
  for (; sample < count && used < room; ++sample) {
    const uint16_t value = sampleAt(sample);
    for (const size_t end = std::min(used + repeat, room); used < end; ++used) grid.One(used, value);
  }
  return used;
}

}  // namespace tw
