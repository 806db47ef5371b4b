// The acquisition worker on the virtual clock, with a device that sends given bytes at given times.
#include <gtest/gtest.h>

#include "acquisition/time_marks.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/host/faults.h"
#include "platform/host/virtual_clock.h"
#include "platform/thread.h"
#include "tests/acquisition/golden_block.h"
#include "tests/acquisition/live_program.h"
#include "tests/acquisition/scripted_line.h"

namespace tw {
namespace {

using test::EchoBlock;
using test::kGoldenBlock;
using test::LiveProgram;
using test::ScriptedLine;
using test::TakePostedTexts;

constexpr int64_t kBegin_ms = 1'700'000'000'000;  // 2023-11-14 22:13:20 UTC

class LiveWorker : public testing::Test {
 protected:
  // Runs the worker until the virtual clock stands there.
  void RunUntil_ms(int64_t time_ms) {
    if (program_.State().acquisitionThread == Handle::null) program_.StartWorker();
    SleepMilliseconds(static_cast<uint32_t>(time_ms - VirtualNow_us() / 1'000));
  }

  const VirtualClock clock_{kBegin_ms};
  ScriptedLine device_;
  LiveProgram program_{device_};
  AppState& state_ = program_.State();
};

TEST_F(LiveWorker, APingReachesTheRing) {
  globals.gpsLatitude_rad = 0.5f;
  globals.gpsLongitude_rad = -1.5f;
  globals.fix.elevation_m = 37.25;
  globals.gpsTime_s = 1'699'999'999;
  globals.gpsPdop = 2.5f;
  globals.gpsQuality = 1;
  state_.ringIndexA = 7;
  device_.At_ms(1'500, kGoldenBlock);
  RunUntil_ms(2'000);

  ASSERT_EQ(program_.IndexA(), 8);
  const PingHeader ping = program_.HeaderA(8);
  EXPECT_EQ(ping.deviceSeconds, 0u) << "only frames of binary blocks hold the device's time";
  EXPECT_EQ(ping.timeOfWork_s, 1'700'000'001u) << "this computer's clock, not the device's";
  EXPECT_EQ(ping.ping, 17u);
  EXPECT_EQ(ping.samplingFrequency_hz, 25'000u);
  EXPECT_EQ(ping.sampleCount, 4u);
  EXPECT_EQ(ping.range_m, 12.5f);
  EXPECT_EQ(ping.txFrequency_hz, 200'000);
  EXPECT_EQ(ping.altitude_m, 4.25f);
  EXPECT_EQ(ping.temperature_c, 11.4f);
  EXPECT_EQ(ping.pitch_deg, 1.2f);
  EXPECT_EQ(ping.roll_deg, -0.35f);
  EXPECT_EQ(ping.gpsLatitude_rad, 0.5f);
  EXPECT_EQ(ping.gpsLongitude_rad, -1.5f);
  EXPECT_EQ(ping.gpsAltitude_m, 37.25f);
  EXPECT_EQ(ping.gpsTime_s, 1'699'999'999u);
  EXPECT_EQ(ping.gpsPdop, 2.5f);
  EXPECT_EQ(ping.gpsValid, 1);
  EXPECT_EQ(program_.SamplesA(8, 17),
            (std::vector<uint16_t>{12, 12, 12, 12, 7, 7, 7, 7, 4011, 4011, 4011, 4011, 0, 0, 0, 0, 0}));
  EXPECT_EQ(LoadShared(globals.pingCounter), 17u);
  EXPECT_EQ(LoadShared(globals.latestAltitudeHigh_m), 4.25f);
  EXPECT_EQ(LoadShared(globals.attitudePresent), 1);
}

TEST_F(LiveWorker, TenBitSamplesAreScaledAndSamplesOfTheLastBlockAreGone) {
  state_.settings.outputMode = 2;
  device_.At_ms(100, kGoldenBlock);
  device_.At_ms(200, "#DeviceID A\r\n#NSamples 3\r\n##DataStart\r\n5\r\n\r\n\r\n");
  RunUntil_ms(300);
  // The sampling frequency is the configured 50,000 Hz, and two of the three samples did not come.
  EXPECT_EQ(program_.SamplesA(program_.IndexA(), 6), (std::vector<uint16_t>{20, 20, 0, 0, 0, 0}));
  EXPECT_EQ(program_.HeaderA(program_.IndexA()).altitude_m, 4.25f) << "the previous block's";
}

TEST_F(LiveWorker, TheSecondFamilysBlockTakesTheConfiguredSamplingFrequency) {
  const struct {
    int32_t mode;
    std::vector<uint16_t> samples;  // four, twice each at the configured 50,000 Hz
  } cases[] = {{2, {48, 48, 28, 28, 16044, 16044, 0, 0}}, {5, {12, 12, 7, 7, 4011, 4011, 0, 0}}};
  globals.deviceFamily = 2;
  for (const auto& each : cases) {
    state_.settings.outputMode = each.mode;
    device_.At_ms(VirtualNow_us() / 1'000 + 100, test::kGoldenSecondBlock);
    program_.StartWorker(SecondFamilyEchoTextWorker);
    SleepMilliseconds(200);
    program_.StopWorker();
    const PingHeader ping = program_.HeaderA(program_.IndexA());
    EXPECT_EQ(ping.samplingFrequency_hz, 50'000u);
    EXPECT_EQ(ping.altitude_m, 4.25f);
    EXPECT_EQ(ping.temperature_c, 11.4f);
    EXPECT_EQ(program_.SamplesA(program_.IndexA(), 8), each.samples) << "mode " << each.mode;
  }
}

TEST_F(LiveWorker, AStreamWithoutAttitudeShowsNone) {
  device_.At_ms(100, EchoBlock(1));
  RunUntil_ms(200);
  EXPECT_EQ(program_.HeaderA(1).pitch_deg, 450.0f);
  EXPECT_EQ(program_.HeaderA(1).roll_deg, 0.0f);
}

TEST_F(LiveWorker, DualBlocksGoToTheirChannelsAndOneWithoutFrequencyIsDropped) {
  globals.dualMode = 1;
  state_.ringIndexA = 40;
  state_.ringIndexB = 9'000;
  device_.At_ms(100, EchoBlock(1, 200'000) + EchoBlock(2, 30'000) + EchoBlock(3, 0));
  RunUntil_ms(150);
  EXPECT_EQ(program_.IndexA(), 41);
  EXPECT_EQ(program_.IndexB(), 41) << "both rings start at the same slot";
  EXPECT_EQ(program_.HeaderA(41).ping, 1u);
  EXPECT_EQ(program_.HeaderA(41).range_m, 12.5f);
  EXPECT_EQ(program_.HeaderB(41).ping, 2u);
  EXPECT_EQ(program_.HeaderB(41).range_m, 40.0f);
  EXPECT_EQ(LoadShared(globals.latestAltitudeHigh_m), 1.5f);
  EXPECT_EQ(LoadShared(globals.latestAltitudeLow_m), 2.5f);
  device_.At_ms(200, EchoBlock(4, 33'000));
  RunUntil_ms(250);
  EXPECT_EQ(program_.HeaderB(program_.IndexB()).ping, 4u) << "the virtual low frequency";
}

TEST_F(LiveWorker, ASingleRunNeedsNoFrequencyAndHasOneChannel) {
  device_.At_ms(100, EchoBlock(1, 0) + EchoBlock(2, 30'000));
  RunUntil_ms(200);
  EXPECT_EQ(program_.HeaderA(1).ping, 2u);
  EXPECT_EQ(program_.HeaderB(1).ping, 0u);
}

TEST_F(LiveWorker, StopIsHeardWithinATenthOfASecondInSilenceAndInEndlessGarbage) {
  RunUntil_ms(1'000);
  int64_t begin_us = VirtualNow_us();
  program_.StopWorker();
  EXPECT_LE(VirtualNow_us() - begin_us, 101'000);

  for (int64_t time_ms = 1'000; time_ms < 4'000; ++time_ms) device_.At_ms(time_ms, "#DeviceID garbage ");
  program_.StartWorker();
  SleepMilliseconds(1'000);
  begin_us = VirtualNow_us();
  program_.StopWorker();
  EXPECT_LE(VirtualNow_us() - begin_us, 102'000);
}

TEST_F(LiveWorker, SilenceOfMoreThanAMinuteIsALostLink) {
  device_.At_ms(500, EchoBlock(1));
  device_.At_ms(60'000, EchoBlock(2));
  // The first empty read ends a time-out of 100 ms after the last byte; silence counts from there.
  RunUntil_ms(120'050);
  EXPECT_EQ(LoadShared(state_.linkLost), 0);
  RunUntil_ms(120'350);
  EXPECT_EQ(LoadShared(state_.linkLost), 1);
  EXPECT_EQ(WaitForThread(state_.acquisitionThread, 0), ThreadWait::timedOut) << "the worker listens on";
}

TEST_F(LiveWorker, APulledPlugEndsTheWorkerAndIsALostLink) {
  program_.OpenFile(RecordChannel::a, L"a.log");
  device_.HangUpAt_ms(1'000);
  RunUntil_ms(1'010);
  program_.WaitForWorker();
  EXPECT_EQ(LoadShared(state_.linkLost), 1);
  EXPECT_FALSE(IsRecordFileOpen(state_, RecordChannel::a));
  EXPECT_EQ(program_.FileContent(L"a.log"), "absent");
}

TEST_F(LiveWorker, AWorkerOfAnEarlierRunTouchesNothing) {
  program_.OpenFile(RecordChannel::a, L"a.log");
  device_.At_ms(1'000, EchoBlock(1));
  RunUntil_ms(500);
  StoreShared(state_.runNumber, 2u);
  Signal(state_.stopEvent);
  SleepMilliseconds(1'000);
  program_.WaitForWorker();
  EXPECT_TRUE(WaitForEvent(state_.stopEvent, 0)) << "the next worker's";
  EXPECT_TRUE(IsRecordFileOpen(state_, RecordChannel::a));
  EXPECT_EQ(program_.IndexA(), 0);
  EXPECT_EQ(LoadShared(state_.linkLost), 0);
}

TEST_F(LiveWorker, WithTwoSecondsBetweenPingsAMarkComesEachFifteen) {
  globals.timestampTicked = 1;
  globals.marksAtStart = 300;
  for (uint32_t ping = 0; ping < 17; ++ping) device_.At_ms(1'000 + 2'000 * ping, EchoBlock(ping));
  RunUntil_ms(35'000);
  char text[kMarkTextSize];
  ASSERT_TRUE(CopyMark(globals.marksA, 0, text));
  EXPECT_STREQ(text, "0001 M 2023-11-14 22:13:53");
  ASSERT_TRUE(CopyMark(globals.marksA, 1, text));
  EXPECT_STREQ(text, "0001 M 2023-11-14 22:13:51");
  ASSERT_TRUE(CopyMark(globals.marksA, 2, text));
  EXPECT_STREQ(text, "0000 M 2023-11-14 22:13:49");
  EXPECT_FALSE(CopyMark(globals.marksA, 17, text)) << "one entry a ping";
  EXPECT_FALSE(CopyMark(globals.marksB, 0, text));
  EXPECT_EQ(LoadShared(globals.measuredPingInterval_ms), 2'000.0f);
}

TEST_F(LiveWorker, WithoutTheTickNothingIsMarked) {
  device_.At_ms(100, EchoBlock(1));
  RunUntil_ms(200);
  EXPECT_EQ(globals.marksA.count, 0);
}

TEST_F(LiveWorker, TheStatusBarHearsOfAPingAtMostOnceASecond) {
  for (uint32_t ping = 0; ping < 30; ++ping) device_.At_ms(100 + 100 * ping, EchoBlock(ping));
  RunUntil_ms(4'000);
  const auto posts = TakePostedTexts();
  ASSERT_EQ(posts.size(), 3u) << "pings 0, 11 and 22: a second has passed when it is more than one";
  EXPECT_EQ(posts[1].part, StatusPart::pingLine);
  EXPECT_EQ(posts[0].text, L"Time:14.11.2023 22:13:20 UTC Ping:0, Altitude:0.500m, Temperature:0.0\u00B0C");
  EXPECT_EQ(posts[1].text, L"Time:14.11.2023 22:13:21 UTC Ping:11, Altitude:11.500m, Temperature:0.0\u00B0C");
}

TEST_F(LiveWorker, ADualRunsLineTellsBothAltitudes) {
  globals.dualMode = 1;
  device_.At_ms(100, EchoBlock(1, 30'000));
  device_.At_ms(1'200, EchoBlock(2, 200'000));
  RunUntil_ms(2'000);
  const auto posts = TakePostedTexts();
  ASSERT_EQ(posts.size(), 2u);
  EXPECT_EQ(posts[1].text,
            L"Time:14.11.2023 22:13:21, Ping:2, AltitudeH:2.50m, AltitudeL:1.50m, Temperature:0.0\u00B0C");
}

}  // namespace
}  // namespace tw
