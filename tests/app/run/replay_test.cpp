// A recording replayed at a pace of real time, stepped on, sought by time and followed while it grows; and
// its overview.
#include <fstream>

#include "app/run/file_run.h"
#include "app/state/overview.h"
#include "tests/app/run/playback_fixture.h"

namespace tw::test {
namespace {

constexpr int64_t kBegin_ms = 1'000'000;

// Ten pings a second.
int64_t Steady(int i) {
  return kBegin_ms + 100 * i;
}

class Replay : public Playback {
 protected:
  Replay() {
    state_->options.playbackBar = 1;
    folder_450_ = folder_ / "20250314_093005_Dual_450kHz_id_a_txt12.log";
  }

  // A ping with a strong echo at half its samples.
  static std::string Ping(int number, int64_t time_ms) {
    std::vector<int> samples(100, 7);
    samples[50] = 3'000;
    return PingText(number, time_ms, samples);
  }
  std::wstring WritePings(int count, int64_t (*time_ms)(int), const std::string& hole = {}) {
    std::string text = kTextInfo;
    for (int i = 0; i < count; ++i) text += (i == count / 2 ? hole : "") + Ping(i, time_ms(i));
    WriteWhole(folder_450_, text);
    return folder_450_.wstring();
  }

  void PlayAt(const std::wstring& file, int32_t percent, bool skipGaps = false) {
    state_->options.skipGaps = skipGaps ? 1 : 0;
    state_->replay.pace_percent = percent;
    Play({file});
    ASSERT_EQ(StateOfProgram(*state_), ProgramState::playing);
  }
  uint32_t Shown() {
    SleepMilliseconds(50);
    return LoadShared(globals.pingCounter);
  }
  // From the first ping to the last one.
  uint32_t TimeToTheEnd() {
    const uint32_t begin_ms = MillisecondClock();
    for (int i = 0; i < 1'000'000 && LoadShared(globals.playbackEnded) != kPlaybackExhausted; ++i)
      SleepMilliseconds(1);
    return MillisecondClock() - begin_ms;
  }

  fs::path folder_450_;
};

TEST_F(Replay, KeepsThePaceOfTheRecordedTimes) {
  const struct {
    const char* what;
    int32_t percent;
    bool skipGaps;
    int pings;
    int64_t (*time_ms)(int);
    double expected_ms;
  } rows[] = {
      {"real time", 100, false, 101, Steady, 10'000},
      {"half of it", 50, false, 101, Steady, 20'000},
      {"50 times", 5'000, false, 3'001, Steady, 6'000},
      {"as given", kPaceAsGiven, false, 100, Steady, 1'600},
      {"a minute without pings", 100, false, 101, [](int i) { return Steady(i) + (i > 50 ? 60'000 : 0); },
       70'000},
      {"the same, skipped", 100, true, 101, [](int i) { return Steady(i) + (i > 50 ? 60'000 : 0); }, 9'900},
      {"five seconds are no gap", 100, true, 101, [](int i) { return Steady(i) + (i > 50 ? 4'900 : 0); },
       14'900},
      {"whole seconds", 1'000, false, 1'001, [](int i) { return Steady(i) / 1'000 * 1'000; }, 10'000},
      {"no times", 5'000, false, 100, [](int) { return int64_t{-1}; }, 1'600},
      {"times one second in ten", 5'000, false, 3'001, [](int i) { return i % 10 == 0 ? Steady(i) : -1; },
       6'000},
      {"an hour back", 100, false, 101, [](int i) { return Steady(i) + (i > 50 ? 0 : 3'600'000); }, 9'916},
      {"a year on", 100, false, 101, [](int i) { return Steady(i) + (i > 50 ? int64_t{31'536'000'000} : 0); },
       9'900},
      {"always back", 100, false, 100, [](int i) { return Steady(1'000 - i); }, 1'600},
  };
  for (const auto& row : rows) {
    PlayAt(WritePings(row.pings, row.time_ms), row.percent, row.skipGaps);
    EXPECT_NEAR(TimeToTheEnd(), row.expected_ms, 0.02 * row.expected_ms + 25) << row.what;
    EXPECT_EQ(LoadShared(globals.pingCounter) + 1, static_cast<uint32_t>(row.pings)) << row.what;
    StopRun(*state_);
  }
}

TEST_F(Replay, WhatIsHeldIsNoTimeAndANewPaceCountsAtOnce) {
  PlayAt(WritePings(1'001, Steady), 100);
  SleepMilliseconds(3'000);
  PausePlayback(*state_);
  EXPECT_NEAR(Shown(), 30, 1);
  SleepMilliseconds(60'000);
  EXPECT_NEAR(Shown(), 30, 1);
  ResumePlayback(*state_);
  SleepMilliseconds(2'000);
  EXPECT_NEAR(LoadShared(globals.pingCounter), 50, 2);
  StoreShared(state_->replay.pace_percent, 1'000);
  SleepMilliseconds(2'000);
  EXPECT_NEAR(LoadShared(globals.pingCounter), 250, 5);
  StoreShared(state_->replay.pace_percent, kPaceAsGiven);
  SleepMilliseconds(1'600);
  EXPECT_NEAR(LoadShared(globals.pingCounter), 350, 3);
  StoreShared(state_->replay.pace_percent, 100);
  SleepMilliseconds(2'000);
  EXPECT_NEAR(LoadShared(globals.pingCounter), 370, 3);
}

TEST_F(Replay, PingsOfOneSecondAreSpreadOverIt) {
  PlayAt(WritePings(101, [](int i) { return Steady(i) / 1'000 * 1'000; }), 100);
  SleepMilliseconds(5'550);
  EXPECT_NEAR(LoadShared(globals.pingCounter), 55, 1);
}

// A minute without pings, of which six seconds have passed when it is held.
TEST_F(Replay, AGapThatIsHeldStandsStillToo) {
  PlayAt(WritePings(101, [](int i) { return Steady(i) + (i > 50 ? 60'000 : 0); }), 100);
  SleepMilliseconds(11'000);
  PausePlayback(*state_);
  SleepMilliseconds(100'000);
  ResumePlayback(*state_);
  SleepMilliseconds(50'000);
  EXPECT_EQ(LoadShared(globals.pingCounter), 50u);
  SleepMilliseconds(5'000);
  EXPECT_GT(LoadShared(globals.pingCounter), 50u);
}

TEST_F(Replay, StepsOnAndBackByPingsAndGoesToATime) {
  PlayAt(WritePings(1'001, Steady), 5'000);
  SleepMilliseconds(500);
  PausePlayback(*state_);
  uint32_t shown = Shown();
  for (const int step : {20, 100, -20, -100}) {
    if (step > 0) static_cast<void>(StepFileRunOn(*state_, step));
    if (step < 0) StepPlaybackBack(*state_, step == -20 ? kBack20 : kBack100);
    const uint32_t before = std::exchange(shown, Shown());
    EXPECT_EQ(static_cast<int>(shown) - static_cast<int>(before), step);
  }
  for (const int64_t place : {700, 3, 1'000, 0}) {
    RequestTime(state_->replay.timeRequest, Steady(static_cast<int>(place)) - 40);
    EXPECT_EQ(Shown(), place);
    EXPECT_EQ(LoadShared(state_->replay.time_ms), Steady(static_cast<int>(place)));
  }
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::paused);

  // What lies before a place that was jumped to has not been played.
  RequestTime(state_->replay.timeRequest, Steady(700));
  EXPECT_EQ(Shown(), 700u);
  const struct {
    RunEvent step;
    uint32_t shown;
  } back[] = {{kBack20, 680}, {kBack100, 580}, {kBack100, 480}};
  for (const auto& row : back) {
    StepPlaybackBack(*state_, row.step);
    EXPECT_EQ(Shown(), row.shown);
  }
  static_cast<void>(StepFileRunOn(*state_, 20));
  EXPECT_EQ(Shown(), 500u);
  RequestTime(state_->replay.timeRequest, Steady(50));
  EXPECT_EQ(Shown(), 50u);
  StepPlaybackBack(*state_, kBack100);
  EXPECT_EQ(Shown(), 0u) << "fewer";
}

TEST_F(Replay, TheSecondFileKeepsUpWithAHeldStepOn) {
  const std::wstring high = WritePings(1'001, Steady);
  std::wstring low = high;
  low.replace(low.find(L"450kHz"), 6, L"200kHz");
  fs::copy_file(fs::path(high), fs::path(low));
  for (const int32_t percent : {kPaceAsGiven, 1'000}) {
    state_->replay.pace_percent = percent;
    Play({high, low});
    SleepMilliseconds(1'000);
    PausePlayback(*state_);
    static_cast<void>(Shown());
    static_cast<void>(StepFileRunOn(*state_, 100));
    const uint32_t first = Shown();
    EXPECT_NEAR(NewestPing(true).ping, first, 1) << percent;
  }
}

TEST_F(Replay, AGrowingFileIsFollowedWithTheBarAlone) {
  for (const bool bar : {true, false}) {
    state_->options.playbackBar = bar ? 1 : 0;
    PlayAt(WritePings(100, Steady), kPaceAsGiven);
    PlayToTheEnd();
    EXPECT_EQ(Shown(), 99u);
    std::string more;
    for (int i = 100; i < 150; ++i) more += Ping(i, Steady(i));
    std::ofstream file(folder_450_, std::ios::app | std::ios::binary);
    file.write(more.data(), 1'000).flush();  // not whole pings alone
    SleepMilliseconds(200);
    file.write(more.data() + 1'000, static_cast<std::streamsize>(more.size()) - 1'000);
    file.close();
    SleepMilliseconds(3'000);
    HandleTimer(*state_, ID_TIMER_PLAYBACK_END);
    EXPECT_EQ(Shown(), bar ? 149u : 99u);
    EXPECT_EQ(StateOfProgram(*state_), bar ? ProgramState::playing : ProgramState::paused)
        << "may grow again";
    SleepMilliseconds(3'000);
    HandleTimer(*state_, ID_TIMER_PLAYBACK_END);
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::paused);
    if (bar) {
      Locked held(state_->replay.overview->lock);
      EXPECT_EQ(state_->replay.overview->end_ms, Steady(149));
    }
    StopRun(*state_);
  }
}

TEST_F(Replay, TheOverviewTellsEachPartOfTheFile) {
  PlayAt(WritePings(2'000, Steady, std::string(600'000, 'x')), kPaceAsGiven);
  SleepMilliseconds(1'000);
  {
    const Overview& overview = *state_->replay.overview;
    const uint64_t size = fs::file_size(folder_450_);
    EXPECT_EQ(overview.fileSize, size);
    EXPECT_FLOAT_EQ(overview.reach_m, 3.0f) << "100 samples at 25 kHz";
    EXPECT_EQ(overview.begin_ms, Steady(0));
    EXPECT_EQ(overview.end_ms, Steady(1'999));
    const std::string text = ReadWhole(folder_450_);
    for (size_t i = 0; i < kOverviewColumns; ++i) {
      const size_t place = size * i / kOverviewColumns;
      const size_t ping = text.find("#DeviceID", place);
      if (ping == text.npos) continue;
      ASSERT_EQ(overview.columns[i].hasPing, ping < place + 256'000) << i;
      if (!overview.columns[i].hasPing) continue;
      const int depth = text[text.find("#Altitude ", ping) + 10] - '0';
      EXPECT_EQ(overview.columns[i].depth_m, static_cast<float>(depth) + 0.5f) << i;
      for (size_t row = 0; row < kOverviewRows; ++row)
        ASSERT_EQ(overview.columns[i].echoes[row], (row == 16 ? 3'000 : 7) / 16) << i << ", " << row;
    }
  }
  StopRun(*state_);
  EXPECT_EQ(state_->replay.overview->fileSize, 0u) << "ends with the playback";
  EXPECT_EQ(state_->replay.overview->thread, Handle::null);
}

}  // namespace
}  // namespace tw::test
