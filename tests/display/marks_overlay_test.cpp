#include "display/marks_overlay.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>

#include "base/text_format.h"

namespace tw {
namespace {

// Image 1,000 x 560: a grid column is 100 pixels, which stand for 15 s.
class MarksOverlay : public testing::Test {
 protected:
  MarksOverlay() { MakeLock(list_->lock); }
  ~MarksOverlay() override { DestroyLock(list_->lock); }

  // Pings as the worker enters them: number k, the newest being `pings`.
  void Enter(int32_t pings, int32_t interval_pings) {
    list_->count = pings;
    list_->newest = 1'400;
    for (int32_t age = 0; age < pings; ++age) {
      FormatText(list_->texts[(1'400 + age) % static_cast<int32_t>(kMaxMarks)], "ping %d", pings - age);
    }
    list_->interval_pings = interval_pings;
  }

  ShownMarks Find(float pingInterval_ms, int32_t marksAtStart = 0) {
    return FindShownMarks(*list_, LayOutPanel(0, 1'150, 600, 96), marksAtStart, pingInterval_ms);
  }

  std::unique_ptr<MarkList> list_ = std::make_unique<MarkList>();
};

TEST_F(MarksOverlay, EachTextStandsAtItsPing) {
  Enter(700, 150);             // 200 ms a ping: 150 pings are 30 s, two grid columns
  list_->pingsSinceMark = 51;  // the mark's own ping counts: it is 50 pings old, 10 s
  const ShownMarks shown = Find(200.0f);
  ASSERT_EQ(shown.count, 5u);
  const std::string texts[] = {"ping 650", "ping 500", "ping 350", "ping 200", "ping 50"};
  const int32_t columns[] = {964, 764, 564, 364, 164};  // 10 s are 66 pixels
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(shown.marks[i].text, texts[i]);
    EXPECT_EQ(shown.marks[i].at.x, columns[i]);
    EXPECT_EQ(shown.marks[i].at.y, 50);
  }
}

TEST_F(MarksOverlay, ShowsNoMoreThanTheListHolds) {
  EXPECT_EQ(Find(200.0f, 150).count, 0u);
  Enter(1, 150);
  list_->pingsSinceMark = 1;
  EXPECT_EQ(Find(200.0f).count, 1u);
  Enter(301, 150);
  EXPECT_EQ(Find(200.0f).count, 3u);
  Enter(300, 150);
  EXPECT_EQ(Find(200.0f).count, 2u);
}

TEST_F(MarksOverlay, UsesTheSetIntervalUntilOneIsMeasured) {
  Enter(1'000, 0);
  list_->pingsSinceMark = 1;
  const ShownMarks shown = Find(200.0f, 60);
  ASSERT_EQ(shown.count, 5u);
  EXPECT_STREQ(shown.marks[1].text, "ping 940");
  EXPECT_EQ(Find(200.0f, 0).count, 0u);
}

TEST_F(MarksOverlay, SurvivesHostileValues) {
  Enter(1'490, 2'000'000'000);
  list_->pingsSinceMark = 2'000'000'000;
  EXPECT_EQ(Find(1e30f).count, 0u);
  list_->pingsSinceMark = 1'490;
  EXPECT_EQ(Find(3e38f).count, 1u);
  EXPECT_EQ(Find(-1.0f).count, 0u);
  EXPECT_EQ(Find(std::numeric_limits<float>::quiet_NaN()).count, 0u);
}

}  // namespace
}  // namespace tw
