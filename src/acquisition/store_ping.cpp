#include "acquisition/store_ping.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "acquisition/sample_grid.h"
#include "base/bytes.h"
#include "base/shared_value.h"

namespace tw {
namespace {

constexpr uint32_t kGapTicks = 2'000 / kTick_ms;

// The view reads slots while they are written, on purpose and without a lock; so this is a loop of our own
// that the race detector does not watch.
__attribute__((no_sanitize("thread"))) void CopyToSlot(uint8_t* slot, const uint8_t* bytes, size_t count,
                                                       size_t oldReach) {
#if defined(__SANITIZE_THREAD__)
  for (size_t i = 0; i < count; ++i) static_cast<volatile uint8_t*>(slot)[i] = bytes[i];
  for (size_t i = count; i < oldReach; ++i) static_cast<volatile uint8_t*>(slot)[i] = 0;
#else
  std::memcpy(slot, bytes, count);
  if (oldReach > count) std::memset(slot + count, 0, oldReach - count);
#endif
}

// Copies `count` bytes to a slot and zeroes what else was in use there.
void FillSlot(const RingWriter& writer, size_t index, const uint8_t* bytes, size_t count) {
  uint16_t& reach = writer.reach[index];
  uint32_t& stamp = writer.ring->stamps[index];
  StoreShared(stamp, stamp + 1);
  CopyToSlot(writer.ring->slots[index], bytes, count, reach);
  StoreShared(stamp, stamp + 1);
  reach = static_cast<uint16_t>(count);
}

uint32_t TakeTicks(RingWriter& writer, uint32_t now_ms) {
  if (!writer.begun) {
    writer.begun = true;
    writer.last_ms = now_ms;
    writer.remainder_ms = 0;
    return 1;
  }
  const uint32_t difference_ms = now_ms - writer.last_ms;
  writer.last_ms = now_ms;
  if (static_cast<int32_t>(difference_ms) < 0) return 0;
  const uint64_t elapsed_ms = uint64_t{difference_ms} + writer.remainder_ms;
  writer.remainder_ms = static_cast<uint32_t>(elapsed_ms % kTick_ms);
  return static_cast<uint32_t>(elapsed_ms / kTick_ms);
}

// The first two pings tell what is usual; a slow device has no gaps.
bool IsGap(RingWriter& writer, uint32_t ticks) {
  const uint32_t usual = std::exchange(writer.usualTicks, std::max(ticks, 1u));
  if (writer.gapsBlack == nullptr || LoadShared(*writer.gapsBlack) == 0) return false;
  return usual != 0 && ticks > kGapTicks && ticks > 3 * uint64_t{usual};
}

// The ping before keeps its slot, the new one gets its own, and between them is nothing.
void FillBehindGap(const RingWriter& writer, uint32_t index, uint32_t ticks, const SlotImage& image) {
  constexpr uint8_t kNothing[1] = {};
  const uint32_t last = (index + ticks % kRingSlots) % kRingSlots;
  const uint32_t passed = std::min<uint32_t>(ticks, kRingSlots);
  for (uint32_t i = 1; i < passed; ++i) FillSlot(writer, (index + i) % kRingSlots, kNothing, 0);
  FillSlot(writer, last, image.bytes, image.reach);
}

}  // namespace

static_assert(kSlotSize <= UINT16_MAX);

RingWriter WriterOfRing(AppState& state, RecordChannel channel) {
  const ChannelView of = ChannelOf(state, channel);
  return {of.ring, &of.ringIndex, &of.ringTime, &of.ringLock, of.slotReach, &state.gapsBlack};
}

void SlotImage::Build(const PingHeader& header, std::span<const uint16_t> samples, uint16_t factor) {
  Build(header, samples, factor, GridRepeat(header.samplingFrequency_hz));
}

void SlotImage::Build(const PingHeader& header, std::span<const uint16_t> samples, uint16_t factor,
                      size_t repeat) {
  StorePingHeader(bytes, header);
  std::memset(bytes + frame::kWrittenHeaderLength, 0, frame::kSampleGap);
  const std::span<const uint16_t> placed = OntoGrid(samples, repeat, factor);
  StoreLeNumbers(bytes + kSlotSamples, placed);
  reach = kSlotSamples + placed.size_bytes();
}

std::span<const uint16_t> SlotImage::OntoGrid(std::span<const uint16_t> samples, size_t repeat,
                                              uint16_t factor) {
  if (factor == 1 && repeat == 1) return samples.first(std::min(samples.size(), kMaxSlotSamples));
  if (factor == 1) return {grid, SpreadOntoGrid(samples, repeat, grid)};
  const auto scale = [samples, factor](size_t first, std::span<uint16_t> scaled) {
    ScaleSamples(samples.data() + first, factor, scaled);
  };
  return {grid, DecodeOntoGrid(samples.size(), repeat, grid, scale)};
}

int64_t StorePing(RingWriter& writer, const SlotImage& image, uint32_t now_ms) {
  const int32_t index = IndexOf(writer);
  const bool first = !writer.begun;
  const uint32_t ticks = TakeTicks(writer, now_ms);
  if (!first && IsGap(writer, ticks)) {
    FillBehindGap(writer, static_cast<uint32_t>(index), ticks, image);
  } else {
    FillSlot(writer, static_cast<size_t>(index), image.bytes, image.reach);
    const uint32_t copies = std::min<uint32_t>(ticks, kRingSlots - 1);
    for (uint32_t i = 1; i <= copies; ++i) {
      FillSlot(writer, (static_cast<uint32_t>(index) + i) % kRingSlots, image.bytes, image.reach);
    }
  }
  Locked held(*writer.lock);
  *writer.index = static_cast<int32_t>((static_cast<uint64_t>(index) + ticks) % kRingSlots);
  return *writer.time += ticks;
}

int32_t IndexOf(const RingWriter& writer) {
  Locked held(*writer.lock);
  return *writer.index;
}

void MoveRing(const RingWriter& writer, int32_t index) {
  Locked held(*writer.lock);
  *writer.time += (index - *writer.index + kRingSlots) % kRingSlots;
  *writer.index = index;
}

void ClearRing(const RingWriter& writer) {
  constexpr uint8_t kNothing[1] = {};
  for (size_t slot = 0; slot < kRingSlots; ++slot) {
    if (writer.reach[slot] > 0) FillSlot(writer, slot, kNothing, 0);
  }
  MoveRing(writer, 0);
}

}  // namespace tw
