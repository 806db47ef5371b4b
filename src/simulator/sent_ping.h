// A virtual echosounder's account of what it sent, one entry a message.
#pragma once

#include <cstdint>
#include <span>

#include "simulator/sounder_options.h"

namespace tw::sim {

// One message as it stands in the stream: a block, an epoch, a line, a frame. In dual operation a ping has
// two, the high frequency's first, with the same number; the modes whose lines hold both altitudes, and
// "TR57" frames, have one.
//
// The values are those that the message tells, and those that its mode leaves out are told here all the same.
// A fault may have changed the bytes afterwards: the values are what was meant.
struct SentPing {
  uint32_t number;  // since power-on or the last reset, from 1
  int64_t time_us;  // the binder's time at which the message began to leave
  uint32_t deviceTime_s;
  uint32_t deviceTime_ms;
  float altitude_m;     // 0: no bottom in range
  float altitudeLow_m;  // of the low frequency, where a message holds both; else 0
  float temperature_c;
  float pitch_deg;
  float roll_deg;
  float ema;
  int32_t txFrequency_hz;
  int32_t samplingFrequency_hz;
  int32_t outputMode;  // of the message
  int32_t channels;    // in the samples: 2 for a "TR57" frame of both, the high frequency's first
  uint32_t sampleCount;
  int32_t bottomIndex;  // of the strongest sample; -1: there is none
  uint64_t offset;      // of the first byte in all that was sent
  uint64_t size;        // bytes that left: of a message that a stop cut short, its first ones
  uint64_t hash;        // FNV-1a, 64 bits, of the message as it was put on the line
  bool faulty;          // a block fault or a stream fault has hit it
  StreamFault fault;    // which stream fault, if any
  bool intact;          // the bytes tell these values in the mode that was asked for
  uint32_t faultAt;     // where in the message its bytes were changed, for the faults that change them,
  uint32_t faultSize;   // and how many bytes stand there now
  bool whole;           // the last byte has left
};

// Called from within the device's own calls; must not call back.
class PingObserver {
 public:
  virtual ~PingObserver() = default;
  // A message has been made; `samples` are the amplitudes in it (not those that make it oversize). Companded
  // ones are on the 12-bit scale, as their codes stand for.
  virtual void PingMade(const SentPing& ping, std::span<const uint16_t> samples) = 0;
  // Its last byte has left, or it has been cut short.
  virtual void PingEnded(const SentPing& ping) = 0;
};

// FNV-1a, 64 bits.
[[nodiscard]] uint64_t HashOf(std::span<const uint8_t> bytes);

}  // namespace tw::sim
