// What the steps of the wheel are from end to end the tests of the view's window tell.
#include "display/zoom.h"

#include <gtest/gtest.h>

#include <limits>

namespace tw {
namespace {

constexpr WheelTurn kIn = WheelTurn::forward;
constexpr WheelTurn kOut = WheelTurn::back;
constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
constexpr int32_t kMin = std::numeric_limits<int32_t>::min();

TEST(Zoom, MovesTheDisplayRangeOneStep) {
  const struct {
    const char* what;
    int32_t range_mm;
    int32_t deviceRange_mm;
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
