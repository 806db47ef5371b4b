// Which bytes of a stretch of text are no decimal digits: a bit for each byte, the first byte's the lowest.
// Readers of long columns of numbers find the ends of many lines with it at once. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "base/bytes.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace tw {

inline constexpr size_t kMaskedBytes = 64;

// Eight bytes at a time, for every machine.
[[nodiscard]] inline uint64_t NonDigitsByWords(const uint8_t* bytes) {
  constexpr uint64_t kEach = 0x0101010101010101u;
  constexpr uint64_t kHigh = 0x80 * kEach;
  uint64_t mask = 0;
  for (unsigned i = 0; i < kMaskedBytes; i += 8) {
    const uint64_t word = LoadLe<uint64_t>(bytes + i) ^ ('0' * kEach);  // 0 to 9 where there is a digit
    const uint64_t flags = (((word & ~kHigh) + 0x76 * kEach) | word) & kHigh;  // from 10 on
    mask |= (((flags >> 7) * 0x0102040810204080u) >> 56) << i;                 // gathers the eight flags
  }
  return mask;
}

// `bytes`: 64 readable bytes.
[[nodiscard]] inline uint64_t NonDigits(const uint8_t* bytes) {
#if defined(__SSE2__)
  const __m128i zero = _mm_set1_epi8(static_cast<char>('0' + 128));  // the comparison is a signed one
  const __m128i nine = _mm_set1_epi8(static_cast<char>(9 - 128));
  uint64_t mask = 0;
  for (unsigned i = 0; i < kMaskedBytes; i += 16) {
    const __m128i text = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
    const __m128i others = _mm_cmpgt_epi8(_mm_sub_epi8(text, zero), nine);
    mask |= uint64_t{static_cast<uint32_t>(_mm_movemask_epi8(others))} << i;
  }
  return mask;
#else
  return NonDigitsByWords(bytes);
#endif
}

}  // namespace tw
