// What a device sends for one ping in each of its output modes. A mode is a row of the table in
// echo_stream.cpp; a mode without a row cannot be chosen. Pure; any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

#include "simulator/sounder_options.h"

namespace tw::sim {

// One ping of one channel as the device reports it. Decimal values are whole hundredths or millimetres, so
// that the printed text is exactly the value.
struct PingReport {
  std::string_view identity;
  uint32_t time_s;
  uint32_t time_ms;  // below 1,000
  int32_t outputMode;
  int32_t samplingFrequency_hz;
  int32_t altitude_mm;  // 0: no bottom
  int32_t temperature_centi;
  int32_t pitch_centi;
  int32_t roll_centi;
  uint32_t number;
  int32_t txFrequency_hz;
  std::span<const uint16_t> samples;  // at most 4,095 each, on the mode's own scale
};

struct BlockShape {
  BlockFault fault = BlockFault::none;
  std::string_view missingKey;
};

struct StreamMode {
  DeviceFamily family;
  int32_t outputMode;
  int32_t sampleBits;  // of an amplitude
  void (*append)(const PingReport& ping, const BlockShape& shape, std::vector<uint8_t>& out);
};

// Null for a mode that the family cannot stream.
[[nodiscard]] const StreamMode* FindStreamMode(DeviceFamily family, int32_t outputMode);

}  // namespace tw::sim
