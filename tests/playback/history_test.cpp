// The way back of a playback.
#include "playback/history.h"

#include <gtest/gtest.h>

namespace tw {
namespace {

// Place i stands at byte 100 i and second i.
PlaybackHistory Filled(int32_t entries) {
  PlaybackHistory history;
  EXPECT_TRUE(history.Prepare());
  for (int32_t i = 0; i < entries; ++i) {
    PlayedPlace place{};
    place.position = static_cast<uint64_t>(i) * 100;
    place.recorded_ms = int64_t{i} * 1000;
    history.Add(place);
  }
  return history;
}

TEST(History, Steps) {
  const struct {
    const char* what;
    int32_t entries;
    size_t steps;
    uint64_t position;
    size_t left;
  } rows[] = {
      {"a step among many", 50, 20, 29 * 100, 30},
      {"exactly to the first", 21, 20, 0, 1},
      {"fewer than asked for: the first", 7, 20, 0, 1},
      {"one alone", 1, 100, 0, 1},
      {"the oldest are gone: the oldest that is left", 10'005, 20'000, 5 * 100, 1},
      {"full", 10'000, 100, 9'899 * 100, 9'900},
      {"full and turned over", 12'345, 100, 12'244 * 100, 9'900},
  };
  for (const auto& row : rows) {
    PlaybackHistory history = Filled(row.entries);
    const auto place = history.StepBack(row.steps);
    ASSERT_TRUE(place) << row.what;
    EXPECT_EQ(place->position, row.position) << row.what;
    EXPECT_EQ(history.Size(), row.left) << row.what;
  }
}

TEST(History, StepsToATime) {
  const struct {
    int64_t time_ms;
    uint64_t position;
  } rows[] = {{30'000, 3'000}, {30'999, 3'000}, {99'999, 4'900}, {0, 0}, {-1, 0}};
  for (const auto& row : rows) {
    PlaybackHistory history = Filled(50);
    EXPECT_EQ(history.StepBackTo(row.time_ms)->position, row.position) << row.time_ms;
  }
}

TEST(History, ThePlaceThatIsNotedAgainIsTheLaterOne) {
  PlaybackHistory history = Filled(3);
  PlayedPlace again{};
  again.position = 200;
  again.recorded_ms = 77;
  history.Add(again);
  EXPECT_EQ(history.Size(), 3u);
  EXPECT_EQ(history.StepBack(0)->recorded_ms, 77);
}

TEST(History, EmptyHasNoWayBack) {
  PlaybackHistory history = Filled(3);
  history.Clear();
  EXPECT_FALSE(history.StepBack(20));
  EXPECT_FALSE(history.StepBackTo(1'000));
}

}  // namespace
}  // namespace tw
