// The echo text block of the first device family, one ping. Lines end in CR LF:
//
//   #DeviceID KT-1042          the keys stand in any order, each with one blank and its value
//   #TimeWork 12.5             whole seconds, milliseconds: 12 s 5 ms
//   #NSamples 3                0 to 50,000
//   #OutputMode 4
//   #Sampling_Frequency,Hz 25000
//   #Altitude 4.250            metres
//   #Temperature 11.40
//   #Pitch,deg 1.20
//   #Roll,deg -0.35
//   #Ping 17
//   #Tx_Frequency,Hz 200000
//   ##DataStart
//   12                         one sample a line, in decimal
//   7
//   4011
//                              two empty lines end the block
//
// A key that is missing, or whose value is no finite number in range, keeps the value it had; the sampling
// and the transmit frequency then take the configured ones. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace tw {

inline constexpr int32_t kMaxTextSamples = 50'000;

struct EchoTextHeader {
  uint32_t deviceSeconds;
  uint32_t deviceMilliseconds;
  int32_t sampleCount;
  int32_t outputMode;
  int32_t samplingFrequency_hz;
  float altitude_m;
  float temperature_c;
  float pitch_deg;
  float roll_deg;
  uint32_t ping;
  int32_t txFrequency_hz;
};

struct ParsedEchoText {
  bool hasTxFrequency;         // the block itself said so
  std::string_view dataLines;  // from the CR LF behind "##DataStart" on; empty when there is none
};

// Reads the keys of a whole block. `header` holds the previous block's values on entry and this one's after.
ParsedEchoText ParseEchoTextHeader(std::string_view block, int32_t configuredSampling_hz,
                                   int32_t configuredTx_hz, EchoTextHeader& header);

// Reads up to `samples.size()` sample lines; returns how many lines it took. A line that holds no number from
// 0 to 65,535 (an empty one too) counts and leaves its sample as it was, so that one damaged line does not
// shift the others.
size_t ReadSampleLines(std::string_view dataLines, std::span<uint16_t> samples);

}  // namespace tw
