// The short form of the voyage of bench/voyage.cpp: events follow each other quickly.
#include "tests/end_to_end/voyage.h"

namespace tw::test {
namespace {

class ShortVoyage : public Voyage {};

TEST_F(ShortVoyage, NoPingIsLostButTheExcusedOnes) {
  const VoyageFigures figures = Sail({.duration_s = 3'600, .shortestLeg_s = 5, .longestLeg_s = 60});
  // Each kind of event has happened, and most of the time was sailed.
  EXPECT_GT(figures.recorded, 18'000u);
  EXPECT_GT(figures.hangUps, 3u);
  EXPECT_GT(figures.silences, 3u);
  EXPECT_GT(figures.applies, 10u);
  EXPECT_GT(figures.pauses, 3u);
  EXPECT_GT(figures.withPosition, figures.recorded * 9 / 10);
  uint64_t lost = 0;
  for (const uint64_t count : figures.lost) lost += count;
  EXPECT_EQ(figures.recorded + lost, figures.sent);
}

}  // namespace
}  // namespace tw::test
