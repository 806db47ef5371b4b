#include "acquisition/synthetic_pulse.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <vector>

namespace tw {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The slot of a ping at this altitude, in an image that held another ping before.
std::vector<uint8_t> SlotOf(double altitude_m, double soundSpeed_mps) {
  const auto image = std::make_unique<SlotImage>();
  const std::vector<uint16_t> before(kMaxSlotSamples, 0xFFFF);
  PingHeader header{};
  header.samplingFrequency_hz = 100'000;
  image->Build(header, before, 1);
  image->Build(header, {}, 1);
  DrawPulse(*image, altitude_m, soundSpeed_mps);
  EXPECT_LE(image->reach, kSlotSize);
  std::vector<uint8_t> slot(image->bytes, image->bytes + image->reach);
  slot.resize(kSlotSize);
  return slot;
}

uint16_t WordAt(const std::vector<uint8_t>& slot, size_t offset) {
  return static_cast<uint16_t>(slot[offset] | slot[offset + 1] << 8);
}

// The words behind the header that are not zero.
size_t NonZero(const std::vector<uint8_t>& slot) {
  size_t count = 0;
  for (size_t offset = 88; offset < kSlotSize; offset += 2) count += WordAt(slot, offset) != 0 ? 1 : 0;
  return count;
}

TEST(SyntheticPulse, StandsWhereTheFormulaSays) {
  // Worked out with another program in double precision: with 7.5, 15 and 30 m the division falls just short
  // of the whole number.
  const struct {
    double altitude_m;
    double soundSpeed_mps;
    size_t index;
  } cases[] = {
      {0, 1500, 0},     {7.5, 1500, 999},  {15, 1500, 1999},        {30, 1500, 3999}, {4.25, 1500, 566},
      {1, 1500, 133},   {7.5, 1480, 1013}, {100, 1500, 13'333},     {0.01f, 1500, 1}, {0.0075f, 1500, 0},
      {1e-30, 1500, 0}, {4.25, 1e9, 0},    {222.1875, 1500, 29'625}};
  for (const auto& each : cases) {
    const std::vector<uint8_t> slot = SlotOf(each.altitude_m, each.soundSpeed_mps);
    constexpr uint16_t kWords[] = {0, 921, 1842, 2764, 3685, 3685, 3685, 3685, 2764, 1842, 921, 0};
    for (size_t i = 0; i < 12; ++i) {
      EXPECT_EQ(WordAt(slot, 726 + 2 * each.index + 2 * i), kWords[i]) << each.altitude_m << " m, word " << i;
    }
    EXPECT_EQ(NonZero(slot), 10u) << each.altitude_m;
  }
}

TEST(SyntheticPulse, IsCutAtTheSlotsEnd) {
  const std::vector<uint8_t> slot = SlotOf(222.255f, 1500);  // sample 29,634 of 29,636
  EXPECT_EQ(WordAt(slot, kSlotSize - 4), 921);
  EXPECT_EQ(WordAt(slot, kSlotSize - 2), 1842);
  EXPECT_EQ(NonZero(slot), 2u);
  EXPECT_EQ(NonZero(SlotOf(222.27f, 1500)), 0u) << "sample 29,636";
}

TEST(SyntheticPulse, IsNotDrawnWithoutASaneAltitudeAndSpeed) {
  const struct {
    double altitude_m;
    double soundSpeed_mps;
  } cases[] = {{-0.001, 1500},     {-1e300, 1500}, {kNan, 1500}, {kInfinity, 1500}, {-kInfinity, 1500},
               {1e300, 1500},      {4, 0},         {4, -1500},   {4, kNan},         {0, 0},
               {0, kInfinity * 0}, {1e308, 1},     {4, 1e-320}};
  for (const auto& each : cases) {
    EXPECT_EQ(NonZero(SlotOf(each.altitude_m, each.soundSpeed_mps)), 0u)
        << each.altitude_m << " m, " << each.soundSpeed_mps << " m/s";
  }
}

}  // namespace
}  // namespace tw
