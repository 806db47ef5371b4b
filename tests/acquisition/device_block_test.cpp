#include "acquisition/device_block.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>
#include <vector>

#include "acquisition/sample_grid.h"
#include "tests/acquisition/golden_frames.h"

namespace tw {
namespace {

using test::kGoldenDeviceBlock;
using test::kGoldenWordBlock;
using test::ValuesOf;
using test::With;

struct Parsed {
  bool whole;
  PingHeader header;
  std::vector<uint16_t> grid;  // 7777: not written
};

Parsed Parse(const std::string& block, const PingHeader& previous = {}) {
  const std::vector<char> bytes(block.begin(), block.end());
  Parsed parsed{false, previous, std::vector<uint16_t>(kMaxSlotSamples, 7777)};
  parsed.whole = ParseDeviceBlock({bytes.data(), bytes.size()}, parsed.header,
                                  std::span<uint16_t, kMaxSlotSamples>(parsed.grid));
  return parsed;
}

std::vector<uint16_t> SamplesOf(const Parsed& parsed) {
  return {parsed.grid.begin(), parsed.grid.begin() + parsed.header.sampleCount};
}

// What the golden block says, in a ping that held these values before.
PingHeader Told(PingHeader previous, uint32_t sampleCount) {
  previous.deviceSeconds = 1'700'000'000;
  previous.deviceMilliseconds = 250;
  previous.ping = 17;
  previous.samplingFrequency_hz = 100'000;  // that of the grid
  previous.sampleCount = sampleCount;
  previous.txFrequency_hz = 200'000;
  return previous;
}

TEST(DeviceBlock, TheGoldenBlocks) {
  PingHeader told = Told({}, 16);
  told.altitude_m = 4.25f;
  told.temperature_c = 11.5f;
  told.pitch_deg = 1.25f;
  told.roll_deg = -0.5f;
  const Parsed parsed = Parse(kGoldenDeviceBlock);
  EXPECT_TRUE(parsed.whole);
  EXPECT_EQ(ValuesOf(parsed.header), ValuesOf(told));
  EXPECT_EQ(SamplesOf(parsed), (std::vector<uint16_t>{12, 12, 12, 12, 65, 65, 65, 65, 255, 255, 255, 255,
                                                      4095, 4095, 4095, 4095}));
  EXPECT_EQ(SamplesOf(Parse(kGoldenWordBlock)), (std::vector<uint16_t>{1, 1, 1, 1, 4011, 4011, 4011, 4011}));
}

TEST(DeviceBlock, Companding) {
  // Both ends and the neighbours of each segment, added up by hand.
  const struct {
    uint8_t code;
    uint16_t value;
  } cases[] = {{0, 0},      {1, 1},      {62, 62},    {63, 63},    {64, 65},    {94, 125},
               {95, 127},   {96, 131},   {126, 251},  {127, 255},  {128, 263},  {158, 503},
               {159, 511},  {160, 527},  {190, 1007}, {191, 1023}, {192, 1055}, {222, 2015},
               {223, 2047}, {224, 2111}, {254, 4031}, {255, 4095}};
  std::string block =
      With(With(With(kGoldenDeviceBlock.substr(0, 62), 10, 62u + 256), 46, 256u), 58, 100'000u);
  for (int code = 0; code < 256; ++code) block.push_back(static_cast<char>(code));
  const std::vector<uint16_t> samples = SamplesOf(Parse(block));
  ASSERT_EQ(samples.size(), 256u);
  for (const auto& each : cases) EXPECT_EQ(samples[each.code], each.value) << int{each.code};
  EXPECT_TRUE(std::is_sorted(samples.begin(), samples.end()));
}

TEST(DeviceBlock, SamplesAreRepeatedOntoTheGrid) {
  const struct {
    int32_t frequency_hz;
    uint32_t repeat;  // truncated
  } cases[] = {{100'000, 1}, {99'999, 1},  {50'001, 1},    {50'000, 2},   {33'334, 2},
               {33'333, 3},  {30'000, 3},  {12'500, 8},    {1'000, 100},  {0, 0},
               {-1, 0},      {100'001, 0}, {INT32_MIN, 0}, {INT32_MAX, 0}};
  for (const auto& each : cases) {
    const Parsed parsed = Parse(With(kGoldenWordBlock, 58, static_cast<uint32_t>(each.frequency_hz)));
    ASSERT_TRUE(parsed.whole);
    std::vector<uint16_t> expected(each.repeat, 1);
    expected.resize(2 * each.repeat, 4011);
    EXPECT_EQ(SamplesOf(parsed), expected) << each.frequency_hz << " Hz";
    EXPECT_EQ(parsed.header.samplingFrequency_hz, 100'000u);
  }
}

TEST(DeviceBlock, WhatLiesBeyondTheSlotIsCut) {
  // 50,000 samples twice each, and two of which the first alone would fill the slot three times.
  std::string block = With(With(kGoldenWordBlock.substr(0, 62), 10, 62u + 100'000), 46, 50'000u);
  for (int i = 0; i < 50'000; ++i) block += {static_cast<char>(i), static_cast<char>(i >> 8)};
  Parsed parsed = Parse(With(block, 58, 50'000u));
  ASSERT_EQ(parsed.header.sampleCount, 29'636u);
  EXPECT_EQ(parsed.grid[29'634], 14'817);
  EXPECT_EQ(parsed.grid[29'635], 14'817);
  parsed = Parse(With(kGoldenWordBlock, 58, 1u));
  ASSERT_EQ(parsed.header.sampleCount, 29'636u);
  EXPECT_EQ(parsed.grid, std::vector<uint16_t>(29'636, 1));
}

TEST(DeviceBlock, BytesThatAreNoBlockTouchNothing) {
  std::vector<std::string> blocks;
  for (size_t length = 0; length < kGoldenDeviceBlock.size(); ++length) {
    blocks.push_back(kGoldenDeviceBlock.substr(0, length));
  }
  blocks.push_back(kGoldenDeviceBlock + "x");
  blocks.push_back(With(kGoldenDeviceBlock, 42, 2u));
  blocks.push_back(With(kGoldenDeviceBlock, 46, 5u));
  for (const std::string& block : blocks) {
    const Parsed parsed = Parse(block);
    EXPECT_FALSE(parsed.whole) << block.size();
    EXPECT_EQ(parsed.header.ping, 0u);
    EXPECT_EQ(parsed.grid, std::vector<uint16_t>(29'636, 7777));
  }
}

TEST(DeviceBlock, WhatIsNoFiniteNumberStandsAsItWas) {
  PingHeader previous{};
  previous.altitude_m = 1.0f;
  previous.temperature_c = 2.0f;
  previous.pitch_deg = kNoAttitude;
  previous.roll_deg = 4.0f;
  for (const float odd : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()}) {
    std::string block = kGoldenDeviceBlock;
    for (const size_t offset : {26, 30, 34, 38}) block = With(block, offset, odd);
    EXPECT_EQ(ValuesOf(Parse(block, previous).header), ValuesOf(Told(previous, 16))) << odd;
  }
}

// Many combinations against the plain way, with places behind the grid that must stay as they are.
TEST(SampleGrid, AnyRepeatAndRoom) {
  for (const size_t count : {0, 1, 2, 3, 7, 8, 9, 17, 255, 256, 257, 600}) {
    std::vector<uint16_t> samples(count);
    for (size_t i = 0; i < count; ++i) samples[i] = static_cast<uint16_t>(1'000 + i);
    for (size_t repeat = 0; repeat <= 9; ++repeat) {
      const size_t all = count * repeat;
      for (const size_t room :
           {size_t{0}, size_t{1}, size_t{5}, size_t{31}, all / 2, all, all + 1, all + 40}) {
        std::vector<uint16_t> expected;
        for (size_t i = 0; i < all && i < room; ++i)
          expected.push_back(static_cast<uint16_t>(1'000 + i / repeat));
        std::vector<uint16_t> spread(room + 4, 7777);
        std::vector<uint16_t> decoded = spread;
        const std::span<uint16_t> grid(spread.data(), room);
        ASSERT_EQ(SpreadOntoGrid(samples, repeat, grid), expected.size())
            << count << " x " << repeat << " into " << room;
        const auto decode = [&](size_t first, std::span<uint16_t> part) {
          std::copy_n(samples.begin() + static_cast<std::ptrdiff_t>(first), part.size(), part.begin());
        };
        ASSERT_EQ(DecodeOntoGrid(count, repeat, {decoded.data(), room}, decode), expected.size());
        for (const auto& result : {spread, decoded}) {
          ASSERT_TRUE(std::equal(expected.begin(), expected.end(), result.begin()));
          ASSERT_EQ(std::count(result.end() - 4, result.end(), 7777), 4);
        }
      }
    }
  }
}

}  // namespace
}  // namespace tw
