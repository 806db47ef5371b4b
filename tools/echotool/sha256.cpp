#include "tools/echotool/sha256.h"

#include <algorithm>
#include <bit>

#include "base/bytes.h"
#if defined(__x86_64__)
#include <cpuid.h>
#include <immintrin.h>
#endif

namespace tw::echotool {
namespace {

using State = std::array<uint32_t, 8>;

alignas(16) constexpr uint32_t kRounds[64] = {
    0x428a2f98, 0x71374491, 0xb5c0fbcf, 0xe9b5dba5, 0x3956c25b, 0x59f111f1, 0x923f82a4, 0xab1c5ed5,
    0xd807aa98, 0x12835b01, 0x243185be, 0x550c7dc3, 0x72be5d74, 0x80deb1fe, 0x9bdc06a7, 0xc19bf174,
    0xe49b69c1, 0xefbe4786, 0x0fc19dc6, 0x240ca1cc, 0x2de92c6f, 0x4a7484aa, 0x5cb0a9dc, 0x76f988da,
    0x983e5152, 0xa831c66d, 0xb00327c8, 0xbf597fc7, 0xc6e00bf3, 0xd5a79147, 0x06ca6351, 0x14292967,
    0x27b70a85, 0x2e1b2138, 0x4d2c6dfc, 0x53380d13, 0x650a7354, 0x766a0abb, 0x81c2c92e, 0x92722c85,
    0xa2bfe8a1, 0xa81a664b, 0xc24b8b70, 0xc76c51a3, 0xd192e819, 0xd6990624, 0xf40e3585, 0x106aa070,
    0x19a4c116, 0x1e376c08, 0x2748774c, 0x34b0bcb5, 0x391c0cb3, 0x4ed8aa4a, 0x5b9cca4f, 0x682e6ff3,
    0x748f82ee, 0x78a5636f, 0x84c87814, 0x8cc70208, 0x90befffa, 0xa4506ceb, 0xbef9a3f7, 0xc67178f2};

uint32_t LoadBe(const uint8_t* bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

void CompressPlainly(State& state, const uint8_t* block) {
  uint32_t w[64];
  for (size_t i = 0; i < 16; ++i) w[i] = LoadBe(block + 4 * i);
  for (size_t i = 16; i < 64; ++i) {
    const uint32_t low = std::rotr(w[i - 15], 7) ^ std::rotr(w[i - 15], 18) ^ w[i - 15] >> 3;
    const uint32_t high = std::rotr(w[i - 2], 17) ^ std::rotr(w[i - 2], 19) ^ w[i - 2] >> 10;
    w[i] = w[i - 16] + low + w[i - 7] + high;
  }
  auto [a, b, c, d, e, f, g, h] = state;
  for (size_t i = 0; i < 64; ++i) {
    const uint32_t t1 = h + (std::rotr(e, 6) ^ std::rotr(e, 11) ^ std::rotr(e, 25)) + ((e & f) ^ (~e & g)) +
                        kRounds[i] + w[i];
    const uint32_t t2 =
        (std::rotr(a, 2) ^ std::rotr(a, 13) ^ std::rotr(a, 22)) + ((a & b) ^ (a & c) ^ (b & c));
    h = g, g = f, f = e, e = d + t1, d = c, c = b, b = a, a = t1 + t2;
  }
  const State sum = {a, b, c, d, e, f, g, h};
  for (size_t i = 0; i < sum.size(); ++i) state[i] += sum[i];
}

#if defined(__x86_64__)
#define TW_SHA_CODE __attribute__((target("sha,ssse3,sse4.1")))

bool HasInstructions() {
  unsigned a = 0;
  unsigned b = 0;
  unsigned c = 0;
  unsigned d = 0;
  constexpr unsigned kShaExtensions = 1U << 29;
  constexpr unsigned kSsse3AndSse41 = 1U << 9 | 1U << 19;
  if (__get_cpuid_count(7, 0, &a, &b, &c, &d) == 0 || (b & kShaExtensions) == 0) return false;
  return __get_cpuid(1, &a, &b, &c, &d) != 0 && (c & kSsse3AndSse41) == kSsse3AndSse41;
}

// Four rounds; the instructions keep the state as a b e f and c d g h.
TW_SHA_CODE inline void FourRounds(__m128i& abef, __m128i& cdgh, __m128i words, size_t first) {
  const __m128i sum = _mm_add_epi32(words, _mm_load_si128(reinterpret_cast<const __m128i*>(kRounds + first)));
  cdgh = _mm_sha256rnds2_epu32(cdgh, abef, sum);
  abef = _mm_sha256rnds2_epu32(abef, cdgh, _mm_shuffle_epi32(sum, 0x0E));
}

// The four words behind sixteen, in place of the first of them.
TW_SHA_CODE inline void NextWords(__m128i& w0, __m128i w1, __m128i w2, __m128i w3) {
  const __m128i sum = _mm_add_epi32(_mm_sha256msg1_epu32(w0, w1), _mm_alignr_epi8(w3, w2, 4));
  w0 = _mm_sha256msg2_epu32(sum, w3);
}

TW_SHA_CODE inline __m128i FourWords(const uint8_t* bytes) {
  const __m128i order = _mm_set_epi64x(0x0c0d0e0f08090a0b, 0x0405060700010203);
  return _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)), order);
}

TW_SHA_CODE void CompressByInstructions(State& state, const uint8_t* blocks, size_t count) {
  auto* const halves = reinterpret_cast<__m128i*>(state.data());
  const __m128i cdab = _mm_shuffle_epi32(_mm_loadu_si128(halves), 0xB1);
  const __m128i efgh = _mm_shuffle_epi32(_mm_loadu_si128(halves + 1), 0x1B);
  __m128i abef = _mm_alignr_epi8(cdab, efgh, 8);
  __m128i cdgh = _mm_blend_epi16(efgh, cdab, 0xF0);
  for (; count != 0; --count, blocks += 64) {
    const __m128i abefBefore = abef;
    const __m128i cdghBefore = cdgh;
    __m128i w0 = FourWords(blocks);
    __m128i w1 = FourWords(blocks + 16);
    __m128i w2 = FourWords(blocks + 32);
    __m128i w3 = FourWords(blocks + 48);
    for (size_t round = 0;; round += 16) {
      FourRounds(abef, cdgh, w0, round);
      FourRounds(abef, cdgh, w1, round + 4);
      FourRounds(abef, cdgh, w2, round + 8);
      FourRounds(abef, cdgh, w3, round + 12);
      if (round == 48) break;
      NextWords(w0, w1, w2, w3);
      NextWords(w1, w2, w3, w0);
      NextWords(w2, w3, w0, w1);
      NextWords(w3, w0, w1, w2);
    }
    abef = _mm_add_epi32(abef, abefBefore);
    cdgh = _mm_add_epi32(cdgh, cdghBefore);
  }
  const __m128i feba = _mm_shuffle_epi32(abef, 0x1B);
  const __m128i dchg = _mm_shuffle_epi32(cdgh, 0xB1);
  _mm_storeu_si128(halves, _mm_blend_epi16(feba, dchg, 0xF0));
  _mm_storeu_si128(halves + 1, _mm_alignr_epi8(dchg, feba, 8));
}
#endif

void Compress(State& state, const uint8_t* blocks, size_t count, [[maybe_unused]] bool plain) {
#if defined(__x86_64__)
  static const bool hasInstructions = HasInstructions();
  if (hasInstructions && !plain) {
    CompressByInstructions(state, blocks, count);
    return;
  }
#endif
  for (; count != 0; --count, blocks += 64) CompressPlainly(state, blocks);
}

}  // namespace

void Sha256::Add(std::span<const uint8_t> bytes) {
  const size_t held = size_ % kBlock;
  size_ += bytes.size();
  if (held != 0) {
    const size_t taken = std::min(kBlock - held, bytes.size());
    std::copy_n(bytes.begin(), taken, pending_.begin() + static_cast<std::ptrdiff_t>(held));
    bytes = bytes.subspan(taken);
    if (held + taken < kBlock) return;
    Compress(state_, pending_.data(), 1, plain_);
  }
  Compress(state_, bytes.data(), bytes.size() / kBlock, plain_);
  bytes = bytes.last(bytes.size() % kBlock);
  std::copy(bytes.begin(), bytes.end(), pending_.begin());
}

std::string Sha256::Hex() {
  uint8_t bits[8];
  StoreBe(bits, size_ * 8);
  static constexpr uint8_t kEnd[kBlock] = {0x80};
  const size_t held = size_ % kBlock;
  const size_t room = kBlock - sizeof bits;  // for what stands ahead of the length
  Add(std::span(kEnd).first(held < room ? room - held : kBlock + room - held));
  Add(bits);
  std::string hex;
  for (const uint32_t word : state_)
    for (int shift = 28; shift >= 0; shift -= 4) hex += "0123456789abcdef"[word >> shift & 0xF];
  return hex;
}

}  // namespace tw::echotool
