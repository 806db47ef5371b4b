// Faults inside the stream, in every mode: the account of a device with faults against the stream of the same
// device without.
#include <gtest/gtest.h>

#include <algorithm>
#include <set>

#include "simulator/virtual_echosounder.h"
#include "tests/simulator/far_end.h"

namespace tw::sim {
namespace {

struct Voyage {
  std::string stream;
  std::vector<SentPing> pings;

  [[nodiscard]] std::string Text(size_t i) const { return stream.substr(pings[i].offset, pings[i].size); }
};

Voyage Sail(DeviceFamily family, int32_t mode, const SounderFaults& faults, int64_t until_us = 5'990'000) {
  VirtualEchosounder device({.family = family,
                             .baud = 12'000'000,
                             .delivery_us = 1'000,
                             .outputMode = mode,
                             .pingsPerSecond = 50.0,
                             .sampleCount = 100,
                             .streaming = true,
                             .faults = faults});
  Voyage run;
  run.stream = FarEnd(device).ReadUntil(until_us);
  run.pings.assign(device.Pings().Entries().begin(), device.Pings().Entries().end());
  return run;
}

constexpr DeviceFamily kFamilies[] = {DeviceFamily::first, DeviceFamily::second};

// Of the message as it should have been and as it is: the same but for the place that the account names.
void ExpectDamagedThereOnly(const std::string& meant, const std::string& sent, const SentPing& ping) {
  ASSERT_NE(meant, sent);
  ASSERT_LE(ping.faultAt + ping.faultSize, sent.size());
  EXPECT_EQ(meant.substr(0, ping.faultAt), sent.substr(0, ping.faultAt));
  if (ping.fault == StreamFault::truncated) {
    EXPECT_EQ(sent.size(), ping.faultAt);
    return;
  }
  const std::string behind = sent.substr(ping.faultAt + ping.faultSize);
  EXPECT_TRUE(meant.ends_with(behind)) << "what follows is unchanged";
}

TEST(StreamFaults, BytesAreDamagedWhereTheAccountSays) {
  constexpr StreamFault kByteFaults[] = {StreamFault::flippedBytes, StreamFault::lostBytes,
                                         StreamFault::doubledBytes, StreamFault::truncated,
                                         StreamFault::absurdCount,  StreamFault::notANumber};
  for (const DeviceFamily family : kFamilies) {
    for (const StreamMode& mode : StreamModesOf(family)) {
      const Voyage clean = Sail(family, mode.outputMode, {});
      for (const StreamFault fault : kByteFaults) {
        SCOPED_TRACE(testing::Message() << "family " << static_cast<int>(family) << " mode "
                                        << mode.outputMode << " fault " << static_cast<int>(fault));
        const Voyage hit = Sail(family, mode.outputMode, {.stream = {fault}, .streamRate = 0.2});
        ASSERT_EQ(hit.pings.size(), clean.pings.size());
        size_t damaged = 0;
        for (size_t i = 0; i < hit.pings.size(); ++i) {
          const SentPing& ping = hit.pings[i];
          EXPECT_EQ(ping.faulty, !ping.intact);
          EXPECT_EQ(ping.hash == clean.pings[i].hash, ping.intact);
          EXPECT_EQ(ping.altitude_m, clean.pings[i].altitude_m) << "the account tells what was meant";
          if (ping.intact) {
            EXPECT_EQ(hit.Text(i), clean.Text(i));
            continue;
          }
          ++damaged;
          EXPECT_EQ(ping.fault, fault);
          ExpectDamagedThereOnly(clean.Text(i), hit.Text(i), ping);
        }
        EXPECT_NEAR(static_cast<double>(damaged) / static_cast<double>(hit.pings.size()), 0.2, 0.08);
      }
    }
  }
}

TEST(StreamFaults, JumpingClockIsToldAsItJumped) {
  for (const DeviceFamily family : kFamilies) {
    for (const StreamMode& mode : StreamModesOf(family)) {
      SCOPED_TRACE(mode.outputMode);
      const Voyage clean = Sail(family, mode.outputMode, {});
      const Voyage hit =
          Sail(family, mode.outputMode, {.stream = {StreamFault::timeJump}, .streamRate = 0.5});
      std::set<int64_t> jumps;
      for (size_t i = 0; i < hit.pings.size(); ++i) {
        EXPECT_TRUE(hit.pings[i].intact);
        const int64_t jump = int64_t{hit.pings[i].deviceTime_s} - clean.pings[i].deviceTime_s;
        EXPECT_EQ(jump != 0, hit.pings[i].faulty);
        EXPECT_EQ(hit.Text(i) == clean.Text(i), jump == 0);
        jumps.insert(jump);
      }
      EXPECT_EQ(jumps.size() > 5, mode.tellsTime) << "a message without time cannot show it";
    }
  }
}

TEST(StreamFaults, AnotherModeThanTheOneAskedFor) {
  for (const DeviceFamily family : kFamilies) {
    for (const StreamMode& mode : StreamModesOf(family)) {
      SCOPED_TRACE(mode.outputMode);
      const Voyage hit =
          Sail(family, mode.outputMode, {.stream = {StreamFault::otherMode}, .streamRate = 0.5});
      std::set<int32_t> others;
      for (const SentPing& ping : hit.pings) {
        EXPECT_EQ(ping.outputMode != mode.outputMode, ping.faulty);
        EXPECT_EQ(ping.intact, !ping.faulty);
        others.insert(ping.outputMode);
      }
      EXPECT_GE(others.size(), StreamModesOf(family).size() - 1) << "any of the family's";
    }
  }
}

TEST(StreamFaults, SeededAndMixed) {
  const SounderFaults faults = {.stream = {StreamFault::lostBytes, StreamFault::notANumber},
                                .streamRate = 0.3};
  const Voyage once = Sail(DeviceFamily::first, 2, faults);
  EXPECT_EQ(once.stream, Sail(DeviceFamily::first, 2, faults).stream);
  std::set<StreamFault> seen;
  for (const SentPing& ping : once.pings) seen.insert(ping.fault);
  EXPECT_EQ(seen, (std::set{StreamFault::none, StreamFault::lostBytes, StreamFault::notANumber}));
}

TEST(StreamFaults, RateFromNeverToAlways) {
  const struct {
    double rate;
    bool all;
  } rows[] = {{-1.0, false}, {0.0, false}, {1.0, true}, {5.0, true}};
  for (const auto& row : rows) {
    const Voyage run = Sail(DeviceFamily::first, 8,
                            {.stream = {StreamFault::flippedBytes}, .streamRate = row.rate}, 1'000'000);
    EXPECT_TRUE(std::all_of(run.pings.begin(), run.pings.end(),
                            [&](const SentPing& ping) { return ping.faulty == row.all; }));
  }
}

}  // namespace
}  // namespace tw::sim
