#include "display/zoom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

namespace tw {
namespace {

constexpr WheelTurn kIn = WheelTurn::forward;
constexpr WheelTurn kOut = WheelTurn::back;
constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();

// From one end to the other, until nothing moves any more.
template <typename Zoom>
std::vector<int32_t> StepsFrom(int32_t value, Zoom zoom) {
  std::vector<int32_t> steps{value};
  while ((value = zoom(value)) != steps.back()) steps.push_back(value);
  return steps;
}

TEST(Zoom, GoesThroughAllStepsAndStopsAtTheEnds) {
  std::vector<int32_t> ranges_mm = {1'000,  2'000,  3'000,   5'000,   10'000,  15'000,
                                    20'000, 30'000, 40'000,  50'000,  60'000,  70'000,
                                    80'000, 90'000, 100'000, 120'000, 150'000, 200'000};
  std::vector<int32_t> scales_s = {10, 20, 30, 60, 120, 150, 180, 210, 240, 270, 300};
  for (const WheelTurn turn : {kOut, kIn}) {
    EXPECT_EQ(StepsFrom(ranges_mm[0], [=](int32_t mm) { return ZoomedRange(mm, 200'000, turn); }), ranges_mm);
    EXPECT_EQ(StepsFrom(scales_s[0], [=](int32_t s) { return ZoomedTimeScale(s, turn); }), scales_s);
    std::reverse(ranges_mm.begin(), ranges_mm.end());
    std::reverse(scales_s.begin(), scales_s.end());
  }
}

TEST(Zoom, MovesTheDisplayRangeOneStep) {
  const struct {
    const char* what;
    int32_t range_mm, deviceRange_mm;
    WheelTurn turn;
    int32_t expected_mm;
  } rows[] = {
      {"from beyond the device's range", 80'000, 50'000, kIn, 40'000},
      {"out from beyond it", 80'000, 50'000, kOut, 50'000},
      {"between two steps the nearer one counts", 11'000, 200'000, kOut, 15'000},
      {"of two equally near the first", 12'500, 200'000, kIn, 5'000},
      {"no step nearer than the device's range: the last one", 200'000, 10'000, kIn, 5'000},
      {"device range 1 m", 1'000, 1'000, kOut, 1'000},
      {"device range 0", 10'000, 0, kOut, 1'000},
      {"a device range that is no step allows none: out", 10'000, 25'000, kOut, 1'000},
      {"and in", 10'000, 25'000, kIn, 1'000},
      {"hostile range", kMin, 20'000, kIn, 15'000},
      {"hostile range, large", kMax, 20'000, kOut, 20'000},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ZoomedRange(row.range_mm, row.deviceRange_mm, row.turn), row.expected_mm) << row.what;
  }
}

TEST(Zoom, MovesTheTimeScaleOneStep) {
  EXPECT_EQ(ZoomedTimeScale(90, kOut), 120) << "90 is as near to 60 as to 120";
  EXPECT_EQ(ZoomedTimeScale(600, kIn), 270) << "far beyond";
  EXPECT_EQ(ZoomedTimeScale(kMin, kOut), 300) << "hostile";
}

}  // namespace
}  // namespace tw
