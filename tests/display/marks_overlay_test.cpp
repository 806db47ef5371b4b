#include "display/marks_overlay.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <string>

#include "base/text_format.h"
#include "tests/display/test_canvas.h"

namespace tw {
namespace {

// Image 1,000 x 560: a grid column is 100 pixels, which stand for 15 s.
class MarksOverlay : public testing::Test {
 protected:
  MarksOverlay() { MakeLock(list_->lock); }
  ~MarksOverlay() override { DestroyLock(list_->lock); }

  // Pings as the worker enters them: number k, the newest being `pings`.
  void Enter(int32_t pings, int32_t interval_pings, int32_t pingsSinceMark) {
    list_->count = pings;
    list_->newest = 1'400;
    for (int32_t age = 0; age < pings; ++age) {
      FormatText(list_->texts[(1'400 + age) % static_cast<int32_t>(kMaxMarks)], "ping %d", pings - age);
    }
    list_->interval_pings = interval_pings;
    list_->pingsSinceMark = pingsSinceMark;
  }

  ShownMarks Find(float pingInterval_ms, int32_t marksAtStart = 0) {
    return FindShownMarks(*list_, LayOutPanel(0, 1'150, 600, 96), marksAtStart, pingInterval_ms);
  }

  std::unique_ptr<MarkList> list_ = std::make_unique<MarkList>();
};

TEST_F(MarksOverlay, EachTextStandsAtItsPing) {
  // 200 ms a ping: 150 pings are 30 s, two grid columns. The mark's own ping counts: it is 50 pings old, 10
  // s, which are 66 pixels.
  Enter(700, 150, 51);
  const ShownMarks shown = Find(200.0f);
  ASSERT_EQ(shown.count, 5u);
  const std::string texts[] = {"ping 650", "ping 500", "ping 350", "ping 200", "ping 50"};
  const int32_t columns[] = {964, 764, 564, 364, 164};
  for (size_t i = 0; i < 5; ++i) {
    EXPECT_EQ(shown.marks[i].text, texts[i]);
    EXPECT_EQ(PlaceOf(shown.marks[i].at), (Numbers{columns[i], 50}));
  }
}

TEST_F(MarksOverlay, ShowsNoMoreThanTheListHolds) {
  const struct {
    const char* what;
    int32_t pings;
    int32_t interval_pings;
    int32_t pingsSinceMark;
    float pingInterval_ms;
    int32_t marksAtStart;
    size_t marks;
  } rows[] = {
      {"no ping yet", 0, 0, 0, 200.0f, 150, 0},
      {"the first ping", 1, 150, 1, 200.0f, 0, 1},
      {"two intervals", 301, 150, 1, 200.0f, 0, 3},
      {"one ping less", 300, 150, 1, 200.0f, 0, 2},
      {"the set interval until one is measured", 1'000, 0, 1, 200.0f, 60, 5},
      {"the set interval reaches further back", 1'000, 0, 1, 200.0f, 300, 4},
      {"no interval at all", 1'000, 0, 1, 200.0f, 0, 0},
      {"older than the list", 1'490, 2'000'000'000, 2'000'000'000, 1e30f, 0, 0},
      {"as old as the list", 1'490, 2'000'000'000, 1'490, 3e38f, 0, 1},
      {"negative", 1'490, 150, 1, -1.0f, 0, 0},
      {"not a number", 1'490, 150, 1, std::numeric_limits<float>::quiet_NaN(), 0, 0},
  };
  for (const auto& row : rows) {
    Enter(row.pings, row.interval_pings, row.pingsSinceMark);
    EXPECT_EQ(Find(row.pingInterval_ms, row.marksAtStart).count, row.marks) << row.what;
  }
}

}  // namespace
}  // namespace tw
