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

}  // namespace
}  // namespace tw
