#include "display/marks_overlay.h"

#include <gtest/gtest.h>

#include <cmath>
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

  // By age: the newest mark at column 10 of the time grid less its age, the others a mark interval older and
  // two columns further left each, as far as the list reaches.
  void ExpectFormula(int32_t imageWidth, int32_t ping_ms, int32_t interval_pings) {
    const auto pings = static_cast<int32_t>(slots_.size());
    const int32_t age = (pings - 1) % interval_pings;
    const auto shift = static_cast<int32_t>(age * (ping_ms / 1000.0 * (imageWidth / 10) / 15) + 1e-9);
    const ShownMarks shown = Find(imageWidth);
    size_t texts = 0;
    for (int32_t column = 10; column >= 2; column -= 2) {
      const int32_t entry = age + interval_pings * (10 - column) / 2;
      if (entry >= std::min(pings, 1'490)) break;
      ASSERT_LT(texts, shown.count) << ping_ms << " ms, ping " << pings;
      const ShownMark& mark = shown.marks[texts++];
      ASSERT_EQ(mark.text, Text(pings - 1 - entry)) << ping_ms << " ms, ping " << pings;
      // Slots are tenths of a second: an interval that is none falls between two of them.
      ASSERT_NEAR(mark.at.x, 30 + column * imageWidth / 10 - shift, ping_ms % 100 == 0 ? 0 : 1)
          << ping_ms << " ms, ping " << pings << ", width " << imageWidth;
      ASSERT_EQ(mark.at.y, 600 - 550);
    }
    ASSERT_EQ(shown.count, texts) << ping_ms << " ms, ping " << pings;
  }

  // The newest five first pings of a number whose slots are in view, each in its slot's column.
  void ExpectEachAtItsPing(int32_t imageWidth, int32_t timeScale_s) {
    const ShownMarks shown = Find(imageWidth, timeScale_s);
    size_t texts = 0;
    for (auto ping = static_cast<int32_t>(slots_.size()) - 1; ping >= 0 && texts < kMostTexts; --ping) {
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

class SteadyMarks : public MarksOverlay, public testing::WithParamInterface<int32_t> {};

TEST_P(SteadyMarks, StandWhereTheirAgePutsThem) {
  const int32_t ping_ms = GetParam();
  const int32_t interval_pings = 30'000 / ping_ms;
  for (int64_t at_ms = 5'000; at_ms < 200'000; at_ms += ping_ms) {
    Ping(at_ms, interval_pings);
    for (const int32_t width : {380, 1'000, 1'770}) {
      ASSERT_NO_FATAL_FAILURE(ExpectFormula(width, ping_ms, interval_pings));
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Intervals, SteadyMarks,
                         testing::Values(40, 100, 150, 200, 250, 500, 1'000, 2'000, 5'000, 10'000));

TEST_F(MarksOverlay, WithJitterAndPausesEachTextStandsAtItsPing) {
  std::minstd_rand random(7);
  int64_t at_ms = 0;
  for (int32_t i = 0; i < 3'000; ++i) {
    const auto interval_ms = i % 700 == 699 ? 12'345 : static_cast<uint32_t>(84 + random() % 33);
    at_ms += interval_ms;
    Ping(at_ms, MarkInterval(kSingleMarkPeriod_ms, interval_ms));
    for (const int32_t timeScale_s : {10, 75, 150, 300}) {
      ASSERT_NO_FATAL_FAILURE(ExpectEachAtItsPing(1'578, timeScale_s));
    }
  }
}

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
