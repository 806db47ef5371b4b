// SEG-Y revision 1 as this program writes it: textual header (segy_text_header.h), binary header, then one
// trace a ping, a trace header and its samples. All values big-endian. Byte numbers are those of the SEG-Y
// standard: from 3201 for the binary header, from 1 within each trace header. Pure; any thread.
//
//   bytes 1-3200      40 cards in EBCDIC
//   bytes 3201-3600   binary header: sampling and length of the first ping
//   then per ping     240 bytes of trace header, 2 bytes a sample
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "acquisition/ping_record.h"

namespace tw {

inline constexpr size_t kSegyBinaryHeaderSize = 400;
inline constexpr size_t kSegyTraceHeaderSize = 240;
inline constexpr uint32_t kMaxSegyField = 32'767;  // of the 16-bit fields; larger values are written as this

// Samples of a trace that a reader of its header will look for; what a ping has beyond is left out.
[[nodiscard]] constexpr uint32_t SegyTraceLength(uint32_t samples) {
  return samples < kMaxSegyField ? samples : kMaxSegyField;
}

// `samplingFrequency_hz` is above 0. `fixedLength` says that all traces have `sampleCount` samples.
void BuildSegyBinaryHeader(std::span<uint8_t, kSegyBinaryHeaderSize> header, uint32_t samplingFrequency_hz,
                           uint32_t sampleCount, bool fixedLength);

struct SegyTrace {
  uint32_t number;       // within the file, from 1
  uint32_t sampleCount;  // written behind the header
  float soundSpeed_mps;
  bool numbered;  // inline 1, crossline `number` (bytes 189 to 196), for readers that want a geometry
};

// `ping` has a sampling frequency above 0. A position that is no number or lies beyond the coordinates'
// range is written as 0 or as the nearest bound.
void BuildSegyTraceHeader(std::span<uint8_t, kSegyTraceHeaderSize> header, const PingHeader& ping,
                          const SegyTrace& trace);

// Two bytes a sample; `out` has room for them.
void StoreSegySamples(std::span<const uint16_t> samples, uint8_t* out);

}  // namespace tw
