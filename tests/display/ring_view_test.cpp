#include "display/ring_view.h"

#include <gtest/gtest.h>

#include <vector>

#include "tests/display/test_ring.h"

namespace tw {
namespace {

struct HeaderCase {
  const char* what;
  uint32_t headerLength;
  size_t start;
  size_t count;
};

constexpr HeaderCase kHeaders[] = {
    {"a zeroed slot", 0, 728, 29'636},
    {"the header that is written here", 88, 728, 29'636},
    {"the shortest header", 36, 676, 29'636},
    {"one byte shorter", 35, 728, 29'636},
    {"the longest header", 4'096, 4'736, 27'632},
    {"one byte longer", 4'097, 728, 29'636},
    {"an odd one", 89, 729, 29'635},
    {"rubbish", 0xFFFFFFFFu, 728, 29'636},
};

TEST(RingView, FindsTheSamplesBehindAnyHeaderAndStaysInsideTheSlot) {
  std::vector<uint8_t> slot(kSlotSize);
  for (const HeaderCase& c : kHeaders) {
    SCOPED_TRACE(c.what);
    StoreLe<uint32_t>(slot.data() + 4, c.headerLength);
    const SlotSamples samples = FindSamples(slot.data());
    EXPECT_EQ(samples.first - slot.data(), static_cast<ptrdiff_t>(c.start));
    EXPECT_EQ(samples.count, c.count);
    std::vector<uint16_t> all(samples.count + 3, 0xAAAA);
    CopyAmplitudes(samples, all.size(), all.data());
    EXPECT_EQ(all.back(), 0);
  }
}

TEST(RingView, ReadsTheShownHeaderValues) {
  std::vector<uint8_t> slot(kSlotSize);
  const uint8_t header[] = {0x80, 0x4C, 0x2F, 0x5F};  // 1,596,935,296
  std::copy(std::begin(header), std::end(header), slot.begin() + 16);
  const uint8_t values[] = {0x00, 0x00, 0x48, 0x41, 0x00, 0x00, 0xB4, 0x41,   // 12.5, 22.5
                            0x00, 0x00, 0xE1, 0x43, 0x00, 0x00, 0xA0, 0xBF};  // 450.0, -1.25
  std::copy(std::begin(values), std::end(values), slot.begin() + 48);
  const ShownPing ping = ReadShownPing(slot.data());
  EXPECT_EQ(ping.time_s, 1'596'935'296u);
  EXPECT_EQ(ping.altitude_m, 12.5f);
  EXPECT_EQ(ping.temperature_c, 22.5f);
  EXPECT_EQ(ping.pitch_deg, 450.0f);
  EXPECT_EQ(ping.roll_deg, -1.25f);
}

}  // namespace
}  // namespace tw
