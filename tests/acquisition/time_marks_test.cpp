#include "acquisition/time_marks.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/acquisition/mark_text.h"

namespace tw {
namespace {

constexpr uint32_t kMoment_s = 1'700'000'000;  // 2023-11-14 22:13:20 UTC

class TimeMarks : public testing::Test {
 protected:
  TimeMarks() { MakeLock(marks_->lock); }
  ~TimeMarks() override { DestroyLock(marks_->lock); }

  // The text of the ping that came so many pings ago; empty when the list does not reach so far.
  std::string Text(int32_t age) {
    char text[kMarkTextSize];
    return CopyMark(*marks_, age, text) ? text : std::string();
  }

  const std::unique_ptr<MarkList> marks_ = std::make_unique<MarkList>();
};

TEST_F(TimeMarks, IntervalIsThePeriodOverThePingInterval) {
  const struct {
    uint32_t period_ms;
    uint32_t interval_ms;
    int32_t pings;
  } cases[] = {{kSingleMarkPeriod_ms, 2'000, 15}, {kDualMarkPeriod_ms, 2'000, 7},
               {kSingleMarkPeriod_ms, 0, 0},      {kSingleMarkPeriod_ms, 1, 30'000},
               {kSingleMarkPeriod_ms, 31'000, 0}, {kSingleMarkPeriod_ms, UINT32_MAX, 0}};
  for (const auto& each : cases) {
    EXPECT_EQ(MarkInterval(each.period_ms, each.interval_ms), each.pings) << each.interval_ms;
  }
}

TEST_F(TimeMarks, EveryPingIsListedAndTheNumberRisesEachFifteen) {
  for (uint32_t ping = 0; ping < 31; ++ping) AddMark(*marks_, 15, {kMoment_s + 2 * ping, 0});
  EXPECT_EQ(Text(0), "0002 M 2023-11-14 22:14:20");
  EXPECT_EQ(Text(1), "0001 M 2023-11-14 22:14:18");
  EXPECT_EQ(Text(15), "0001 M 2023-11-14 22:13:50");
  EXPECT_EQ(Text(16), "0000 M 2023-11-14 22:13:48");
  EXPECT_EQ(Text(30), "0000 M 2023-11-14 22:13:20");
  EXPECT_EQ(Text(31), "");
  EXPECT_EQ(Text(-1), "");
  EXPECT_EQ(marks_->changed, 1);
}

TEST_F(TimeMarks, TheListKeepsTheNewest1490) {
  for (uint32_t ping = 0; ping < 1'500; ++ping) AddMark(*marks_, 30'000, {kMoment_s + ping, 0});
  EXPECT_EQ(Text(0), "0000 M 2023-11-14 22:38:19");
  EXPECT_EQ(Text(1'489), "0000 M 2023-11-14 22:13:30");
  EXPECT_EQ(Text(1'490), "");
  ClearMarks(*marks_);
  EXPECT_EQ(Text(0), "");
}

TEST_F(TimeMarks, ANumberOfFiveDigitsLeavesTheTimeWhole) {
  for (uint32_t ping = 0; ping <= 10'000; ++ping) AddMark(*marks_, 1, {kMoment_s, 0});
  EXPECT_EQ(Text(0), "10000 M 2023-11-14 22:13:20");
}

}  // namespace
}  // namespace tw
