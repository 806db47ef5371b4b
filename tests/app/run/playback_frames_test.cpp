// Binary recordings written frame by frame: what time and sampling frequency make of the ring.
#include <algorithm>

#include "acquisition/echo_frame.h"
#include "tests/app/run/playback_fixture.h"
#include "tests/end_to_end/received_pings.h"
#include "tests/gps/parser_fixture.h"
#include "tests/playback/info_text.h"

namespace tw::test {
namespace {

struct Frame {
  uint32_t time_s;
  uint32_t sampling_hz;
};

constexpr uint32_t kDay_s = 86'400;

class PlaybackFrames : public Playback {
 protected:
  // Each frame holds the samples 100 and 200; frame i is ping i + 1.
  void PlayFrames(const std::vector<Frame>& frames) {
    const uint16_t samples[] = {100, 200};
    std::string bytes;
    for (size_t i = 0; i < frames.size(); ++i) {
      PingHeader header{};
      header.ping = static_cast<uint32_t>(i + 1);
      header.timeOfWork_s = frames[i].time_s;
      header.samplingFrequency_hz = frames[i].sampling_hz;
      header.sampleCount = 2;
      uint8_t frame[frame::kWrittenHeaderLength + sizeof samples];
      frameSize_ = LayOutEchoFrame(header, samples, frame);
      bytes.append(reinterpret_cast<const char*>(frame), frameSize_);
    }
    WriteWhole(folder_ / "frames.log", bytes);
    Play({(folder_ / "frames.log").wstring()});
    ASSERT_TRUE(Ui().boxes.empty());
  }

  [[nodiscard]] std::vector<uint16_t> SamplesOf(int32_t slot) const {
    return SamplesAt(state_->ringA->slots[slot] + kSlotSamples,
                     (globals.slotReachA[slot] - kSlotSamples) / 2);
  }

  size_t frameSize_ = 0;
};

TEST_F(PlaybackFrames, RepetitionIsFoundOnce) {
  // One second apart, so that the pings stand ten slots apart.
  PlayFrames({{100, 0}, {101, 50'000}, {102, 25'000}, {103, 100'001}, {104, 100'000}});
  PlayToTheEnd();
  const std::vector<uint16_t> twice = {100, 100, 200, 200};
  EXPECT_EQ(SamplesOf(0), std::vector<uint16_t>()) << "no frequency, no samples";
  EXPECT_EQ(SamplesOf(1), twice) << "the first that has one decides";
  EXPECT_EQ(SamplesOf(11), twice);
  EXPECT_EQ(SamplesOf(21), std::vector<uint16_t>()) << "above the grid's";
  EXPECT_EQ(SamplesOf(31), twice);
}

TEST_F(PlaybackFrames, SlotsGoByRecordedTime) {
  const struct {
    const char* what;
    std::vector<Frame> frames;
    int32_t index;
  } rows[] = {
      {"one frame", {{100, 1'000}}, 1},
      {"frames of one second share a slot", {{100, 1'000}, {100, 1'000}, {100, 1'000}}, 1},
      {"a second is ten slots", {{100, 1'000}, {100, 1'000}, {101, 1'000}}, 11},
      {"back in time: none", {{100, 1'000}, {50, 1'000}, {51, 1'000}}, 11},
      {"three days go once around at most",
       {{100, 1'000}, {100 + 3 * kDay_s, 1'000}},
       (1 + 30 * 86'400) % 10'000},
  };
  for (const auto& row : rows) {
    PlayFrames(row.frames);
    PlayToTheEnd();
    EXPECT_EQ(NewestSlot(), row.index) << row.what;
    EXPECT_EQ(NewestPing().ping, row.frames.size()) << row.what;
    StopRun(*state_);
  }
}

TEST_F(PlaybackFrames, AfterTheEndTheSliderGoesOnAndOneTickIsOneTick) {
  std::vector<Frame> frames;
  for (uint32_t i = 0; i < 100; ++i) frames.push_back({1'000'000 + i * kDay_s, 1'000});
  PlayFrames(frames);
  PlayToTheEnd();
  const int32_t end = NewestSlot();
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::paused);
  PausePlayback(*state_);
  Ui().progress.clear();
  RequestSeek(state_->seekRequest, 50 * frameSize_ - 3);
  SleepMilliseconds(100);
  EXPECT_EQ(NewestSlot(), (end + 1) % kRingSlots) << "years back";
  EXPECT_EQ(NewestPing().ping, 51u) << "shown although held";
  ASSERT_FALSE(Ui().progress.empty());
  EXPECT_EQ(state_->playbackAtEnd, 1);
  NotePlaybackProgress(*state_, Ui().progress.back());
  EXPECT_EQ(state_->playbackAtEnd, 0);
  ResumePlayback(*state_);
  SleepMilliseconds(40);
  EXPECT_GT(NewestPing().ping, 51u) << "on from there, not from the beginning";
  PlayToTheEnd();
}

// Minutes are played in seconds: what was recorded counts.
TEST_F(PlaybackFrames, MarksAndPicturesGoByRecordedTime) {
  StoreShared(globals.timestampTicked, 1);
  StoreShared(globals.autoCaptureTicked, 1);
  const struct {
    uint32_t seconds;
    uint32_t framesPerSecond;  // which share their times
    int pictures;              // more than 135 s behind the first ping, and again
    int32_t marks;             // one in 30 s
  } rows[] = {{135, 1, 0, 4}, {136, 1, 1, 4},  {271, 1, 1, 9},
              {272, 1, 2, 9}, {100, 10, 0, 3}, {100, 4, 0, 3}};
  for (const auto& row : rows) {
    std::vector<Frame> frames;
    for (uint32_t i = 0; i <= row.seconds * row.framesPerSecond; ++i)
      frames.push_back({1'000 + i / row.framesPerSecond, 1'000});
    PlayFrames(frames);
    int pictures = 0;
    while (LoadShared(globals.playbackEnded) == 0) {
      SleepMilliseconds(10);
      pictures += ExchangeShared(globals.autoCaptureRequested, 0);
    }
    EXPECT_EQ(pictures, row.pictures) << row.seconds;
    EXPECT_EQ(globals.marksA.markNumber, row.marks) << row.seconds;
    StopRun(*state_);
  }
  // Back in time it begins again.
  std::vector<Frame> frames;
  for (uint32_t time_s = 1'100; time_s < 1'200; ++time_s) frames.push_back({time_s, 1'000});
  for (uint32_t time_s = 1'000; time_s < 1'140; ++time_s) frames.push_back({time_s, 1'000});
  PlayFrames(frames);
  PlayToTheEnd();
  EXPECT_EQ(ExchangeShared(globals.autoCaptureRequested, 0), 1);
  const auto& told = Ui().posts[static_cast<size_t>(StatusPart::position)];
  EXPECT_NE(std::find(told.begin(), told.end(), L"Position is not available"), told.end());
}

// Each second ping that has a position shows it; a file without one says so each two seconds. A ping is
// played each 16 ms.
TEST_F(PlaybackFrames, PositionsAreTold) {
  const std::string ping = "Alt : 1.5\r\n";
  const std::string position = Sentence("GPGGA,123519,3351.1234,S,05812.5000,W,1,08,2.5,545.4,M,46.9,M,,") +
                               Sentence("GPRMC,123519,A,3351.1234,S,05812.5000,W,5,84,230394,3.1,W");
  const struct {
    std::string ping;
    int count;
    std::vector<std::wstring> told;
  } rows[] = {
      {ping + position, 7,
       std::vector<std::wstring>(3,
                                 L"Position(3D):  33\u00b0 51.1234\u2032 S,  58\u00b0 12.5000\u2032 W, "
                                 L"PDOP:  2.5 (Good)")},
      {ping, 300, std::vector<std::wstring>(3, L"Position is not available")},
  };
  for (const auto& row : rows) {
    std::string content = InfoText(1, 1);
    for (int i = 0; i < row.count; ++i) content += row.ping;
    WriteWhole(folder_ / "lines.log", content);
    auto& told = Ui().posts[static_cast<size_t>(StatusPart::position)];
    told.clear();
    Play({(folder_ / "lines.log").wstring()});
    PlayToTheEnd();
    std::erase(told, L"");
    EXPECT_EQ(told, row.told);
    StopRun(*state_);
  }
}

}  // namespace
}  // namespace tw::test
