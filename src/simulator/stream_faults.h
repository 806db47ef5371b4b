// Faults inside a stream: which message is hit, by what and where, from the device's seed and the message's
// place in the stream. Pure; any thread.
#pragma once

#include <cstdint>

#include "simulator/seeded_noise.h"
#include "simulator/sounder_options.h"
#include "simulator/stream_message.h"

namespace tw::sim {

// The chance of one message. The same options and index give the same dice.
[[nodiscard]] Dice FaultDice(uint64_t seed, uint64_t messageIndex);

// The fault that hits the message, usually none.
[[nodiscard]] StreamFault DrawFault(const SounderFaults& faults, Dice& dice);

// What a device's clock shows when it jumps: another second, days away, or an end of its range.
[[nodiscard]] uint32_t JumpedTime_s(uint32_t time_s, Dice& dice);

// Where the bytes of a message were changed.
struct Damage {
  uint32_t at = 0;
  uint32_t size = 0;      // of what stands there now
  bool happened = false;  // false: there was nothing to be hit, and the message is as it was
};

// Carries out a fault that changes bytes; the others leave the message alone.
[[nodiscard]] Damage ApplyFault(StreamFault fault, Dice& dice, StreamMessage& message);

}  // namespace tw::sim
