// The forms of a device's messages: each appends one message to an empty one. Which mode sends which form is
// told by the table in echo_stream.cpp. Pure; any thread.
#pragma once

#include <cstdint>

#include "simulator/echo_stream.h"
#include "simulator/stream_message.h"

namespace tw::sim {

// stream_text.cpp: echo samples as text.
void AppendFirstFamilyText(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
void AppendSecondFamilyText(const PingReport& ping, const BlockShape& shape, StreamMessage& out);

// stream_frames.cpp: echo samples in binary. The shape is not heeded.
void AppendDeviceBlock(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
void AppendCompandedBlock(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
void AppendFrame(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
void AppendDualFrame(const PingReport& ping, const BlockShape& shape, StreamMessage& out);

// The eight bits of an amplitude on the 12-bit scale, and what they stand for.
[[nodiscard]] uint8_t Compand(uint16_t amplitude);
[[nodiscard]] uint16_t Expand(uint8_t code);

// stream_nmea.cpp: sentences.
void AppendFirstFamilyEpoch(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
void AppendSecondFamilyEpoch(const PingReport& ping, const BlockShape& shape, StreamMessage& out);

// stream_lines.cpp: altimeter lines and those of the instruments that a device stands in for. The shape is
// not heeded.
void AppendSimple(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
void AppendDeso25(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
void AppendAltimeterDual(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
void AppendSonarmiteDfx(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
void AppendSonarmiteOld(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
void AppendPsa916(const PingReport& ping, const BlockShape& shape, StreamMessage& out);
void AppendAltiPlusTemp(const PingReport& ping, const BlockShape& shape, StreamMessage& out);

}  // namespace tw::sim
