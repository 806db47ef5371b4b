// Two files of a dual recording played together: which is which, and that the second goes where the first
// goes.
#include <utility>

#include "tests/app/run/playback_fixture.h"
#include "tests/display/marks_at_pings.h"

namespace tw::test {
namespace {

constexpr int32_t kHigh_hz = 450'000;
constexpr int32_t kLow_hz = 200'000;

class PlaybackPair : public Playback, public testing::WithParamInterface<int32_t> {
 protected:
  // The two channels ping in turn, so the second's first ping at or after the first's time is the next one.
  void ExpectTogether(const char* when) {
    const PingHeader a = NewestPing();
    const PingHeader b = NewestPing(true);
    EXPECT_EQ(a.txFrequency_hz, kHigh_hz) << when;
    EXPECT_EQ(b.txFrequency_hz, kLow_hz) << when;
    EXPECT_GE(b.ping + 1, a.ping) << when;
    EXPECT_LE(b.ping, a.ping + 3) << when;
  }
};

// However the two are chosen, the higher frequency is the first.
TEST_P(PlaybackPair, TheSecondFollowsStepsAndSeeks) {
  Record(QuickSounder(GetParam(), true), 60);
  ASSERT_EQ(files_.size(), 2u);
  Play(GetParam() == 4 ? files_ : std::vector{files_[1], files_[0]});
  SleepMilliseconds(3'000);
  PausePlayback(*state_);
  SleepMilliseconds(100);
  ExpectTogether("played");
  const uint32_t middle = NewestPing().ping;

  StepPlaybackBack(*state_, kBack20);
  SleepMilliseconds(100);
  ExpectTogether("back 20, held");
  const uint32_t earlier = NewestPing().ping;
  EXPECT_LT(earlier + 20, middle);
  EXPECT_NEAR(NewestSlot(true), NewestSlot(), 4) << "both rings went back";

  for (const int part : {9, 1, 5, 3, 7}) {
    RequestSeek(state_->seekRequest, fs::file_size(fs::path(files_[1])) / 10 * static_cast<uint64_t>(part));
    SleepMilliseconds(100);
    ExpectTogether("sought, held");
    EXPECT_NEAR(NewestPing().ping, part * 60, 30) << part;
  }

  ResumePlayback(*state_);
  PlayToTheEnd();
  SleepMilliseconds(1'000);
  ExpectTogether("at the end");
  const uint32_t last = NewestPing().ping;
  StepPlaybackBack(*state_, kBack100);
  SleepMilliseconds(10);
  PausePlayback(*state_);
  SleepMilliseconds(100);
  EXPECT_LT(NewestPing().ping + 60, last);
  ExpectTogether("back 100 from the end");

  ResumePlayback(*state_);
  PlayToTheEnd();
  ResumePlayback(*state_);
  SleepMilliseconds(60);
  EXPECT_LT(NewestPing().ping, 20u) << "begun anew";
  ExpectTogether("begun anew");
  EXPECT_EQ(LoadShared(globals.playedFrequencyA_hz), kHigh_hz);
  EXPECT_EQ(LoadShared(globals.playedFrequencyB_hz), kLow_hz);
  for (const ProgressBlock& block : Ui().progress) ASSERT_EQ(block.inputFile, state_->inputFileA);
}

// The two lists go by their own file's recorded time, which is played in a few seconds.
TEST_P(PlaybackPair, MarksStand30RecordedSecondsApartAtTheirPings) {
  Record(QuickSounder(GetParam(), true), 70);
  StoreShared(globals.timestampTicked, 1);
  Play(files_);
  PlayToTheEnd();
  SleepMilliseconds(1'000);
  const std::vector<int32_t> numbers = {2, 1, 0};
  EXPECT_EQ(NumbersAtTheirPings(*state_, PanelPlace::upper, globals.marksA), numbers);
  EXPECT_EQ(NumbersAtTheirPings(*state_, PanelPlace::lower, globals.marksB), numbers);
}

class PlaybackPairOfText : public Playback {
 protected:
  static constexpr int kPings = 900;

  // One file of a pair: ping i at a time of its own, but for those from `gap` up to `end`.
  std::wstring WriteFile(int32_t frequency_hz, int gap, int end, int64_t (*time_ms)(int)) {
    std::string text = std::string(kTextInfo).replace(7, 6, std::to_string(frequency_hz));
    for (int i = 0; i < kPings; ++i) {
      if (i < gap || i >= end) text += PingText(i, time_ms(i), {7});
    }
    const fs::path path =
        folder_ / ("20250314_093005_Dual_" + std::to_string(frequency_hz / 1000) + "kHz_id_a_txt12.log");
    WriteWhole(path, text);
    return path.wstring();
  }
};

// Ten pings a second, the second file's 40 ms behind the first one's.
template <int lag_ms>
int64_t Steadily(int i) {
  return 1'000'000 + 100 * i + lag_ms;
}
template <int lag_ms>
int64_t AnHourBack(int i) {
  return Steadily<lag_ms>(i) + (i < 400 ? 3'600'000 : 0);
}

TEST_F(PlaybackPairOfText, TheSecondKeepsToTheFirstsTime) {
  const struct {
    const char* what;
    int gapA, endA, gapB, endB;
    bool clockIsSetBack = false;
  } rows[] = {
      {"both whole", 0, 0, 0, 0},
      {"the first lacks pings", 250, 550, 0, 0},
      {"the second lacks pings", 0, 0, 250, 550},
      {"the first begins later", 0, 300, 0, 0},
      {"the second begins later", 0, 0, 0, 300},
      {"the device's clock is set back", 0, 0, 0, 0, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    Play({WriteFile(450'000, row.gapA, row.endA, row.clockIsSetBack ? AnHourBack<0> : Steadily<0>),
          WriteFile(200'000, row.gapB, row.endB, row.clockIsSetBack ? AnHourBack<40> : Steadily<40>)});
    ASSERT_TRUE(Ui().boxes.empty());
    uint32_t a = 0;
    for (int looks = 0; a + 1 < kPings && looks < 2'000 && !HasFailure(); ++looks) {
      SleepMilliseconds(17);
      const bool jumped = std::exchange(a, NewestPing().ping) + 10 < a;
      const uint32_t b = NewestPing(true).ping;
      const auto number = static_cast<int>(a);
      const bool missing = number >= row.gapB && number <= row.endB + 1;
      EXPECT_LE(b, a + 2) << "waits";
      EXPECT_TRUE(missing || jumped || b + 3 >= a) << b << " hurries after " << a;
    }
    EXPECT_EQ(a + 1, kPings);
    SleepMilliseconds(200);
    EXPECT_EQ(NewestPing(true).ping + 1, kPings) << "its end comes too";
    StopRun(*state_);
  }
}

// A channel that has not pinged leaves nothing but its settings behind.
TEST_F(PlaybackPairOfText, AFileWithoutPingsLeavesTheOtherOneToPlay) {
  const struct {
    bool firstIsBare, secondIsBare;
    int32_t frequency_hz;  // of what is played
  } rows[] = {{false, true, 450'000}, {true, false, 200'000}, {true, true, 0}};
  for (const auto& row : rows) {
    Play({WriteFile(450'000, 0, row.firstIsBare ? kPings : 0, Steadily<0>),
          WriteFile(200'000, 0, row.secondIsBare ? kPings : 0, Steadily<0>)});
    if (row.frequency_hz == 0) {
      ExpectErrorBox(L"This file Cannot be playback");
      continue;
    }
    EXPECT_TRUE(Ui().boxes.empty());
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::playing);
    EXPECT_EQ(LoadShared(globals.dualMode), 0);
    EXPECT_EQ(state_->fileWorkerB, Handle::null);
    EXPECT_EQ(LoadShared(globals.playedFrequencyA_hz), row.frequency_hz);
    PlayToTheEnd();
    EXPECT_EQ(LoadShared(globals.pingCounter) + 1, kPings);
    StopRun(*state_);
  }
}

INSTANTIATE_TEST_SUITE_P(Modes, PlaybackPair, testing::Values(4, 100),
                         [](const auto& mode) { return "Mode" + std::to_string(mode.param); });

}  // namespace
}  // namespace tw::test
