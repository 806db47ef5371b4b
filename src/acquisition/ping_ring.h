// The ring of pings of one channel: 10,000 slots, one per 100 ms, each holding a ping in memory form (see
// ping_record.h). A ring is one zero-filled block that is allocated at start-up and never freed.
//
// One worker writes at a time; the GUI thread reads. The write index is published under the ring's lock in
// the state record; slot bytes are written and read without it, and mixed data for one paint is accepted.
#pragma once

#include <cstddef>
#include <cstdint>

#include "acquisition/ping_record.h"

namespace tw {

inline constexpr int32_t kRingSlots = 10'000;
inline constexpr size_t kSlotSize = 60'000;
inline constexpr uint32_t kTick_ms = 100;

inline constexpr uint32_t kGridFrequency_hz = 100'000;
inline constexpr size_t kSlotSamples = frame::kWrittenHeaderLength + frame::kSampleGap;  // 728
inline constexpr size_t kMaxSlotSamples = (kSlotSize - kSlotSamples) / 2;                // 29,636
inline constexpr uint16_t kMaxAmplitude = 4'095;
static_assert(kSlotSamples == 728 && kMaxSlotSamples == 29'636);

struct PingRing {
  uint8_t slots[kRingSlots][kSlotSize];
  // Shared: whoever writes a slot raises its stamp before and after, so it is odd meanwhile. An even stamp
  // that has not changed says that the slot has not either.
  uint32_t stamps[kRingSlots];
};

inline constexpr size_t kRingSize = sizeof(PingRing);

}  // namespace tw
