// A run that records, and recordings played back and converted by the window's commands: what the tests of
// playback have in common.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

#include "acquisition/ping_ring.h"
#include "app/settings/control_states.h"
#include "app/window/commands.h"
#include "app/window/file_commands.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "platform/clock.h"
#include "playback/ping_source.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {

// Of recordings that are written by a test.
inline constexpr char kTextInfo[] = "INFO:1,450000,10000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0,4\r\n";

// An echo in text with these samples, at 25 kHz; a time below 0 is none.
inline std::string PingText(int number, int64_t time_ms, const std::vector<int>& samples) {
  std::string text = "#DeviceID a\r\n";
  char line[64];
  if (time_ms >= 0) {
    text.append(line, FormatText(line, "#TimeWork %d.%03d\r\n", static_cast<int>(time_ms / 1000),
                                 static_cast<int>(time_ms % 1000)));
  }
  text += "#NSamples " + std::to_string(samples.size()) + "\r\n#Sampling_Frequency,Hz 25000\r\n#Altitude " +
          std::to_string(number % 8) + ".5\r\n#Ping " + std::to_string(number) + "\r\n##DataStart\r\n";
  for (const int sample : samples) text += std::to_string(sample) + "\r\n";
  return text + "\r\n\r\n";
}

class Playback : public RunControlTest {
 protected:
  // A run of some seconds that records.
  void Record(const sim::SounderOptions& options, int seconds = 20, const sim::GpsOptions& gps = {}) {
    ConnectGps(gps);
    StartQuickRun(seconds, options);
    StopRun(*state_);
    ExpectIdle();
    for (const std::string& name : RecordFiles()) files_.push_back((records_ / name).wstring());
    ASSERT_FALSE(files_.empty());
  }

  void Play(std::vector<std::wstring> files) {
    Ui().chosenFiles = std::move(files);
    PlayFiles(*state_);
  }

  // Lets the worker run, the end timer included, until the file is exhausted.
  void PlayToTheEnd() {
    for (int i = 0; i < 60'000 && state_->playbackAtEnd == 0; ++i) {
      SleepMilliseconds(20);
      HandleTimer(*state_, ID_TIMER_PLAYBACK_END);
    }
    ASSERT_EQ(state_->playbackAtEnd, 1);
  }

  // Lets a conversion run to its end, of which the worker tells last of all.
  void FinishConversion() {
    for (int i = 0; i < 60'000 && LoadShared(state_->conversionKind) != 0; ++i) SleepMilliseconds(10);
    SleepMilliseconds(10);
    for (const bool exhausted : std::exchange(Ui().conversionEnds, {}))
      HandleConversionEnd(*state_, exhausted);
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle);
    EXPECT_EQ(state_->segyCompanionA, Handle::invalid);
    EXPECT_EQ(state_->inputFileA, Handle::invalid);
  }
  // What the box at its end says; empty: there is none.
  std::wstring Convert(const std::wstring& file, void (*command)(AppState&)) {
    Ui().chosenFiles = {file};
    command(*state_);
    FinishConversion();
    const std::vector<Box> boxes = std::exchange(Ui().boxes, {});
    EXPECT_LE(boxes.size(), 1u);
    return boxes.empty() ? L"" : boxes[0].text;
  }

  // Their samples are gone.
  static std::vector<RecordedPing> ReadPings(const std::wstring& file) {
    std::vector<RecordedPing> pings;
    RecordingFault fault{};
    const auto recording = OpenRecording(file.c_str(), fault);
    EXPECT_NE(recording, nullptr);
    for (RecordedPing ping{}; recording != nullptr && recording->Next(ping);) pings.push_back(ping);
    EXPECT_EQ(recording == nullptr ? 1 : recording->Skipped(), 0u) << "nothing damaged";
    return pings;
  }

  std::vector<std::wstring> files_;
};

}  // namespace tw::test
