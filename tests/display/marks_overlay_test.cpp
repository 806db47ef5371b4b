#include "display/marks_overlay.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>

#include "acquisition/store_ping.h"
#include "acquisition/time_marks.h"
#include "base/text_format.h"
#include "tests/display/test_canvas.h"
#include "tests/display/test_ring.h"

namespace tw {
namespace {

constexpr int32_t kMostTexts = 5;

// A ring and its marks, as the worker of a single run leaves them.
class MarksOverlay : public testing::Test {
 protected:
  MarksOverlay() {
    MakeLock(lock_);
    MakeLock(list_->lock);
    image_->Build({}, {}, 1);
  }
  ~MarksOverlay() override {
    DestroyLock(list_->lock);
    DestroyLock(lock_);
  }

  // Ping i is marked with second i.
  void Ping(int64_t at_ms, int32_t interval_pings) {
    const int64_t ringTime = StorePing(writer_, *image_, static_cast<uint32_t>(at_ms));
    AddMark(*list_, interval_pings, {static_cast<uint32_t>(slots_.size()), ringTime});
    slots_.push_back(index_);
    numbers_.push_back(list_->markNumber);
  }
  [[nodiscard]] ShownMarks Find(int32_t imageWidth, int32_t timeScale_s = 150) {
    return FindShownMarks(*list_, LayOutPanel(0, imageWidth + 150, 600, 96),
                          {index_, timeScale_s, 10'000, 1'500.0f}, time_);
  }
  [[nodiscard]] std::string Text(int32_t ping) const {
    char text[64];
    FormatText(text, "%04d M 1970-01-01 %02d:%02d:%02d", numbers_[static_cast<size_t>(ping)], ping / 3'600,
               ping / 60 % 60, ping % 60);
    return text;
  }

  // The newest five first pings of a number whose slots are in view, each in its slot's column.
  void ExpectEachAtItsPing(int32_t imageWidth, int32_t timeScale_s) {
    const ShownMarks shown = Find(imageWidth, timeScale_s);
    size_t texts = 0;
    const auto pings = static_cast<int32_t>(slots_.size());
    for (auto ping = pings - 1; ping >= std::max(0, pings - 1'490) && texts < kMostTexts; --ping) {
      const auto i = static_cast<size_t>(ping);
      if (index_ - slots_[i] > 10 * timeScale_s) break;
      const double back = (index_ - slots_[i]) * static_cast<double>(imageWidth) / (10 * timeScale_s);
      if (i > 0 && numbers_[i] == numbers_[i - 1]) continue;
      ASSERT_LT(texts, shown.count) << "ping " << ping << ", " << timeScale_s << " s";
      ASSERT_EQ(shown.marks[texts].text, Text(ping));
      ASSERT_NEAR(shown.marks[texts].at.x, 30 + imageWidth - back, 1) << "ping " << ping;
      ++texts;
    }
    ASSERT_EQ(shown.count, texts);
  }

  const TestRing ring_ = MakeRing();
  Lock lock_{};
  int32_t index_ = 0;
  int64_t time_ = 0;
  std::vector<uint16_t> reach_ = std::vector<uint16_t>(kRingSlots);
  RingWriter writer_{ring_.get(), &index_, &time_, &lock_, reach_.data()};
  const std::unique_ptr<SlotImage> image_ = std::make_unique<SlotImage>();
  const std::unique_ptr<MarkList> list_ = std::make_unique<MarkList>();
  std::vector<int32_t> slots_;    // at which each ping was published
  std::vector<int32_t> numbers_;  // of its mark
};

class PacedMarks : public MarksOverlay, public testing::WithParamInterface<int32_t> {};

TEST_P(PacedMarks, WithJitterAndPausesEachTextStandsAtItsPing) {
  const int32_t ping_ms = GetParam();
  std::minstd_rand random(7);
  int64_t at_ms = 0;
  for (int32_t i = 0; i < 3'000 && at_ms < 600'000; ++i) {
    const auto jitter_ms = static_cast<int32_t>(random() % 33) - 16;
    const auto interval_ms = static_cast<uint32_t>(i % 700 == 699 ? 12'345 : ping_ms + jitter_ms);
    at_ms += interval_ms;
    Ping(at_ms, MarkInterval(kSingleMarkPeriod_ms, interval_ms));
    for (const int32_t timeScale_s : {10, 75, 150, 300}) {
      ASSERT_NO_FATAL_FAILURE(ExpectEachAtItsPing(1'578, timeScale_s));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Intervals, PacedMarks, testing::Values(40, 100, 1'000, 10'000));

// The image shows other pings to the left of slot 0, and a slot holds what was written last.
TEST_F(MarksOverlay, NoTextStandsWhereTheImageShowsAnotherLap) {
  const struct {
    const char* what;
    int32_t index;     // before the only mark
    int64_t later_ms;  // the newest ping
    size_t texts;
  } rows[] = {{"in view", 4'000, 149'900, 1},
              {"just in view", 4'000, 150'000, 1},
              {"out of view", 4'000, 150'200, 0},
              {"the index has wrapped", 9'900, 20'000, 0},
              {"the mark stands at slot 0", 9'999, 20'000, 1},
              {"written again", 4'000, 1'000'000, 0},
              {"and again, a lap later", 4'000, 2'000'500, 0}};
  for (const auto& row : rows) {
    ClearMarks(*list_);
    MoveRing(writer_, row.index);
    writer_.begun = false;
    Ping(0, 300);
    StorePing(writer_, *image_, static_cast<uint32_t>(row.later_ms));
    EXPECT_EQ(Find(1'000).count, row.texts) << row.what;
  }
  ClearMarks(*list_);
  EXPECT_EQ(Find(1'000).count, 0u);
}

TEST_F(MarksOverlay, NothingIsShownWithoutAnImageOrScale) {
  Ping(0, 300);
  EXPECT_EQ(Find(1'000).count, 1u);
  EXPECT_EQ(Find(0).count, 0u);
  EXPECT_EQ(Find(1'000, 0).count, 0u);
}

}  // namespace
}  // namespace tw
