// Putting pings into a ring: one function for live and played pings. The record is built aside and copied
// once, so that the slot on view never flickers. Called by the one worker that writes the ring.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "acquisition/ping_ring.h"
#include "app/state/record_channel.h"
#include "platform/sync.h"

namespace tw {

// A ring as its writer sees it, and the writer's place in time.
struct RingWriter {
  PingRing* ring;
  int32_t* index;  // published under `lock`
  int64_t* time;   // likewise: how many slots the index has come on in all
  Lock* lock;
  uint16_t* reach;                     // kRingSlots entries: bytes of each slot that are in use
  const int32_t* gapsBlack = nullptr;  // shared: slots stepped over in a gap show nothing; null: never
  uint32_t last_ms = 0;
  uint32_t remainder_ms = 0;
  uint32_t usualTicks = 0;  // between the last two pings; 0 until they have come
  bool begun = false;
};

[[nodiscard]] RingWriter WriterOfRing(AppState& state, RecordChannel channel);

// One slot's bytes, built aside.
struct SlotImage {
  uint8_t bytes[kSlotSize];
  size_t reach = 0;  // bytes in use, from the front

  // Header and samples on the 100 kHz grid: each sample is repeated 100,000 / Fs times, multiplied by
  // `factor` (cut at 65,535). A sampling frequency of 0 or above 100,000 gives no samples; what lies beyond
  // the slot is cut.
  void Build(const PingHeader& header, std::span<const uint16_t> samples, uint16_t factor);

  // The same with each sample repeated as often as told.
  void Build(const PingHeader& header, std::span<const uint16_t> samples, uint16_t factor, size_t repeat);

 private:
  std::span<const uint16_t> OntoGrid(std::span<const uint16_t> samples, size_t repeat, uint16_t factor);

  uint16_t grid[kMaxSlotSamples];
};

// Puts the ping into the slot at the write index, advances the index by the 100-ms ticks that have passed
// since the last advance (the remainder carries over; the first ping counts as one tick), puts a copy into
// each slot stepped over, the new one included, and publishes the index. Where gaps are to be black, a ping
// that comes after more than 2 s and more than three times the time before leaves the slots between empty.
//  `now_ms` is a millisecond clock that
// may wrap; when it goes backwards no tick passes and time counts from there. From 10,000 ticks on each slot
// is filled once.
// Returns the ring's time at which the ping is published: a slot whose time is 10,000 or more behind the
// ring's has been written again.
int64_t StorePing(RingWriter& writer, const SlotImage& image, uint32_t now_ms);

// The slot that the next ping goes to.
[[nodiscard]] int32_t IndexOf(const RingWriter& writer);

// The next ping goes to another slot, 0 to 9,999. Nothing is written; the ring's time goes on as far as the
// index does, forwards.
void MoveRing(const RingWriter& writer, int32_t index);

// Zeroes all slots in use and sets the index to 0, while nobody else writes the ring.
void ClearRing(const RingWriter& writer);

}  // namespace tw
