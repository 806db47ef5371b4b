// The short form of the voyage of bench/voyage.cpp: events follow each other quickly. With TW_FULL set the
// run that outlasts its link goes on for three days.
#include "tests/end_to_end/voyage.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

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

TEST_F(ShortVoyage, ARunGoesOnThroughAllOfIt) {
  const bool full = std::getenv("TW_FULL") != nullptr;
  const VoyageFigures figures =
      Sail(full ? VoyagePlan{72 * 3'600, 20, 270, 1, true} : VoyagePlan{4'800, 5, 60, 1, true});
  EXPECT_GT(figures.recorded, full ? 1'500'000u : 10'000u);
  EXPECT_GT(figures.hangUps, full ? 500u : 10u);
  EXPECT_GT(figures.silences, full ? 50u : 1u);
  EXPECT_GT(figures.sleeps, full ? 100u : 1u);
  EXPECT_GT(figures.powerLosses, full ? 50u : 1u);
  EXPECT_GT(figures.files, full ? 70u : 1u);
  EXPECT_EQ(figures.atEnd.threads, figures.early.threads);
  EXPECT_EQ(figures.atEnd.descriptors, figures.early.descriptors);
  EXPECT_EQ(figures.atEnd.lines, figures.early.lines);
  EXPECT_TRUE(!full || figures.atEnd.bytes < figures.early.bytes + (2 << 20));
  std::printf("sent %" PRIu64 ", recorded %" PRIu64 ", link down %" PRIu64 ", without excuse %" PRIu64
              ", hang-ups %" PRIu64 ", silences %" PRIu64 ", sleeps %" PRIu64 ", power losses %" PRIu64
              ", files %" PRIu64 "\n",
              figures.sent, figures.recorded, figures.lost[1], figures.lost[0], figures.hangUps,
              figures.silences, figures.sleeps, figures.powerLosses, figures.files);
  for (const Held& held : {figures.early, figures.atEnd}) {
    std::printf("%zu KiB, %zu threads, %zu descriptors, %d lines\n", held.bytes >> 10, held.threads,
                held.descriptors, held.lines);
  }
}

}  // namespace
}  // namespace tw::test
