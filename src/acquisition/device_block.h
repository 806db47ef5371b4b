// The "TIDEWRITEC" block: one ping as the device sends it in the binary modes. Integers little-endian, floats
// IEEE-754 single precision, offsets from the first byte of the magic:
//
//   54 49 44 45 57 52 49 54 45 43   "TIDEWRITEC"
//   42 00 00 00                     total length, these 14 bytes included: 66
//   ...                             the fields below
//   0C 40 7F FF                     four samples of one byte: 12, 65, 255, 4,095
//
// Samples of one byte are companded: expanded to 0 to 4,095 by kCompanding. The ping made of a block
// describes its samples as they stand in ring and record file: on the 100 kHz grid.
//
// Getting back in step: frame_reader.h. A block is 62 to 256,000 bytes long, of one of the two sample
// formats, and holds all the samples that it counts. Anything else is no block. Pure; any thread.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "acquisition/frame_reader.h"
#include "acquisition/ping_record.h"
#include "acquisition/ping_ring.h"
#include "acquisition/stream_form.h"

namespace tw {

namespace device_block {
inline constexpr char kMagic[] = "TIDEWRITEC";
inline constexpr size_t kMagicSize = 10;
inline constexpr size_t kTotalLength = 10;         // uint32
inline constexpr size_t kDeviceSeconds = 14;       // uint32
inline constexpr size_t kDeviceMilliseconds = 18;  // uint32
inline constexpr size_t kPing = 22;                // uint32
inline constexpr size_t kAltitude = 26;            // float, m
inline constexpr size_t kTemperature = 30;         // float, degrees Celsius
inline constexpr size_t kPitch = 34;               // float, degrees
inline constexpr size_t kRoll = 38;                // float, degrees
inline constexpr size_t kSampleFormat = 42;        // int32, see below
inline constexpr size_t kSampleCount = 46;         // int32
inline constexpr size_t kDeviceValue = 50;         // int32, the device's own business
inline constexpr size_t kTxFrequency = 54;         // int32, Hz
inline constexpr size_t kSamplingFrequency = 58;   // int32, Hz
inline constexpr size_t kSamples = 62;
static_assert(sizeof kMagic == kMagicSize + 1 && kTotalLength == kMagicSize);
static_assert(kSamplingFrequency + 4 == kSamples);

inline constexpr int32_t kWords = 0;      // samples of 16 bits
inline constexpr int32_t kCompanded = 1;  // of 8
}  // namespace device_block

// The amplitude of each companded code: the code itself up to 63; above it six segments of 32 codes, segment
// k beginning at 2^(k+6) − 1 and growing by 2^(k+1) a code.
inline constexpr auto kCompanding = [] {
  constexpr size_t kLinear = 63;
  constexpr size_t kSegment = 32;
  std::array<uint16_t, 256> table{};
  for (size_t code = 0; code < table.size(); ++code) {
    const size_t above = code > kLinear ? code - kLinear : 0;
    const size_t k = above / kSegment;
    const size_t value = above == 0 ? code : (size_t{64} << k) - 1 + (above % kSegment) * (size_t{2} << k);
    table[code] = static_cast<uint16_t>(value);
  }
  return table;
}();
static_assert(kCompanding[95] == 127 && kCompanding[223] == 2'047 && kCompanding[255] == kMaxAmplitude);

extern const FrameFormat kDeviceBlocks;

extern const StreamForm kBlockStream;  // recorded as "TR57" frames

// Reads a block as FrameReader gives it. `header` holds the previous ping's values on entry; a number that is
// not finite stands as it was. Its sampling frequency becomes that of the grid, its sample count the number
// of samples on the grid, which the front of `grid` then holds; what lies beyond the slot is cut. A device's
// sampling frequency of 0 or less, or above the grid's, gives none. False, with nothing touched, for bytes
// that are no block.
[[nodiscard]] bool ParseDeviceBlock(std::string_view bytes, PingHeader& header,
                                    std::span<uint16_t, kMaxSlotSamples> grid);

}  // namespace tw
