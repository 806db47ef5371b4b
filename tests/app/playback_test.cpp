// A recording made by a live run, played back and converted: what the ring showed then, it shows again.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "tests/app/playback_fixture.h"

namespace tw::test {
namespace {

class PlaybackOfMode : public Playback, public testing::WithParamInterface<int32_t> {};

TEST_P(PlaybackOfMode, EveryPingComesBackAsItWasSent) {
  sim::SounderOptions options = QuickSounder();
  options.outputMode = GetParam();
  Record(options);
  ASSERT_EQ(files_.size(), 1u);
  const std::vector<Sent> played = RecordedPings(files_[0]);
  ASSERT_GT(played.size(), 100u);
  const bool numbered = !played[0].samples.empty() || GetParam() >= 100;
  // The recording begins with the first ping of the run.
  const size_t first = numbered ? played[0].ping.number - log_.pings[0].ping.number : 0;
  ASSERT_LE(first + played.size(), log_.pings.size());
  for (size_t i = 0; i < played.size(); ++i) {
    const Sent& sent = log_.pings[first + i];
    ASSERT_EQ(played[i].ping.altitude_m, sent.ping.altitude_m) << i;
    if (numbered) {
      ASSERT_EQ(played[i].ping.number, sent.ping.number) << i;
    }
    if (GetParam() != 1) {
      ASSERT_EQ(played[i].ping.temperature_c, sent.ping.temperature_c) << i;
    }
    if (GetParam() == 2 || GetParam() == 4) {
      ASSERT_EQ(played[i].samples, sent.samples) << i;
    }
  }

  Choose({files_[0]});
  PlayFiles(*state_);
  ASSERT_TRUE(Ui().boxes.empty());
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::playing);
  PlayToTheEnd();
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::paused);
  const PingHeader newest = HeaderAt(IndexA());
  EXPECT_EQ(newest.altitude_m, played.back().ping.altitude_m);
  if (numbered) {
    EXPECT_EQ(newest.ping, played.back().ping.number);
  }
  EXPECT_EQ(Ui().progress.back().position, Ui().progress.back().fileSize);
  StopRun(*state_);
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle);
  EXPECT_EQ(state_->inputFileA, Handle::invalid);
  EXPECT_EQ(state_->fileWorkerA, Handle::null);
}

INSTANTIATE_TEST_SUITE_P(FirstFamily, PlaybackOfMode, testing::Values(1, 2, 3, 4, 100, 101),
                         [](const auto& mode) { return "Mode" + std::to_string(mode.param); });

TEST_F(Playback, StepsBackPausesAndSeeks) {
  sim::SounderOptions options = QuickSounder();
  options.outputMode = 4;
  Record(options, 60);
  const std::vector<Sent> pings = RecordedPings(files_[0]);
  Choose({files_[0]});
  PlayFiles(*state_);
  const auto counter = [] { return LoadShared(globals.pingCounter); };

  // At the start: fewer entries than asked for leave the first ping.
  SleepMilliseconds(60);
  PausePlayback(*state_);
  SleepMilliseconds(100);
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::paused);
  StepPlaybackBack(*state_, kBack100);
  SleepMilliseconds(100);
  ResumePlayback(*state_);
  SleepMilliseconds(10);
  EXPECT_LE(counter(), pings[0].ping.number + 1);

  // In the middle, also while paused.
  SleepMilliseconds(4'000);
  PausePlayback(*state_);
  SleepMilliseconds(50);
  const uint32_t middle = counter();
  EXPECT_GT(middle, pings[0].ping.number + 100);
  SleepMilliseconds(1'000);
  EXPECT_EQ(counter(), middle) << "paused";
  StepPlaybackBack(*state_, kBack20);
  SleepMilliseconds(50);
  ResumePlayback(*state_);
  SleepMilliseconds(10);
  EXPECT_LT(counter(), middle);
  EXPECT_GT(counter() + 60, middle);

  // At the end, and then from the beginning.
  PlayToTheEnd();
  EXPECT_EQ(counter(), pings.back().ping.number);
  StepPlaybackBack(*state_, kBack100);
  SleepMilliseconds(100);
  EXPECT_LT(counter(), pings.back().ping.number);
  PlayToTheEnd();
  ResumePlayback(*state_);
  SleepMilliseconds(10);
  EXPECT_LE(counter(), pings[0].ping.number + 1);

  // The next ping after a seek is the first that begins there or behind.
  const uint64_t size = fs::file_size(fs::path(files_[0]));
  // Behind the start of the last ping there is none.
  const uint64_t reach = size - size / pings.size() - 1;
  uint64_t place = 12'345;
  for (int i = 0; i < 200; ++i) {
    place = (place * 6'364'136'223'846'793'005u + 1'442'695'040'888'963'407u);
    PausePlayback(*state_);
    SleepMilliseconds(40);
    RequestSeek(state_->seekRequest, place % reach);
    SleepMilliseconds(40);
    ResumePlayback(*state_);
    SleepMilliseconds(15);  // a held worker looks every 10
    const double part = static_cast<double>(place % reach) / static_cast<double>(size);
    const double expected = part * static_cast<double>(pings.size());
    EXPECT_NEAR(counter() - pings[0].ping.number, expected, static_cast<double>(pings.size()) * 0.02 + 3)
        << i;
    if (state_->playbackAtEnd != 0 || LoadShared(globals.playbackEnded) != 0)
      StoreShared(globals.playbackEnded, 0);
  }
}

TEST_F(Playback, WhatCannotBePlayedIsSaid) {
  const fs::path empty = folder_ / "empty.log";
  const fs::path strange = folder_ / "strange.log";
  const fs::path noPing = folder_ / "noping.log";
  std::ofstream(empty).flush();
  std::ofstream(strange) << std::string(3'000, 'x');
  std::ofstream(noPing) << "#DeviceID without an end";
  const struct {
    std::vector<std::wstring> files;
    const wchar_t* text;
  } rows[] = {
      {{empty.wstring()}, L"Invalid file format."},
      {{strange.wstring()}, L"Invalid file format."},
      {{noPing.wstring()}, L"This file Cannot be playback"},
      {{(folder_ / "absent.log").wstring()}, L"absent.log  to open file."},
      {{noPing.wstring(), strange.wstring()}, L"Select correct pair of files!!"},
      {{noPing.wstring(), strange.wstring(), empty.wstring()}, L"Select correct pair of files!!"},
  };
  for (const auto& row : rows) {
    Ui().boxes.clear();
    Choose(row.files);
    PlayFiles(*state_);
    ExpectBox(row.text, L"Error", BoxIcon::error);
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle);
  }
  Ui().boxes.clear();
  Choose({});
  PlayFiles(*state_);
  EXPECT_TRUE(Ui().boxes.empty()) << "cancelled";

  ConnectSounder(QuickSounder());
  StartRun(*state_);
  Choose({noPing.wstring()});
  for (void (*const command)(AppState&) : {PlayFiles, ConvertToSegy, ConvertToText}) {
    Ui().boxes.clear();
    command(*state_);
    ExpectBox(L"To open a file you should press \"Stop\" button first.", L"", BoxIcon::information);
  }
}

class ConversionRun : public Playback {
 protected:
  void Wait() {
    for (int i = 0; i < 1'000 && LoadShared(state_->fileWorkerA) != Handle::null; ++i) SleepMilliseconds(10);
    SleepMilliseconds(10);
    ASSERT_EQ(Ui().conversionEnds.size(), 1u);
    HandleConversionEnd(*state_, Ui().conversionEnds[0]);
    Ui().conversionEnds.clear();
  }
};

TEST_F(ConversionRun, BinaryBecomesSegyAndText) {
  sim::SounderOptions options = QuickSounder();
  options.outputMode = 100;
  options.samplingFrequency_hz = 100'000;
  Record(options);
  const std::vector<Sent> pings = RecordedPings(files_[0]);
  Choose({files_[0]});
  ConvertToSegy(*state_);
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::converting);
  Wait();
  ExpectBox(L"Convert completed", L"Info", BoxIcon::information);
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle);
  EXPECT_EQ(state_->segyCompanionA, Handle::invalid);
  const std::string stem = fs::path(files_[0]).stem().string();
  const fs::path records = folder_ / "TIDEWRITERR57_DATA";
  EXPECT_EQ(fs::file_size(records / (stem + ".sgy")),
            3'600 + pings.size() * (240 + 2 * pings[0].samples.size()));

  Ui().boxes.clear();
  ConvertToText(*state_);
  Wait();
  ExpectBox(L"Convert completed", L"Info", BoxIcon::information);
  const std::vector<Sent> texts = RecordedPings((records / (stem + "_txt.log")).wstring());
  ASSERT_EQ(texts.size(), pings.size());
  for (size_t i = 0; i < pings.size(); ++i) {
    EXPECT_EQ(texts[i].ping.number, pings[i].ping.number);
    EXPECT_NEAR(texts[i].ping.altitude_m, pings[i].ping.altitude_m, 0.00005);
    for (size_t sample = 0; 2 * sample + 1 < pings[i].samples.size(); ++sample) {
      ASSERT_EQ(texts[i].samples[sample], pings[i].samples[2 * sample + 1]) << i << " " << sample;
    }
  }
}

TEST_F(ConversionRun, WhatCannotBeConvertedIsSaid) {
  sim::SounderOptions options = QuickSounder();
  options.outputMode = 1;
  Record(options, 5);
  const fs::path text = folder_ / "text.log";
  std::ofstream(text, std::ios::binary) << "#DeviceID a\r\n#NSamples 0\r\n##DataStart\r\n\r\n\r\n";
  using Command = void (*)(AppState&);
  const struct {
    Command command;
    std::vector<std::wstring> files;
    const wchar_t* message;
  } rows[] = {
      {ConvertToSegy, {}, L"File is not selected"},
      {ConvertToText, {L"a", L"b"}, L"Select One File"},
      {ConvertToSegy, {files_[0]}, L"Cannot convert this file(s)"},
      {ConvertToText, {text.wstring()}, L"Cannot convert this file(s)"},
  };
  for (const auto& row : rows) {
    Ui().boxes.clear();
    Choose(row.files);
    row.command(*state_);
    ExpectBox(row.message, L"Error", BoxIcon::error);
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle);
  }
}

}  // namespace
}  // namespace tw::test
