// A run of the acquisition worker: channels, status texts, marks, and how it ends. That every value and
// sample of a ping reaches its ring is shown with the virtual echosounder, end to end.
#include <gtest/gtest.h>

#include <cmath>

#include "acquisition/altimeter_lines.h"
#include "acquisition/device_block.h"
#include "acquisition/live_worker.h"
#include "acquisition/nmea_depth.h"
#include "acquisition/time_marks.h"
#include "app/state/ping_facts.h"
#include "base/shared_value.h"
#include "platform/thread.h"
#include "platform/virtual/debug_capture.h"
#include "platform/virtual/file_sink.h"
#include "tests/acquisition/golden_block.h"
#include "tests/acquisition/live_fixture.h"
#include "tests/acquisition/mark_text.h"
#include "tests/display/marks_at_pings.h"

namespace tw {
namespace {

using test::EchoBlock;
using test::kGoldenBlock;
using test::TakePostedTexts;

class LiveWorker : public test::LiveTest {};

TEST_F(LiveWorker, TenBitSamplesAreScaledAndThoseOfTheLastBlockAreGone) {
  state_.settings.outputMode = 2;
  Take(kGoldenBlock);
  Take("#DeviceID A\r\n#NSamples 3\r\n##DataStart\r\n5\r\n\r\n\r\n");
  // The sampling frequency is the configured 50,000 Hz, and two of the three samples did not come.
  EXPECT_EQ(SamplesA(6), (std::vector<uint16_t>{20, 20, 0, 0, 0, 0}));
  EXPECT_EQ(PingA().altitude_m, 4.25f) << "the previous block's";
}

TEST_F(LiveWorker, DualBlocksGoToTheirChannelsAndOneWithoutFrequencyIsDropped) {
  globals.dualMode = 1;
  state_.ringIndexA = 40;
  state_.ringIndexB = 9'000;
  Take(EchoBlock(1, 200'000) + EchoBlock(2, 30'000) + EchoBlock(3, 0));
  EXPECT_EQ(program_.IndexA(), 41);
  EXPECT_EQ(program_.IndexB(), 41) << "both rings start at the same slot";
  EXPECT_EQ(PingA().ping, 1u);
  EXPECT_EQ(PingA().range_m, 12.5f);
  EXPECT_EQ(PingA().pitch_deg, 450.0f) << "a stream without attitude shows none";
  EXPECT_EQ(PingB().ping, 2u);
  EXPECT_EQ(PingB().range_m, 40.0f);
  EXPECT_EQ(LoadShared(globals.latestAltitudeHigh_m), 1.5f);
  EXPECT_EQ(LoadShared(globals.latestAltitudeLow_m), 2.5f);
  EXPECT_EQ(LoadShared(globals.attitudePresent), 1);
  EXPECT_EQ(globals.marksA.count, 0) << "\"Timestamp\" is not ticked";
  Take(EchoBlock(4, 33'000));
  EXPECT_EQ(PingB().ping, 4u) << "the virtual low frequency";
}

// The view keeps what a block does not tell; whoever passes depths on must not.
TEST_F(LiveWorker, OffersWhatABlockItselfTellsAndTheFixOfThatMoment) {
  struct Listener final : PingSink {
    void Offer(const PingFacts& ping) override { pings.push_back(ping); }
    std::vector<PingFacts> pings;
  } listener;
  state_.outputs = &listener;
  globals.fix.quality = 4;
  globals.gpsUpdates = 7;
  Take(kGoldenBlock);
  Take("#DeviceID A\r\n#NSamples 3\r\n##DataStart\r\n5\r\n\r\n\r\n");
  ASSERT_EQ(listener.pings.size(), 2u);
  EXPECT_EQ(listener.pings[0].altitude_m, 4.25f);
  EXPECT_EQ(listener.pings[0].range_m, 12.5f);
  EXPECT_EQ(listener.pings[0].fix.quality, 4);
  EXPECT_EQ(listener.pings[0].fixUpdates, 7u);
  EXPECT_EQ(MillisecondClock() - listener.pings[1].clock_ms, 50u);
  for (const float value : {listener.pings[1].altitude_m, listener.pings[1].temperature_c}) {
    EXPECT_TRUE(std::isnan(value));
  }
  EXPECT_EQ(PingA().altitude_m, 4.25f);

  program_.StopWorker();
  globals.dualMode = 1;
  RunWith("Dual : 1, 4.125, 5.5, 11.4\r\n", kDualStream);
  ASSERT_EQ(listener.pings.size(), 4u);
  for (const bool second : {false, true}) {
    EXPECT_EQ(listener.pings[second ? 3 : 2].altitude_m, second ? 5.5f : 4.125f);
    EXPECT_EQ(listener.pings[second ? 3 : 2].secondChannel, second);
    EXPECT_TRUE(listener.pings[second ? 3 : 2].dual);
  }
}

TEST_F(LiveWorker, StopIsHeardWithinATenthOfASecondInSilenceAndInEndlessGarbage) {
  const struct {
    const char* what;
    const StreamForm& form;
    const char* garbage;
  } rows[] = {{"silence", kFirstTextStream, ""},
              {"echo text", kFirstTextStream, "#DeviceID garbage "},
              {"blocks", kBlockStream, "TIDEWRITECTIDEWRIT"},
              {"lines with a mark", kDesoStream, "DA 1 garbage "},
              {"lines without", kOldStream, "1 garbage 1"},
              {"epochs", kFirstNmeaStream, "#F $SDZDA garbage"}};
  for (const auto& row : rows) {
    const int64_t now_ms = VirtualNow_us() / 1'000;
    for (int64_t ms = 0; ms < 1'500; ++ms) device_.At_ms(now_ms + ms, row.garbage);
    Run_ms(1'000, row.form);
    const int64_t begin_us = VirtualNow_us();
    program_.StopWorker();
    EXPECT_LE(VirtualNow_us() - begin_us, 102'000) << row.what;
    SleepMilliseconds(1'000);
  }
}

TEST_F(LiveWorker, InputThatTheLineLostIsCounted) {
  StartDebugCapture();
  for (const uint64_t call : {3, 7}) InjectFault({.point = FaultPoint::overrunLine, .call = call});
  Run_ms(2'000);
  EXPECT_EQ(TakeDebugTexts(),
            (std::vector<std::wstring>{L"Serial input lost : 1\n", L"Serial input lost : 2\n"}));
  StopDebugCapture();
}

TEST_F(LiveWorker, SilenceOfMoreThanAMinuteIsALostLink) {
  device_.At_ms(500, EchoBlock(1));
  device_.At_ms(60'000, EchoBlock(2));
  // The first empty read ends a time-out of 100 ms after the last byte; silence counts from there.
  Run_ms(120'050);
  EXPECT_EQ(LoadShared(state_.linkLost), 0);
  Run_ms(300);
  EXPECT_EQ(LoadShared(state_.linkLost), 1);
  EXPECT_EQ(WaitForThread(state_.acquisitionThread, 0), ThreadWait::timedOut) << "the worker listens on";
}

TEST_F(LiveWorker, APulledPlugEndsTheWorkerAndIsALostLink) {
  program_.OpenFile(test::kA, L"a.log");
  device_.HangUpAt_ms(1'000);
  Run_ms(1'010);
  program_.WaitForWorker();
  EXPECT_EQ(LoadShared(state_.linkLost), 1);
  EXPECT_EQ(program_.FileContent(L"a.log"), "absent");
}

TEST_F(LiveWorker, AWorkerOfAnEarlierRunTouchesNothing) {
  program_.OpenFile(test::kA, L"a.log");
  device_.At_ms(1'000, EchoBlock(1));
  Run_ms(500);
  StoreShared(state_.runNumber, 2u);
  Signal(state_.stopEvent);
  SleepMilliseconds(1'000);
  program_.WaitForWorker();
  EXPECT_TRUE(WaitForEvent(state_.stopEvent, 0)) << "the next worker's";
  EXPECT_TRUE(IsRecordFileOpen(state_, test::kA));
  EXPECT_EQ(program_.IndexA(), 0);
  EXPECT_EQ(LoadShared(state_.linkLost), 0);
}

TEST_F(LiveWorker, RunsWithTheValuesOfItsStartWhateverIsChosenMeanwhile) {
  program_.StartWorker();
  state_.settings.rangeHigh_mm = 99'000;  // before its first step
  globals.dualMode = 1;
  Take(EchoBlock(1, 30'000));
  EXPECT_EQ(PingA().ping, 1u);
  EXPECT_EQ(PingA().range_m, 12.5f);
}

TEST_F(LiveWorker, WhoseStartIsNotItsOwnTouchesNothing) {
  state_.ringIndexB = 9'000;
  program_.OpenFile(test::kA, L"a.log");
  device_.HangUpAt_ms(0);
  for (const bool taken : {true, false}) {
    program_.StartWorker();
    if (taken) delete ExchangeShared(state_.liveStart, nullptr);
    StoreShared(state_.runNumber, state_.runNumber + (taken ? 0 : 1));  // another Stop and Start
    Signal(state_.stopEvent);
    SleepMilliseconds(1'000);
    program_.WaitForWorker();
    EXPECT_TRUE(WaitForEvent(state_.stopEvent, 0)) << taken;
    EXPECT_EQ(program_.IndexB(), 9'000) << taken;
    EXPECT_EQ(LoadShared(globals.attitudePresent), 0) << taken;
    EXPECT_EQ(LoadShared(state_.linkLost), 0) << taken;
    EXPECT_TRUE(IsRecordFileOpen(state_, test::kA)) << taken;
  }
  EXPECT_TRUE(TakePostedTexts().empty());
}

TEST_F(LiveWorker, APingIsValidWithAPositionAlone) {
  const struct {
    int32_t quality;
    uint32_t presence;
    int32_t valid;
  } rows[] = {
      {1, 0, 0}, {1, kHasGsa | kHasGsv | kHasVtg, 0}, {1, kHasRmc, 1}, {1, kHasGga, 1}, {0, kHasGga, 0}};
  uint32_t number = 0;
  for (const auto& row : rows) {
    globals.gpsQuality = row.quality;
    globals.fix.presence = row.presence;
    Take(EchoBlock(++number));
    EXPECT_EQ(PingA().ping, number);
    EXPECT_EQ(PingA().gpsValid, row.valid) << row.quality << " " << row.presence;
  }
}

TEST_F(LiveWorker, WithTwoSecondsBetweenPingsAMarkComesEachFifteen) {
  globals.timestampTicked = 1;
  globals.marksAtStart = 300;
  for (uint32_t ping = 0; ping < 17; ++ping) device_.At_ms(1'000 + 2'000 * ping, EchoBlock(ping));
  Run_ms(35'000);
  const char* const newest[] = {"0001 M 2023-11-14 22:13:53", "0001 M 2023-11-14 22:13:51",
                                "0000 M 2023-11-14 22:13:49"};
  char text[kMarkTextSize];
  for (int32_t age = 0; age < 3; ++age) {
    ASSERT_TRUE(CopyMark(globals.marksA, age, text));
    EXPECT_STREQ(text, newest[age]);
  }
  EXPECT_FALSE(CopyMark(globals.marksA, 17, text)) << "one entry a ping";
  EXPECT_FALSE(CopyMark(globals.marksB, 0, text));
  EXPECT_EQ(LoadShared(globals.measuredPingInterval_ms), 2'000.0f);
}

// The channels ping in turn, each 200 ms with a jitter, and their image is half as long.
TEST_F(LiveWorker, EachChannelOfADualRunHasAMarkIn15SecondsWhereItsPingStands) {
  globals.dualMode = globals.timestampTicked = 1;
  globals.marksAtStart = 150;
  state_.timeScaleUpper = state_.timeScaleLower = 150;
  for (uint32_t i = 0; i < 500; ++i) {
    device_.At_ms(1'000 + 100 * i + i * i % 31, EchoBlock(i, i % 2 == 0 ? 200'000 : 30'000));
  }
  for (int32_t second = 0; second < 52; ++second) {
    Run_ms(1'000);
    static_cast<void>(test::NumbersAtTheirPings(state_, PanelPlace::upper, globals.marksA));
    static_cast<void>(test::NumbersAtTheirPings(state_, PanelPlace::lower, globals.marksB));
  }
  const std::vector<int32_t> numbers = {3, 2, 1, 0};
  EXPECT_EQ(test::NumbersAtTheirPings(state_, PanelPlace::upper, globals.marksA), numbers);
  EXPECT_EQ(test::NumbersAtTheirPings(state_, PanelPlace::lower, globals.marksB), numbers);
}

TEST_F(LiveWorker, TheStatusBarHearsOfAPingAtMostOnceASecond) {
  for (uint32_t ping = 0; ping < 30; ++ping) device_.At_ms(100 + 100 * ping, EchoBlock(ping));
  Run_ms(4'000);
  const auto posts = TakePostedTexts();
  ASSERT_EQ(posts.size(), 3u) << "pings 0, 11 and 22: a second has passed when it is more than one";
  EXPECT_EQ(posts[1].part, StatusPart::pingLine);
  EXPECT_EQ(posts[0].text, L"Time:14.11.2023 22:13:20 UTC Ping:0, Altitude:0.500m, Temperature:0.0\u00B0C");
  EXPECT_EQ(posts[1].text, L"Time:14.11.2023 22:13:21 UTC Ping:11, Altitude:11.500m, Temperature:0.0\u00B0C");
}

}  // namespace
}  // namespace tw
