// The forms of a device's messages. A file of forms holds the rows of the modes that send them, for the first
// family and for the others, which send the same; echo_stream.cpp brings them together. Pure; any thread.
#pragma once

#include <cstdint>
#include <span>

#include "simulator/echo_stream.h"

namespace tw::sim {

struct StreamRows {
  std::span<const StreamMode> first;
  std::span<const StreamMode> others;
};

extern const StreamRows kTextRows;   // stream_text.cpp: echo samples as text
extern const StreamRows kBlockRows;  // stream_frames.cpp: echo samples in binary
extern const StreamRows kEpochRows;  // stream_nmea.cpp: sentences
extern const StreamRows kLineRows;   // stream_lines.cpp: altimeter lines and those of emulated instruments

// stream_frames.cpp: what a device can be told to send instead of its own blocks.
extern const StreamMode kFrame;
extern const StreamMode kDualFrame;

// The eight bits of an amplitude on the 12-bit scale, and what they stand for.
[[nodiscard]] uint8_t Compand(uint16_t amplitude);
[[nodiscard]] uint16_t Expand(uint8_t code);

}  // namespace tw::sim
