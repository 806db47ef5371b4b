// Faults inside the stream, in every mode: the account of a device with faults against the stream of the same
// device without.
#include <gtest/gtest.h>

#include <set>

#include "simulator/echo_stream.h"
#include "tests/simulator/recorded_stream.h"

namespace tw::sim {
namespace {

RecordedStream Sail(DeviceFamily family, int32_t mode, const SounderFaults& faults) {
  return {Fast({.family = family,
                .outputMode = mode,
                .pingsPerSecond = 50.0,
                .sampleCount = 100,
                .faults = faults}),
          5'990'000};
}

// Calls visit(family, mode) for each mode of the first and of the second family.
template <typename Visitor>
void ForEachMode(Visitor visit) {
  for (const DeviceFamily family : {DeviceFamily::first, DeviceFamily::second}) {
    for (const StreamMode& mode : StreamModesOf(family)) {
      SCOPED_TRACE(testing::Message()
                   << "family " << static_cast<int>(family) << " mode " << mode.outputMode);
      visit(family, mode);
    }
  }
}

// Of the message as it should have been and as it is: the same but for the place that the account names.
void ExpectDamagedThereOnly(const std::string& meant, const std::string& sent, const SentPing& ping) {
  ASSERT_NE(meant, sent);
  ASSERT_LE(ping.faultAt + ping.faultSize, sent.size());
  EXPECT_EQ(meant.substr(0, ping.faultAt), sent.substr(0, ping.faultAt));
  if (ping.fault == StreamFault::truncated) {
    EXPECT_EQ(sent.size(), ping.faultAt);
  } else {
    EXPECT_TRUE(meant.ends_with(sent.substr(ping.faultAt + ping.faultSize))) << "what follows is unchanged";
  }
}

TEST(StreamFaults, BytesAreDamagedWhereTheAccountSays) {
  ForEachMode([](DeviceFamily family, const StreamMode& mode) {
    const RecordedStream clean = Sail(family, mode.outputMode, {});
    for (const StreamFault fault :
         {StreamFault::flippedBytes, StreamFault::lostBytes, StreamFault::doubledBytes,
          StreamFault::truncated, StreamFault::absurdCount, StreamFault::notANumber}) {
      SCOPED_TRACE(testing::Message() << "fault " << static_cast<int>(fault));
      const RecordedStream hit = Sail(family, mode.outputMode, {.stream = {fault}, .streamRate = 0.2});
      ASSERT_EQ(hit.size(), clean.size());
      size_t damaged = 0;
      for (size_t i = 0; i < hit.size(); ++i) {
        const SentPing& ping = hit.Ping(i);
        EXPECT_EQ(ping.faulty, !ping.intact);
        EXPECT_EQ(ping.hash == clean.Ping(i).hash, ping.intact);
        EXPECT_EQ(ping.altitude_m, clean.Ping(i).altitude_m) << "the account tells what was meant";
        if (ping.intact) {
          EXPECT_EQ(hit.Text(i), clean.Text(i));
          continue;
        }
        ++damaged;
        EXPECT_EQ(ping.fault, fault);
        ExpectDamagedThereOnly(clean.Text(i), hit.Text(i), ping);
      }
      EXPECT_NEAR(static_cast<double>(damaged) / static_cast<double>(hit.size()), 0.2, 0.08);
    }
  });
}

TEST(StreamFaults, JumpingClockIsToldAsItJumped) {
  ForEachMode([](DeviceFamily family, const StreamMode& mode) {
    const RecordedStream clean = Sail(family, mode.outputMode, {});
    const RecordedStream hit =
        Sail(family, mode.outputMode, {.stream = {StreamFault::timeJump}, .streamRate = 0.5});
    std::set<int64_t> jumps;
    for (size_t i = 0; i < hit.size(); ++i) {
      EXPECT_TRUE(hit.Ping(i).intact);
      const int64_t jump = int64_t{hit.Ping(i).deviceTime_s} - clean.Ping(i).deviceTime_s;
      EXPECT_EQ(jump != 0, hit.Ping(i).faulty);
      EXPECT_EQ(hit.Text(i) == clean.Text(i), jump == 0);
      jumps.insert(jump);
    }
    EXPECT_EQ(jumps.size() > 5, mode.tellsTime) << "a message without time cannot show it";
  });
}

TEST(StreamFaults, AnotherModeThanTheOneAskedFor) {
  ForEachMode([](DeviceFamily family, const StreamMode& mode) {
    const RecordedStream hit =
        Sail(family, mode.outputMode, {.stream = {StreamFault::otherMode}, .streamRate = 0.5});
    std::set<int32_t> others;
    for (size_t i = 0; i < hit.size(); ++i) {
      const SentPing& ping = hit.Ping(i);
      EXPECT_EQ(ping.outputMode != mode.outputMode, ping.faulty);
      EXPECT_EQ(ping.intact, !ping.faulty);
      others.insert(ping.outputMode);
    }
    EXPECT_GE(others.size(), StreamModesOf(family).size() - 1) << "any of the family's";
  });
}

}  // namespace
}  // namespace tw::sim
