// What a live run of any family and mode put into the rings, its recording puts there again: the same pings
// in the same order.
#include <gtest/gtest.h>

#include <algorithm>

#include "acquisition/ping_ring.h"
#include "app/control_states.h"
#include "app/playback_control.h"
#include "app/run_control.h"
#include "base/bytes.h"
#include "base/shared_value.h"
#include "display/slider_messages.h"
#include "platform/clock.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {
namespace {

constexpr uint32_t kBegin_s = 1'741'944'605;  // the fixture's first second: the device's clock is right

struct Case {
  sim::DeviceFamily family;
  int32_t mode;
  bool dual = false;
};

// What a ring shows, one entry a ping.
struct Shown {
  PingHeader header;
  std::vector<uint8_t> samples;
};

class PlayedRun : public RunControlTest, public testing::WithParamInterface<Case> {
 protected:
  void Record(const Case& each, int seconds, bool withGps = true) {
    sim::SounderOptions options = QuickSounder();
    options.family = each.family;
    options.outputMode = each.mode;
    options.dual = each.dual;
    options.depth_m = 4.0;  // within the few samples
    options.relief_m = 0.5;
    options.delivery_us = 1'000;
    options.startTime_s = kBegin_s;
    Ui().controls[ID_RECORD].checked = true;
    ConnectSounder(options);
    // Where a stream tells no time, the receiver's is recorded with each ping.
    sim::GpsOptions gps;
    gps.startTime_s = kBegin_s;
    ConnectGps(gps);
    if (withGps) ChooseGps();
    StartRun(*state_);
    ASSERT_TRUE(Ui().boxes.empty());
    Run(seconds);
    StopRun(*state_);
    for (const std::string& name : RecordFiles())
      files_.push_back((folder_ / "TIDEWRITERR57_DATA" / name).wstring());
  }

  void Play() {
    Ui().chosenFiles = files_;
    PlayFiles(*state_);
    ASSERT_TRUE(Ui().boxes.empty());
    for (int i = 0; i < 6'000 && state_->playbackAtEnd == 0; ++i) {
      SleepMilliseconds(20);
      HandleTimer(*state_, ID_TIMER_PLAYBACK_END);
    }
    SleepMilliseconds(2'000);  // the second file of a pair
  }

  // From the first slot to the newest; a ping that fills several slots counts once.
  [[nodiscard]] std::vector<Shown> ShownIn(const PingRing* ring, int32_t newest) const {
    std::vector<Shown> pings;
    for (int32_t slot = 0; slot <= newest; ++slot) {
      const uint8_t* const bytes = ring->slots[slot];
      if (LoadLe<uint32_t>(bytes + 4) == 0) continue;  // an empty slot has no header length
      const PingHeader header = LoadPingHeader(bytes);
      if (!pings.empty() && pings.back().header.ping == header.ping) continue;
      pings.push_back({header, {bytes + kSlotSamples, bytes + kSlotSize}});
    }
    return pings;
  }
  [[nodiscard]] std::vector<Shown> RingA() const { return ShownIn(state_->ringA, state_->ringIndexA); }
  [[nodiscard]] std::vector<Shown> RingB() const { return ShownIn(state_->ringB, state_->ringIndexB); }

  static void ExpectSame(const std::vector<Shown>& live, const std::vector<Shown>& played) {
    ASSERT_FALSE(live.empty());
    // A ping that is shorter than a slot can be passed over by the next one, live or in playback.
    EXPECT_GE(played.size() + played.size() / 10 + 2, live.size());
    size_t same = 0;
    auto from = live.begin();
    for (const Shown& ping : played) {
      const auto at = std::find_if(from, live.end(),
                                   [&](const Shown& each) { return each.header.ping == ping.header.ping; });
      if (at == live.end()) continue;
      from = at + 1;
      ++same;
      EXPECT_EQ(ping.header.altitude_m, at->header.altitude_m) << ping.header.ping;
      EXPECT_EQ(ping.header.temperature_c, at->header.temperature_c) << ping.header.ping;
      EXPECT_EQ(ping.header.pitch_deg, at->header.pitch_deg) << ping.header.ping;
      EXPECT_EQ(ping.header.roll_deg, at->header.roll_deg) << ping.header.ping;
      if (ping.header.timeOfWork_s != 0) {
        EXPECT_NEAR(ping.header.timeOfWork_s, at->header.timeOfWork_s, 1.0) << ping.header.ping;
      }
      EXPECT_TRUE(ping.samples == at->samples) << ping.header.ping;
    }
    EXPECT_GE(same + same / 10 + 2, played.size());
  }

  std::vector<std::wstring> files_;
};

TEST_P(PlayedRun, ShowsWhatTheLiveRunShowed) {
  Record(GetParam(), 6);
  ASSERT_FALSE(files_.empty());
  const std::vector<Shown> liveA = RingA();
  const std::vector<Shown> liveB = RingB();
  Play();
  ExpectSame(liveA, RingA());
  if (GetParam().dual) ExpectSame(liveB, RingB());
  StopRun(*state_);
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle);
}

constexpr auto kFirst = sim::DeviceFamily::first;
constexpr auto kSecond = sim::DeviceFamily::second;
constexpr auto kThird = sim::DeviceFamily::third;
constexpr Case kCases[] = {
    {kFirst, 1},       {kFirst, 2},       {kFirst, 3},       {kFirst, 4},        {kFirst, 6},
    {kFirst, 7},       {kFirst, 8},       {kFirst, 9},       {kFirst, 100},      {kFirst, 101},
    {kSecond, 1},      {kSecond, 2},      {kSecond, 3},      {kSecond, 4},       {kSecond, 5},
    {kSecond, 6},      {kSecond, 7},      {kSecond, 8},      {kSecond, 9},       {kSecond, 10},
    {kSecond, 100},    {kThird, 2},       {kThird, 3},       {kThird, 100},      {kFirst, 4, true},
    {kFirst, 6, true}, {kFirst, 7, true}, {kFirst, 8, true}, {kFirst, 100, true}};

INSTANTIATE_TEST_SUITE_P(Modes, PlayedRun, testing::ValuesIn(kCases), [](const auto& each) {
  return "Family" + std::to_string(static_cast<int>(each.param.family)) + "Mode" +
         std::to_string(each.param.mode) + (each.param.dual ? "Dual" : "");
});

// Of two files in any order the higher frequency is A; a step of A takes B along to the same recorded time.
class PlayedPair : public PlayedRun {};

TEST_F(PlayedPair, StepsAndSeeksTogether) {
  Record({kFirst, 100, true}, 40);
  ASSERT_EQ(files_.size(), 2u);
  const auto frequency = [](const PingRing* ring, int32_t index) {
    return LoadPingHeader(ring->slots[index]).txFrequency_hz;
  };
  const auto newest = [](const PingRing* ring, int32_t index) {
    return LoadPingHeader(ring->slots[index]).ping;
  };
  for (int order = 0; order < 2; ++order) {
    std::swap(files_[0], files_[1]);
    Play();
    EXPECT_GT(frequency(state_->ringA, state_->ringIndexA), frequency(state_->ringB, state_->ringIndexB));
    const uint32_t last = newest(state_->ringA, state_->ringIndexA);
    StepPlaybackBack(*state_, kBack100);
    SleepMilliseconds(100);
    EXPECT_LT(newest(state_->ringA, state_->ringIndexA) + 20, last);
    EXPECT_NEAR(newest(state_->ringA, state_->ringIndexA), newest(state_->ringB, state_->ringIndexB), 3.0);
    RequestSeek(state_->seekRequest, 0);
    SleepMilliseconds(150);
    EXPECT_NEAR(newest(state_->ringA, state_->ringIndexA), newest(state_->ringB, state_->ringIndexB), 3.0);
    StopRun(*state_);
  }
}

class PlayedTimes : public PlayedRun {};

// 300 recorded seconds are played in a fraction of that: marks and pictures go by what was recorded.
TEST_F(PlayedTimes, MarksAndPicturesGoByTheRecordedTime) {
  Record({kFirst, 100}, 300, false);
  ASSERT_EQ(files_.size(), 1u);
  StoreShared(globals.timestampTicked, 1);
  StoreShared(globals.autoCaptureTicked, 1);
  int pictures = 0;
  Ui().chosenFiles = files_;
  PlayFiles(*state_);
  for (int i = 0; i < 12'000 && state_->playbackAtEnd == 0; ++i) {
    SleepMilliseconds(10);
    if (LoadShared(globals.autoCaptureRequested) != 0) {
      ++pictures;
      StoreShared(globals.autoCaptureRequested, 0);
    }
    HandleTimer(*state_, ID_TIMER_PLAYBACK_END);
  }
  EXPECT_EQ(state_->playbackAtEnd, 1);
  EXPECT_EQ(pictures, 2) << "more than 135 s and 270 s behind the first";
  EXPECT_NEAR(globals.marksA.markNumber, 10, 1) << "one in 30 s";
  const auto& posts = Ui().posts[static_cast<size_t>(StatusPart::position)];
  EXPECT_NE(std::find(posts.begin(), posts.end(), L"Position is not available"), posts.end());
}

}  // namespace
}  // namespace tw::test
