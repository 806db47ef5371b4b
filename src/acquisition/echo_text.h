// The echo text block, one ping. Lines end in CR LF. Left the first device family, right the others where
// their keys differ:
//
//   #DeviceID KT-1042                                     the keys stand in any order, each with one blank
//   #TimeWork 12.5                                        and its value; whole seconds, milliseconds
//   #NSamples 3                                           0 to 50,000
//                                 #Resolution,mm 7.5
//   #OutputMode 4
//   #Sampling_Frequency,Hz 25000  (none)
//   #Altitude 4.250               #Altitude,m 4.250
//   #Temperature 11.40            #Temperature,°C 11.40   the degree sign is the one byte B0
//   #Pitch,deg 1.20
//   #Roll,deg -0.35
//   #Ping 17
//   #Tx_Frequency,Hz 200000
//   ##DataStart
//   12                                                    one sample a line, in decimal
//   7
//   4011
//                                                         two empty lines end the block
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

// Whose keys a block has.
enum class EchoTextKeys : uint8_t { firstFamily, otherFamilies };

struct EchoTextHeader {
  uint32_t deviceSeconds;
  uint32_t deviceMilliseconds;
  int32_t sampleCount;
  float resolution_mm;  // the other families' alone
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
  bool hasSampling;            // the block itself said so
  bool hasTxFrequency;         // likewise
  std::string_view dataLines;  // from the CR LF behind "##DataStart" on; empty when there is none
};

// Reads the keys of a whole block. `header` holds the previous block's values on entry and this one's after.
ParsedEchoText ParseEchoTextHeader(EchoTextKeys keys, std::string_view block, int32_t configuredSampling_hz,
                                   int32_t configuredTx_hz, EchoTextHeader& header);

// Whose keys a block has, told by those that one side alone knows; `otherwise` when it has none of them.
[[nodiscard]] EchoTextKeys KeysOfBlock(std::string_view block, EchoTextKeys otherwise);

// Reads up to `samples.size()` sample lines; returns how many lines it took. A line that holds no number from
// 0 to 65,535 (an empty one too) counts and leaves its sample as it was, so that one damaged line does not
// shift the others.
size_t ReadSampleLines(std::string_view dataLines, std::span<uint16_t> samples);

}  // namespace tw
