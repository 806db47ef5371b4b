// A recording made by a live run, played back and converted: what the ring showed then, it shows again.
#include <algorithm>
#include <random>
#include <utility>

#include "app/settings/recent_recordings.h"
#include "app/state/file_naming.h"
#include "base/text_format.h"
#include "platform/virtual/faults.h"
#include "tests/app/run/playback_fixture.h"
#include "tests/app/run/refused_memory.h"
#include "tests/playback/info_text.h"

namespace tw::test {
namespace {

TEST_F(Playback, StepsBackPausesAndSeeks) {
  Record(QuickSounder(4), 60);
  const std::vector<RecordedPing> pings = ReadPings(files_[0]);
  ASSERT_GT(pings.size(), 500u);
  const uint32_t first = pings.front().header.ping;
  const uint32_t last = pings.back().header.ping;
  const auto shown = [] {
    SleepMilliseconds(50);
    return LoadShared(globals.pingCounter);
  };
  // A ping is played each 16 ms and a place is kept each 20, so each second ping is one to step back to.
  const auto expectSteps = [](uint32_t from, uint32_t to, uint32_t steps) {
    EXPECT_GE(from, to + 2 * steps) << steps;
    EXPECT_LE(from, to + 2 * steps + 1) << steps;
  };
  Play({files_[0]});

  // At the start: fewer entries than asked for lead to the first ping.
  for (const RunEvent step : {kBack20, kBack100}) {
    SleepMilliseconds(200);
    PausePlayback(*state_);
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::paused);
    EXPECT_GT(shown(), first);
    StepPlaybackBack(*state_, step);
    EXPECT_EQ(shown(), first);
    ResumePlayback(*state_);
  }

  // In the middle, while held and not.
  SleepMilliseconds(6'000);
  PausePlayback(*state_);
  const uint32_t middle = shown();
  EXPECT_GT(middle, first + 300);
  SleepMilliseconds(1'000);
  EXPECT_EQ(shown(), middle) << "held";
  StepPlaybackBack(*state_, kBack20);
  expectSteps(middle, shown(), 20);
  StepPlaybackBack(*state_, kBack100);
  expectSteps(middle, shown(), 120);
  ResumePlayback(*state_);
  SleepMilliseconds(1'000);
  const uint32_t later = LoadShared(globals.pingCounter);
  StepPlaybackBack(*state_, kBack20);
  EXPECT_LT(shown(), later - 20) << "while it plays";

  // At the end, and then from the beginning.
  for (const RunEvent step : {kBack20, kBack100}) {
    PlayToTheEnd();
    EXPECT_EQ(shown(), last);
    PausePlayback(*state_);
    StepPlaybackBack(*state_, step);
    expectSteps(last, shown(), step == kBack20 ? 20 : 100);
    ResumePlayback(*state_);
  }
  PlayToTheEnd();
  ResumePlayback(*state_);
  SleepMilliseconds(10);
  EXPECT_LE(LoadShared(globals.pingCounter), first + 1) << "begun anew";

  // After a seek the first ping is shown that begins there or behind.
  PausePlayback(*state_);
  std::mt19937_64 random(3);
  for (int i = 0; i < 200; ++i) {
    const uint64_t place = random() % (pings.back().begin + 1);
    const auto next = std::ranges::lower_bound(pings, place, {}, &RecordedPing::begin);
    RequestSeek(state_->seekRequest, place);
    EXPECT_EQ(shown(), next->header.ping) << place;
  }
}

constexpr char kTextPing[] = "#DeviceID a\r\n#NSamples 0\r\n##DataStart\r\n\r\n\r\n";

TEST_F(Playback, WithoutAWorkerTheProcessEndsAndItsFilesAreClosed) {
  std::vector<std::wstring> pair;
  for (const char* const kHz : {"450", "200"}) {
    const fs::path path = folder_ / ("20250314_093005_Dual_" + std::string(kHz) + "kHz_id_a_txt12.log");
    WriteWhole(path, kTextPing);
    pair.push_back(path.wstring());
  }
  static const AppState* state = nullptr;
  state = state_;
  Ui().duringBox = [] {
    const bool closed = state->inputFileA == Handle::invalid && state->inputFileB == Handle::invalid &&
                        state->segyCompanionA == Handle::invalid;
    if (!closed || Ui().boxes.back().text != L"Unable to run working thread") std::_Exit(2);
  };
  for (const uint64_t call : {1u, 2u}) {
    InjectFault({.point = FaultPoint::startThread, .call = call});
    EXPECT_EXIT(Play(pair), testing::ExitedWithCode(1), "") << call;
    ClearFaults();
  }
  InjectFault({.point = FaultPoint::startThread});
  EXPECT_EXIT(Convert(pair[0], ConvertToSegy), testing::ExitedWithCode(1), "");
}

TEST_F(Playback, WhatCannotBePlayedIsSaid) {
  const fs::path high = "20250314_093005_Dual_450kHz_id_a_txt12.log";
  const fs::path low = "20250314_093005_Dual_200kHz_id_a_txt12.log";
  const fs::path later = "20250314_093006_Dual_200kHz_id_a_txt12.log";
  const fs::path otherKind = "20250314_093005_Dual_210kHz_id_a_txt12.log";
  for (const fs::path& name : {high, low, later, fs::path("nameless.log")})
    WriteWhole(folder_ / name, kTextPing);
  WriteWhole(folder_ / otherKind, "Alt : 1.5\r\n");
  WriteWhole(folder_ / "empty.log", "");
  WriteWhole(folder_ / "strange.log", std::string(3'000, 'x'));
  WriteWhole(folder_ / "noping.log", "#DeviceID without an end");
  const auto play = [this](const std::vector<fs::path>& names) {
    std::vector<std::wstring> paths;
    for (const fs::path& name : names) paths.push_back((folder_ / name).wstring());
    Play(paths);
  };
  const struct {
    std::vector<fs::path> files;
    const wchar_t* text;
  } rows[] = {
      {{"empty.log"}, L"Invalid file format."},
      {{"strange.log"}, L"Invalid file format."},
      {{"noping.log"}, L"This file Cannot be playback"},
      {{"absent.log"}, L"absent.log  to open file."},
      {{high, high}, L"Select correct pair of files!!"},
      {{high, later}, L"Select correct pair of files!!"},
      {{high, otherKind}, L"Select correct pair of files!!"},
      {{high, "nameless.log"}, L"Select correct pair of files!!"},
      {{"noping.log", "strange.log"}, L"Select correct pair of files!!"},
      {{high, low, low}, L"Select correct pair of files!!"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.files.back());
    play(row.files);
    ExpectErrorBox(row.text);
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle);
    EXPECT_EQ(state_->inputFileA, Handle::invalid);
  }
  play({});
  play({low, high});
  EXPECT_TRUE(Ui().boxes.empty()) << "cancelled, or a pair";
}

// Word of what Start has ended comes while its box stands there with the port still open.
TEST_F(Playback, AStartThatFailsLeavesStartUsable) {
  Record(QuickSounder(), 5);
  Ui().Choose(ID_DEVICE_PORT, L"COM6");  // the GPS receiver answers nothing
  Ui().Choose(ID_GPS_PORT, L"N/A");
  for (const bool converts : {true, false}) {
    Play(files_);
    if (converts) {
      ConvertToSegy(*state_);
    } else {
      while (LoadShared(globals.playbackEnded) == 0) SleepMilliseconds(20);
    }
    StartRun(*state_);
    ExpectErrorBox(L"Echosounder is not connected");
    ExpectIdle();
    EXPECT_EQ(state_->playbackAtEnd, 0) << converts;
  }
}

TEST_F(Playback, ARunBehindItBeginsWithAnEmptyPicture) {
  Record(QuickSounder(), 20);
  const struct {
    const char* before;
    bool plays, stops, converts;
  } rows[] = {{"a playback", true, false, false},
              {"a playback that was stopped", true, true, false},
              {"a conversion", false, false, true},
              {"a run", false, false, false}};
  for (const auto& row : rows) {
    if (row.plays) Play(files_);
    if (row.converts) static_cast<void>(Convert(files_[0], ConvertToSegy));
    SleepMilliseconds(5'000);
    if (row.stops) StopRun(*state_);
    globals.latestAltitudeHigh_m = globals.latestAltitudeLow_m = 7.0f;
    StartRun(*state_);
    EXPECT_EQ(globals.latestAltitudeHigh_m + globals.latestAltitudeLow_m, 0.0f);
    const auto old = std::count_if(std::begin(globals.slotReachA), std::end(globals.slotReachA),
                                   [](uint16_t reach) { return reach != 0; });
    EXPECT_EQ(old <= 2, row.plays || row.converts) << row.before;
    Run(2);
    StopRun(*state_);
  }
}

TEST_F(Playback, FilesAreForAfterARun) {
  constexpr wchar_t kStopFirst[] = L"To open a file you should press \"Stop\" button first.";
  StartQuickRun(1);
  Ui().chosenFiles = {L"any.log"};
  for (void (*const command)(AppState&) : {PlayFiles, ConvertToSegy, ConvertToText}) {
    command(*state_);
    ExpectBox(kStopFirst, L"", BoxIcon::information);
  }
  PlayDropped(*state_, {L"any.log"});
  EXPECT_EQ(Ui().notices.back(), kStopFirst);
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::running);
  ShowInFolder(*state_);
  EXPECT_TRUE(Ui().folders.back().ends_with(fs::path(RecordFiles()[0]).wstring())) << "what is recorded";
}

TEST_F(Playback, DroppedFilesPlayAndStandAmongTheRecentOnes) {
  ShowInFolder(*state_);
  EXPECT_EQ(Ui().folders.back(), L"folder " + records_.wstring());
  Record(QuickSounder(2, true), 5);
  ASSERT_EQ(files_.size(), 2u);
  PlayDropped(*state_, files_);
  PlayDropped(*state_, {files_[1]});
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::playing);
  EXPECT_EQ(LoadRecent(), (std::vector<RecordingPaths>{{files_[1]}, files_}));
  ShowInFolder(*state_);
  EXPECT_TRUE(Ui().folders.back().ends_with(fs::path(files_[1]).filename().wstring()));
  PlayRecent(*state_, 1);
  EXPECT_EQ(globals.dualMode, 1);
  EXPECT_EQ(LoadRecent(), (std::vector<RecordingPaths>{files_, {files_[1]}}));

  fs::remove(files_[1]);
  PlayRecent(*state_, 1);
  ExpectErrorBox((fs::path(files_[1]).filename().wstring() + L"  to open file.").c_str());
  EXPECT_EQ(LoadRecent(), (std::vector<RecordingPaths>{files_}));
  PlayRecent(*state_, 5);
  for (const std::wstring& hostile : {std::wstring(), std::wstring(32'767, L'x'), records_.wstring()}) {
    PlayDropped(*state_, {hostile});
    EXPECT_EQ(std::exchange(Ui().boxes, {}).size(), 1u);
  }
  PlayDropped(*state_, {files_[0], files_[0], files_[0]});
  ExpectErrorBox(L"Select correct pair of files!!");
  EXPECT_EQ(LoadRecent().size(), 1u);
}

// What stands in them is shown without a window.
TEST_F(Playback, ConversionsAreNamedAfterTheRecording) {
  Record(QuickSounder(100), 5);
  const std::string stem = "Fj\u00E4llsj\u00F6";
  const std::wstring wideStem = records_.wstring() + L"/Fj\u00E4llsj\u00F6";
  fs::copy_file(files_[0], records_ / (stem + ".log"));
  Ui().chosenFiles = {wideStem + L".log"};
  ConvertToSegy(*state_);
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::converting);
  HandleTimer(*state_, ID_TIMER_REPAINT);
  EXPECT_TRUE(Ui().title.ends_with(stem + ".sgy")) << Ui().title;
  FinishConversion();
  ExpectBox(L"Convert completed", L"Info", BoxIcon::information);
  EXPECT_GT(fs::file_size(records_ / (stem + ".sgy")), fs::file_size(files_[0]) / 2);
  EXPECT_EQ(Ui().status[2], L"Written: " + wideStem + L".sgy");
  HandleTimer(*state_, ID_TIMER_REPAINT);
  EXPECT_EQ(Ui().title, kProgramTitle);

  EXPECT_EQ(Convert(wideStem + L".log", ConvertToText), L"Convert completed");
  const std::vector<RecordedPing> pings = ReadPings(wideStem + L"_txt.log");
  ASSERT_GT(pings.size(), 30u);
  EXPECT_EQ(pings.back().header.ping - pings.front().header.ping + 1, pings.size());
}

// Its end is told however long the message queue is full, unless somebody waits for the worker.
TEST_F(Playback, TheEndOfAConversionIsToldThroughAFullQueue) {
  Record(QuickSounder(100), 5);
  Ui().fullQueue = 100;
  EXPECT_EQ(Convert(files_[0], ConvertToSegy), L"");
  EXPECT_NE(state_->fileWorkerA, Handle::null);
  SleepMilliseconds(2'000);
  FinishConversion();
  ExpectBox(L"Convert completed", L"Info", BoxIcon::information);
  EXPECT_EQ(state_->fileWorkerA, Handle::null);

  Ui().fullQueue = 1'000'000;
  EXPECT_EQ(Convert(files_[0], ConvertToSegy), L"");
  const uint32_t begin_ms = MillisecondClock();
  StopRun(*state_);
  EXPECT_LT(MillisecondClock() - begin_ms, 1'000u);
  EXPECT_TRUE(Ui().conversionEnds.empty());
}

// A status bar that comes round to its texts late still finds whole ones of its part.
TEST_F(Playback, TextsReadLateAreOfTheirPart) {
  Record(QuickSounder(4), 10);
  for (auto& buffers : Ui().postedBuffers) buffers.clear();
  Play({files_[0]});
  PlayToTheEnd();
  const struct {
    StatusPart part;
    const wchar_t* begin;
  } rows[] = {{StatusPart::position, L"Position("}, {StatusPart::pingLine, L"File size: "}};
  for (const auto& row : rows) {
    const auto& buffers = Ui().postedBuffers[static_cast<size_t>(row.part)];
    ASSERT_FALSE(buffers.empty());
    for (const wchar_t* const text : buffers)
      EXPECT_TRUE(std::wstring(text).starts_with(row.begin) || *text == L'\0') << row.begin;
  }
}

// Whichever piece of memory a worker does not get, it says so and leaves the program idle.
TEST_F(Playback, WithoutMemoryAWorkerEnds) {
  Record(QuickSounder(100), 5);
  for (void (*const command)(AppState&) : {PlayFiles, ConvertToSegy, ConvertToText}) {
    bool failed = true;
    for (int allocation = 1; failed && allocation < 100; ++allocation) {
      Ui().chosenFiles = {files_[0]};
      command(*state_);
      ASSERT_TRUE(Ui().boxes.empty());
      refusedAllocation = allocation;  // the worker has not begun yet
      SleepMilliseconds(command == PlayFiles ? 300 : 5'000);
      failed = refusedAllocation.exchange(0) == 0;
      HandleTimer(*state_, ID_TIMER_PLAYBACK_END);
      Ui().conversionEnds.clear();
      if (!failed) continue;
      EXPECT_EQ(Ui().status[static_cast<size_t>(StatusPart::position)], L"Insufficient memory!")
          << allocation;
      EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle) << allocation;
      EXPECT_EQ(state_->inputFileA, Handle::invalid) << allocation;
    }
    EXPECT_FALSE(failed);
    StopRun(*state_);
  }
}

// It closes all files that are being written.
TEST_F(Playback, ClearingRecordDataEndsAConversion) {
  Record(QuickSounder(100), 120);
  const fs::path output = records_ / fs::path(files_[0]).stem().concat(".sgy");
  EXPECT_EQ(Convert(files_[0], ConvertToSegy), L"Convert completed");
  const uint64_t whole = fs::file_size(output);
  ConvertToSegy(*state_);
  SleepMilliseconds(1);
  ASSERT_EQ(StateOfProgram(*state_), ProgramState::converting);
  SetRecording(false);
  FinishConversion();
  EXPECT_EQ(Ui().status[2], L"Incomplete: " + output.wstring());
  EXPECT_GT(fs::file_size(output), 3'600u);
  EXPECT_LT(fs::file_size(output), whole);
}

// An older recording does not tell the sound speed that it was made with: the settings do.
TEST_F(Playback, SegyTellsTheSoundSpeedOfTheSettings) {
  const std::string ping =
      "#DeviceID a\r\n#NSamples 1\r\n#Sampling_Frequency,Hz 25000\r\n##DataStart\r\n7\r\n\r\n\r\n";
  const struct {
    std::string content;
    std::string speed;  // 1480, 1432
  } rows[] = {{ping, "\x05\xC8"}, {InfoText(1, 4, "1432.5") + ping, "\x05\x98"}};
  for (const auto& row : rows) {
    WriteWhole(folder_ / "older.log", row.content);
    state_->settings.soundSpeed_mps = 1480.0f;
    EXPECT_EQ(Convert((folder_ / "older.log").wstring(), ConvertToSegy), L"Convert completed");
    EXPECT_EQ(Content("older.sgy").substr(3'600 + 90, 2), row.speed);
  }
}

TEST_F(Playback, WhatCannotBeConvertedIsSaid) {
  Record(QuickSounder(1), 5);
  const fs::path text = folder_ / "text.log";
  WriteWhole(text, kTextPing);
  const struct {
    void (*command)(AppState&);
    std::vector<std::wstring> files;
    const wchar_t* message;
  } rows[] = {
      {ConvertToSegy, {}, L"File is not selected"},
      {ConvertToText, {L"a", L"b"}, L"Select One File"},
      {ConvertToSegy, {files_[0]}, L"Cannot convert this file(s)"},
      {ConvertToText, {text.wstring()}, L"Cannot convert this file(s)"},
      {ConvertToSegy, {(folder_ / "absent.log").wstring()}, L"absent.log  to open file."},
      {ConvertToSegy, {text.wstring()}, L"Unable to open file."},
  };
  WidenText(state_->workingFolder, text.string());  // where no file can be made
  for (const auto& row : rows) {
    Play({files_[0]});
    Ui().chosenFiles = row.files;
    row.command(*state_);
    ExpectErrorBox(row.message);
    // One file ends the playback, whatever becomes of it.
    const bool plays = row.files.size() != 1;
    EXPECT_EQ(StateOfProgram(*state_), plays ? ProgramState::playing : ProgramState::idle) << row.message;
    EXPECT_EQ(Of(ID_STOP).enabled, plays) << row.message;
  }
}

}  // namespace
}  // namespace tw::test
