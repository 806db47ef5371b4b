#include "acquisition/sample_grid.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <cstring>

namespace tw {
namespace {

#if defined(__SSE2__)

constexpr size_t kLanes = 8;

// Eight samples twice or four times each: the rates that devices really have. Returns how many samples were
// taken.
size_t SpreadTwice(const uint16_t* samples, size_t count, uint16_t* out) {
  size_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + i));
    auto* const to = reinterpret_cast<__m128i*>(out + 2 * i);
    _mm_storeu_si128(to, _mm_unpacklo_epi16(eight, eight));
    _mm_storeu_si128(to + 1, _mm_unpackhi_epi16(eight, eight));
  }
  return i;
}

size_t SpreadFourTimes(const uint16_t* samples, size_t count, uint16_t* out) {
  size_t i = 0;
  for (; i + kLanes <= count; i += kLanes) {
    const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + i));
    const __m128i low = _mm_unpacklo_epi16(eight, eight);
    const __m128i high = _mm_unpackhi_epi16(eight, eight);
    auto* const to = reinterpret_cast<__m128i*>(out + 4 * i);
    _mm_storeu_si128(to, _mm_unpacklo_epi32(low, low));
    _mm_storeu_si128(to + 1, _mm_unpackhi_epi32(low, low));
    _mm_storeu_si128(to + 2, _mm_unpacklo_epi32(high, high));
    _mm_storeu_si128(to + 3, _mm_unpackhi_epi32(high, high));
  }
  return i;
}

// A product's upper half that is not zero fills the lower one.
size_t ScaleFast(const uint16_t* samples, uint16_t factor, std::span<uint16_t> scaled) {
  const __m128i factors = _mm_set1_epi16(static_cast<int16_t>(factor));
  const __m128i ones = _mm_set1_epi16(-1);
  size_t i = 0;
  for (; i + kLanes <= scaled.size(); i += kLanes) {
    const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(samples + i));
    const __m128i fits = _mm_cmpeq_epi16(_mm_mulhi_epu16(eight, factors), _mm_setzero_si128());
    const __m128i product = _mm_or_si128(_mm_mullo_epi16(eight, factors), _mm_xor_si128(fits, ones));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(scaled.data() + i), product);
  }
  return i;
}

#else

size_t ScaleFast(const uint16_t*, uint16_t, std::span<uint16_t>) {
  return 0;
}

#endif

// Whole steps of four, whose excess the next sample overwrites, as long as they fit.
size_t SpreadInSteps(const uint16_t* samples, size_t count, size_t repeat, std::span<uint16_t> grid) {
  constexpr size_t kStep = 4;
  const size_t width = (repeat + kStep - 1) / kStep * kStep;
  size_t sample = 0;
  uint16_t* out = grid.data();
  const size_t fitting = grid.size() < width ? 0 : (grid.size() - width) / repeat + 1;
  for (; sample < std::min(count, fitting); ++sample, out += repeat) {
    const uint64_t four = samples[sample] * uint64_t{0x0001'0001'0001'0001};
    for (size_t i = 0; i < width; i += kStep) std::memcpy(out + i, &four, sizeof four);
  }
  return sample;
}

size_t SpreadFast(const uint16_t* samples, size_t count, size_t repeat, std::span<uint16_t> grid) {
#if defined(__SSE2__)
  const size_t fitting = std::min(count, grid.size() / repeat);
  if (repeat == 2) return SpreadTwice(samples, fitting, grid.data());
  if (repeat == 4) return SpreadFourTimes(samples, fitting, grid.data());
#endif
  return SpreadInSteps(samples, count, repeat, grid);
}

}  // namespace

void ScaleSamples(const uint16_t* samples, uint16_t factor, std::span<uint16_t> scaled) {
  for (size_t i = ScaleFast(samples, factor, scaled); i < scaled.size(); ++i) {
    scaled[i] = static_cast<uint16_t>(std::min<uint32_t>(uint32_t{samples[i]} * factor, UINT16_MAX));
  }
}

size_t SpreadOntoGrid(std::span<const uint16_t> samples, size_t repeat, std::span<uint16_t> grid) {
  if (repeat == 0) return 0;
  if (repeat == 1) {
    const size_t used = std::min(samples.size(), grid.size());
    std::copy_n(samples.begin(), used, grid.begin());
    return used;
  }
  size_t sample = SpreadFast(samples.data(), samples.size(), repeat, grid);
  size_t used = sample * repeat;
  for (; sample < samples.size() && used < grid.size(); ++sample) {
    const size_t end = std::min(used + repeat, grid.size());
    std::fill(grid.data() + used, grid.data() + end, samples[sample]);
    used = end;
  }
  return used;
}

}  // namespace tw
