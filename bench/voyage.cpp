// The long voyage: three days of virtual time, ten pings a second, 200 samples a ping. Prints what became of
// the pings, whether memory stayed flat, and how long it took; fails when a ping is lost without an excuse.
//
// voyage [hours] [seed]
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "tests/end_to_end/voyage.h"

namespace {

using tw::test::Excuse;
using tw::test::VoyageFigures;

tw::test::VoyagePlan plan = {.duration_s = 72 * 3'600, .shortestLeg_s = 60, .longestLeg_s = 1'200};

void Print(const VoyageFigures& figures, double wall_s) {
  const auto lost = [&](Excuse excuse) { return figures.lost[static_cast<size_t>(excuse)]; };
  std::printf("pings sent %" PRIu64 ", recorded %" PRIu64 " (%" PRIu64 " with position)\n", figures.sent,
              figures.recorded, figures.withPosition);
  std::printf("not recorded: link down %" PRIu64 ", during Apply %" PRIu64 ", recording off %" PRIu64
              ", at Stop %" PRIu64 ", without excuse %" PRIu64 "\n",
              lost(Excuse::linkDown), lost(Excuse::apply), lost(Excuse::recordingOff), lost(Excuse::stop),
              lost(Excuse::none));
  std::printf("hang-ups %" PRIu64 ", silences %" PRIu64 ", Applies %" PRIu64 ", pauses of recording %" PRIu64
              "\n",
              figures.hangUps, figures.silences, figures.applies, figures.pauses);
  std::printf("files %" PRIu64 ", bytes %" PRIu64 ", hash %016" PRIx64 "\n", figures.files, figures.bytes,
              figures.hash);
  std::printf("resident %.1f MiB after 60,000 s, %.1f MiB at the end\n",
              static_cast<double>(figures.early.bytes) / 1'048'576,
              static_cast<double>(figures.atEnd.bytes) / 1'048'576);
  std::printf("wall time %.0f s\n", wall_s);
}

class LongVoyage : public tw::test::Voyage {};

TEST_F(LongVoyage, NoPingIsLostButTheExcusedOnes) {
  const auto begin = std::chrono::steady_clock::now();
  const VoyageFigures figures = Sail(plan);
  constexpr size_t kGrowth = 2 << 20;
  EXPECT_TRUE(plan.duration_s < 120'000 || figures.atEnd.bytes < figures.early.bytes + kGrowth);
  Print(figures, std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count());
}

}  // namespace

int main(int argc, char** argv) {
  testing::InitGoogleTest(&argc, argv);
  if (argc > 1) plan.duration_s = std::max(std::atoi(argv[1]), 1) * 3'600;
  if (argc > 2) plan.seed = std::strtoull(argv[2], nullptr, 10);
  return RUN_ALL_TESTS();
}
