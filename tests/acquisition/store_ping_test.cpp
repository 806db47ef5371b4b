#include "acquisition/store_ping.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "base/bytes.h"
#include "platform/memory.h"

namespace tw {
namespace {

// The samples of a slot that are in use.
std::vector<uint16_t> SamplesOf(const uint8_t* slot, size_t count) {
  std::vector<uint16_t> samples(count);
  LoadLeNumbers(std::span(samples), slot + 728);
  return samples;
}

std::vector<uint16_t> Grid(uint32_t frequency_hz, std::vector<uint16_t> samples, uint16_t factor = 1) {
  auto image = std::make_unique<SlotImage>();
  std::fill(std::begin(image->bytes), std::end(image->bytes), uint8_t{0xEE});
  PingHeader header{};
  header.samplingFrequency_hz = frequency_hz;
  image->Build(header, samples, factor);
  for (size_t i = 88; i < 728; ++i) EXPECT_EQ(image->bytes[i], 0) << "the gap is zero";
  return SamplesOf(image->bytes, (image->reach - 728) / 2);
}

TEST(SlotImage, SamplesAreRepeatedOntoTheGrid) {
  using V = std::vector<uint16_t>;
  EXPECT_EQ(Grid(100'000, {1, 2, 3}), (V{1, 2, 3}));
  EXPECT_EQ(Grid(25'000, {1, 2}), (V{1, 1, 1, 1, 2, 2, 2, 2}));
  EXPECT_EQ(Grid(0, {1, 2}), V{});
  EXPECT_EQ(Grid(UINT32_MAX, {1, 2}), V{});
  EXPECT_EQ(Grid(50'000, {}), V{});
}

TEST(SlotImage, TenBitSamplesComeOntoTheTwelveBitScale) {
  EXPECT_EQ(Grid(100'000, {0, 1, 1023, 16'383, 16'384, 65'535}, 4),
            (std::vector<uint16_t>{0, 4, 4092, 65'532, 65'535, 65'535}));
}

TEST(SlotImage, WhatLiesBeyondTheSlotIsCut) {
  EXPECT_EQ(Grid(100'000, std::vector<uint16_t>(50'000, 7)).size(), 29'636u);
  EXPECT_EQ(Grid(33'333, std::vector<uint16_t>(9'879, 7)).size(), 29'636u) << "cut within a repetition";
  EXPECT_EQ(Grid(1, {7, 8}).size(), 29'636u);
}

class Ring : public testing::Test {
 protected:
  using V = std::vector<uint32_t>;

  Ring() {
    MakeLock(lock_);
    writer_.ring = static_cast<PingRing*>(AllocateZeroed(kRingSize));
    writer_.index = &index_;
    writer_.time = &time_;
    writer_.lock = &lock_;
    writer_.reach = reach_.data();
  }
  ~Ring() override {
    FreeZeroed(writer_.ring, kRingSize);
    DestroyLock(lock_);
  }

  void Store(uint32_t ping, uint32_t now_ms, std::vector<uint16_t> samples = {1}) {
    PingHeader header{};
    header.ping = ping;
    header.samplingFrequency_hz = 100'000;
    image_->Build(header, samples, 1);
    StorePing(writer_, *image_, now_ms);
  }
  // 0 where nothing was ever stored.
  [[nodiscard]] uint32_t PingAt(int32_t slot) const { return LoadPingHeader(writer_.ring->slots[slot]).ping; }
  [[nodiscard]] std::vector<uint32_t> PingsAt(int32_t first, int32_t count) const {
    std::vector<uint32_t> pings;
    for (int32_t i = 0; i < count; ++i) pings.push_back(PingAt((first + i) % kRingSlots));
    return pings;
  }

  [[nodiscard]] V StampsAt(int32_t first, int32_t count) const {
    const uint32_t* const stamps = writer_.ring->stamps + first;
    return {stamps, stamps + count};
  }

  Lock lock_{};
  int32_t index_ = 0;
  int64_t time_ = 0;
  std::vector<uint16_t> reach_ = std::vector<uint16_t>(kRingSlots);
  RingWriter writer_{};
  std::unique_ptr<SlotImage> image_ = std::make_unique<SlotImage>();
};

TEST_F(Ring, StampsTellWhichSlotsHaveChanged) {
  Store(1, 1'000);  // the first ping counts as a tick: slots 0 and 1
  Store(2, 1'050);  // no tick: slot 1 again
  EXPECT_EQ(StampsAt(0, 3), (V{2, 4, 0}));
  ClearRing(writer_);
  EXPECT_EQ(StampsAt(0, 3), (V{4, 6, 0}));
  EXPECT_EQ(PingsAt(0, 3), (V{0, 0, 0}));
  EXPECT_EQ(index_, 0);
}

TEST_F(Ring, TheIndexAdvancesByTicksOfATenthOfASecond) {
  const struct {
    const char* what;
    int32_t index;  // before
    V times_ms;     // of the pings 1, 2 …
    int32_t newIndex;
    V slots;  // from the old index on
  } rows[] = {
      {"the first ping counts as one tick", 500, {123'456'789}, 501, {1, 1, 0}},
      {"two pings share a slot", 0, {1'000, 1'060}, 1, {1, 2, 0}},
      {"what is left of a tick carries over", 0, {1'000, 1'060, 1'120}, 2, {1, 3, 3, 0}},
      {"a pause fills the slots stepped over", 0, {1'000, 1'500}, 6, {1, 2, 2, 2, 2, 2, 2, 0}},
      {"the index wraps", 9'998, {0, 300}, 2, {1, 2, 2, 2, 2, 0}},
      {"the clock wraps", 0, {UINT32_MAX - 149, 50}, 3, {1, 2, 2, 2, 0}},
      {"time going backwards is no tick", 0, {10'000, 4'000}, 1, {1, 2, 0}},
      {"and counts from there", 0, {10'000, 4'000, 4'100}, 2, {1, 3, 3, 0}},
  };
  for (const auto& row : rows) {
    ClearRing(writer_);
    writer_.begun = false;
    writer_.remainder_ms = 0;
    index_ = row.index;
    for (size_t i = 0; i < row.times_ms.size(); ++i) Store(static_cast<uint32_t>(i + 1), row.times_ms[i]);
    EXPECT_EQ(index_, row.newIndex) << row.what;
    EXPECT_EQ(PingsAt(row.index, static_cast<int32_t>(row.slots.size())), row.slots) << row.what;
  }
}

TEST_F(Ring, AGapIsBlackWhereThatIsWanted) {
  const struct {
    const char* what;
    V times_ms;
    int32_t first;
    V slots;
  } rows[] = {
      {"2 s are none", {0, 100, 2'100}, 2, {3, 3, 3}},
      {"beyond, each ping keeps its slot", {0, 100, 2'300}, 1, {2, 2, 0, 0}},
      {"three times what is usual", {0, 5'000, 10'000, 25'000}, 101, {4, 4, 4}},
      {"more than that", {0, 5'000, 10'000, 25'100}, 100, {3, 3, 0, 0}},
      {"no second ping, no measure", {0, 60'000}, 1, {2, 2, 2}},
  };
  const int32_t wanted = 1;
  writer_.gapsBlack = &wanted;
  for (const auto& row : rows) {
    ClearRing(writer_);
    writer_.begun = false;
    writer_.usualTicks = 0;
    index_ = 0;
    for (size_t i = 0; i < row.times_ms.size(); ++i) Store(static_cast<uint32_t>(i + 1), row.times_ms[i]);
    EXPECT_EQ(PingsAt(row.first, static_cast<int32_t>(row.slots.size())), row.slots) << row.what;
    EXPECT_EQ(PingAt(index_), row.times_ms.size()) << row.what;
    EXPECT_EQ(PingAt(index_ - 1), row.slots.back()) << row.what;
  }
}

TEST_F(Ring, ALongPauseFillsEverySlotOnce) {
  Store(1, 0);
  Store(2, 1'000'000);  // 10,000 ticks: all the way round
  EXPECT_EQ(index_, 1);
  for (int32_t slot = 0; slot < kRingSlots; ++slot) ASSERT_EQ(PingAt(slot), 2u) << slot;
  Store(3, 2'147'483'647);  // 21,464,836 ticks
  EXPECT_EQ(index_, (1 + 21'464'836) % 10'000);
  EXPECT_EQ(time_, 1 + 10'000 + 21'464'836);
  MoveRing(writer_, 4'836);
  EXPECT_EQ(time_, 21'484'836) << "one back is 9,999 on";
  for (int32_t slot = 0; slot < kRingSlots; ++slot) ASSERT_EQ(PingAt(slot), 3u) << slot;
}

TEST_F(Ring, AShorterPingLeavesNothingOfALongerOne) {
  Store(1, 0, std::vector<uint16_t>(29'636, 0xFFFF));
  Store(2, 0, {9, 8});
  const uint8_t* slot = writer_.ring->slots[1];
  EXPECT_EQ(SamplesOf(slot, 2), (std::vector<uint16_t>{9, 8}));
  EXPECT_TRUE(std::all_of(slot + 728 + 4, slot + kSlotSize, [](uint8_t byte) { return byte == 0; }));
}

}  // namespace
}  // namespace tw
