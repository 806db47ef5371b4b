// A run that records, and its recording played back: what the tests of playback have in common.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

#include "acquisition/ping_ring.h"
#include "app/control_states.h"
#include "app/playback_control.h"
#include "app/run_control.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "playback/ping_source.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {

namespace fs = std::filesystem;

struct ReadPing {
  PingHeader header;
  std::vector<uint16_t> samples;
};

class Playback : public RunControlTest {
 protected:
  // A run of some seconds that records.
  void Record(const sim::SounderOptions& options, int seconds = 20, const sim::GpsOptions& gps = {}) {
    Ui().controls[ID_RECORD].checked = true;
    ConnectSounder(options);
    ConnectGps(gps);
    ChooseGps();
    StartRun(*state_);
    ASSERT_NE(state_->acquisitionThread, Handle::null);
    Run(seconds);
    StopRun(*state_);
    ExpectIdle();
    Ui().boxes.clear();
    for (const std::string& name : RecordFiles())
      files_.push_back((folder_ / "TIDEWRITERR57_DATA" / name).wstring());
    ASSERT_FALSE(files_.empty());
  }

  void Choose(std::vector<std::wstring> files) { Ui().chosenFiles = std::move(files); }

  // Lets the worker run, the end timer included, until the file is exhausted.
  void PlayToTheEnd() {
    for (int i = 0; i < 6'000 && state_->playbackAtEnd == 0; ++i) {
      SleepMilliseconds(20);
      HandleTimer(*state_, ID_TIMER_PLAYBACK_END);
    }
    ASSERT_EQ(state_->playbackAtEnd, 1);
  }

  static std::vector<ReadPing> ReadPings(const std::wstring& file) {
    std::vector<ReadPing> pings;
    RecordingFault fault{};
    const auto recording = OpenRecording(file.c_str(), fault);
    EXPECT_NE(recording, nullptr);
    for (RecordedPing ping{}; recording != nullptr && recording->Next(ping);) {
      pings.push_back({ping.header, {ping.samples.begin(), ping.samples.end()}});
    }
    EXPECT_EQ(recording == nullptr ? 1 : recording->Skipped(), 0u) << "nothing damaged";
    return pings;
  }

  int32_t IndexA() {
    Locked held(state_->ringLockA);
    return state_->ringIndexA;
  }
  PingHeader HeaderAt(int32_t index) const { return LoadPingHeader(state_->ringA->slots[index]); }

  std::vector<std::wstring> files_;
};

}  // namespace tw::test
