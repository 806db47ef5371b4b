// What a device sends for one ping in each of its output modes. A mode is a row of one of the
// files stream_*.cpp, beside the form of its messages; a mode without a row cannot be chosen.
// Pure; any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "simulator/sounder_options.h"
#include "simulator/stream_message.h"

namespace tw::sim {

// The sentences that an NMEA epoch holds.
struct SentenceChoice {
  bool dateAndTime = true;
  bool depth = true;
  bool depthOfWater = false;  // DPT beside DBT
  bool attitude = true;
  bool temperature = true;
  bool ema = true;        // its last one: without it the epoch has no end
  bool depthZero = true;  // no bottom is the depth 0; else the fields are empty
};

// One ping of one channel, or of both, as the device reports it. Decimal values are whole hundredths or
// millimetres, so that the printed text is exactly the value.
struct PingReport {
  std::string_view identity;
  uint32_t time_s;
  uint32_t time_ms;  // below 1,000
  int32_t outputMode;
  int32_t samplingFrequency_hz;
  int32_t resolution_um;  // water per sample
  int32_t range_mm;
  int32_t altitude_mm;     // 0: no bottom
  int32_t altitudeLow_mm;  // of the low frequency when both are in use, else 0
  int32_t temperature_centi;
  int32_t pitch_centi;
  int32_t roll_centi;
  int32_t ema_centi;
  uint32_t number;
  int32_t txFrequency_hz;
  bool secondChannel;     // the low frequency while both are in use
  bool reportsFrequency;  // lines and epochs tell the transmit frequency
  int32_t channels;       // whose samples follow each other: 1 or 2
  SentenceChoice sentences;
  std::span<const uint16_t> samples;  // at most 4,095 each, on the mode's own scale
};

struct BlockShape {
  BlockFault fault = BlockFault::none;
  std::string_view missingKey;
};

enum class StreamKind : uint8_t { echoText, epoch, line, block, compandedBlock, frame };

struct StreamMode {
  int32_t outputMode;
  StreamKind kind;
  void (*append)(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
  int32_t sampleBits;    // of an amplitude; 0: the mode has no samples
  int32_t fixedSamples;  // their number; 0: it follows from the range
  bool tellsTime;        // the message holds the device's time
  bool joint;            // one message a ping, for both channels
};

// Null for a mode that the family cannot stream.
[[nodiscard]] const StreamMode* FindStreamMode(DeviceFamily family, int32_t outputMode);

// All modes of a family, ascending.
[[nodiscard]] std::span<const StreamMode> StreamModesOf(DeviceFamily family);

// How the binary modes look in a form other than the device's own block; null for that one.
[[nodiscard]] const StreamMode* FindBinaryForm(BinaryForm form);

}  // namespace tw::sim
