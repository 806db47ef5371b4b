// Two files of a dual recording played together: which is which, and that the second goes where the first
// goes.
#include "tests/app/playback_fixture.h"
#include "tests/display/marks_at_pings.h"

namespace tw::test {
namespace {

constexpr int32_t kHigh_hz = 450'000;
constexpr int32_t kLow_hz = 200'000;

class PlaybackPair : public Playback, public testing::WithParamInterface<int32_t> {
 protected:
  PingHeader NewestOfA() { return HeaderAt(IndexA()); }
  PingHeader NewestOfB() {
    Locked held(state_->ringLockB);
    return LoadPingHeader(state_->ringB->slots[state_->ringIndexB]);
  }

  // The two channels ping in turn, so the second's first ping at or after the first's time is the next one.
  void ExpectTogether(const char* when) {
    const PingHeader a = NewestOfA();
    const PingHeader b = NewestOfB();
    EXPECT_EQ(a.txFrequency_hz, kHigh_hz) << when;
    EXPECT_EQ(b.txFrequency_hz, kLow_hz) << when;
    EXPECT_GE(b.ping + 1, a.ping) << when;
    EXPECT_LE(b.ping, a.ping + 3) << when;
  }
};

// However the two are chosen, the higher frequency is the first.
TEST_P(PlaybackPair, TheSecondFollowsStepsAndSeeks) {
  sim::SounderOptions options = QuickSounder(GetParam());
  options.dual = true;
  Record(options, 60);
  ASSERT_EQ(files_.size(), 2u);
  Play(GetParam() == 4 ? files_ : std::vector{files_[1], files_[0]});
  SleepMilliseconds(3'000);
  PausePlayback(*state_);
  SleepMilliseconds(100);
  ExpectTogether("played");
  const uint32_t middle = NewestOfA().ping;

  StepPlaybackBack(*state_, kBack20);
  SleepMilliseconds(100);
  ExpectTogether("back 20, held");
  const uint32_t earlier = NewestOfA().ping;
  EXPECT_LT(earlier + 20, middle);
  const int32_t indexA = IndexA();
  EXPECT_NEAR(state_->ringIndexB, indexA, 4) << "both rings went back";

  for (const int part : {9, 1, 5, 3, 7}) {
    RequestSeek(state_->seekRequest, fs::file_size(fs::path(files_[1])) / 10 * static_cast<uint64_t>(part));
    SleepMilliseconds(100);
    ExpectTogether("sought, held");
    EXPECT_NEAR(NewestOfA().ping, part * 60, 30) << part;
  }

  ResumePlayback(*state_);
  PlayToTheEnd();
  SleepMilliseconds(1'000);
  ExpectTogether("at the end");
  const uint32_t last = NewestOfA().ping;
  StepPlaybackBack(*state_, kBack100);
  SleepMilliseconds(10);
  PausePlayback(*state_);
  SleepMilliseconds(100);
  EXPECT_LT(NewestOfA().ping + 60, last);
  ExpectTogether("back 100 from the end");

  ResumePlayback(*state_);
  PlayToTheEnd();
  ResumePlayback(*state_);
  SleepMilliseconds(60);
  EXPECT_LT(NewestOfA().ping, 20u) << "begun anew";
  ExpectTogether("begun anew");
  EXPECT_EQ(LoadShared(globals.playedFrequencyA_hz), kHigh_hz);
  EXPECT_EQ(LoadShared(globals.playedFrequencyB_hz), kLow_hz);
  for (const ProgressBlock& block : Ui().progress) ASSERT_EQ(block.inputFile, state_->inputFileA);
}

// The two lists go by their own file's recorded time, which is played in a few seconds.
TEST_P(PlaybackPair, MarksStand30RecordedSecondsApartAtTheirPings) {
  sim::SounderOptions options = QuickSounder(GetParam());
  options.dual = true;
  Record(options, 70);
  StoreShared(globals.timestampTicked, 1);
  Play(files_);
  PlayToTheEnd();
  SleepMilliseconds(1'000);
  const std::vector<int32_t> numbers = {2, 1, 0};
  EXPECT_EQ(NumbersAtTheirPings(*state_, PanelPlace::upper, globals.marksA), numbers);
  EXPECT_EQ(NumbersAtTheirPings(*state_, PanelPlace::lower, globals.marksB), numbers);
}

INSTANTIATE_TEST_SUITE_P(Modes, PlaybackPair, testing::Values(4, 100),
                         [](const auto& mode) { return "Mode" + std::to_string(mode.param); });

}  // namespace
}  // namespace tw::test
