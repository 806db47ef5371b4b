// Bringing samples of any rate onto the 100 kHz grid of the echogram: each is repeated, none is interpolated.
// Pure; any thread.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <span>

#include "acquisition/ping_ring.h"

namespace tw {

// How often a sample stands on the grid: 100,000 / frequency, truncated; 0 when the frequency is 0, negative
// or above that of the grid.
[[nodiscard]] constexpr size_t GridRepeat(int64_t frequency_hz) {
  if (frequency_hz <= 0 || frequency_hz > kGridFrequency_hz) return 0;
  return kGridFrequency_hz / static_cast<size_t>(frequency_hz);
}

// Writes each sample `repeat` times; what does not fit into the grid is left out. Returns how many places are
// filled; what stands behind them in the grid afterwards is no sample.
[[nodiscard]] size_t SpreadOntoGrid(std::span<const uint16_t> samples, size_t repeat,
                                    std::span<uint16_t> grid);

// Multiplies the samples, which are as many as `scaled` has room for; what is above 65,535 becomes that.
void ScaleSamples(const uint16_t* samples, uint16_t factor, std::span<uint16_t> scaled);

// SpreadOntoGrid of samples that have to be made first: `decode(first, samples)` fills a span with the
// samples from number `first` on. Not more than the grid needs are made.
template <typename Decode>
[[nodiscard]] size_t DecodeOntoGrid(size_t count, size_t repeat, std::span<uint16_t> grid, Decode decode) {
  if (repeat == 0) return 0;
  if (repeat == 1) {
    const size_t used = std::min(count, grid.size());
    decode(0, grid.first(used));
    return used;
  }
  uint16_t samples[256];
  size_t used = 0;
  for (size_t first = 0; first < count && used < grid.size(); first += std::size(samples)) {
    const std::span<uint16_t> part(samples, std::min(count - first, std::size(samples)));
    decode(first, part);
    used += SpreadOntoGrid(part, repeat, grid.subspan(used));
  }
  return used;
}

}  // namespace tw
