// Faults inside the stream, in every mode: the account of a device with faults against the stream of the same
// device without.
#include <gtest/gtest.h>

#include "simulator/echo_stream.h"
#include "tests/simulator/recorded_stream.h"

namespace tw::sim {
namespace {

RecordedStream Sail(DeviceFamily family, const StreamMode& mode, const SounderFaults& faults) {
  return {{.family = family,
           .outputMode = mode.outputMode,
           .pingsPerSecond = 50.0,
           .sampleCount = 100,
           .faults = faults},
          5'990'000};
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

void ExpectAccount(const RecordedStream& clean, const RecordedStream& hit, StreamFault fault) {
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

TEST(StreamFaults, BytesAreDamagedWhereTheAccountSays) {
  for (const DeviceFamily family : {DeviceFamily::first, DeviceFamily::second}) {
    for (const StreamMode& mode : StreamModesOf(family)) {
      const RecordedStream clean = Sail(family, mode, {});
      for (const StreamFault fault :
           {StreamFault::flippedBytes, StreamFault::lostBytes, StreamFault::doubledBytes,
            StreamFault::truncated, StreamFault::absurdCount, StreamFault::notANumber}) {
        SCOPED_TRACE(testing::Message() << "family " << static_cast<int>(family) << " mode "
                                        << mode.outputMode << " fault " << static_cast<int>(fault));
        ExpectAccount(clean, Sail(family, mode, {.stream = {fault}, .streamRate = 0.2}), fault);
      }
    }
  }
}

}  // namespace
}  // namespace tw::sim
