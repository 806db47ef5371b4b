// Every output mode of every family, recorded live and played back: the rings show the same pings in the same
// order.
#include <algorithm>

#include "tests/app/run/playback_fixture.h"
#include "tests/end_to_end/mode_case.h"
#include "tests/end_to_end/received_pings.h"

namespace tw::test {
namespace {

constexpr uint32_t kBegin_s = 1'741'944'605;  // when the virtual clock begins

class PlaybackModes : public Playback, public testing::WithParamInterface<ModeCase> {
 protected:
  // The pings in a ring, oldest first, each once however many slots it fills.
  std::vector<Shown> PingsOf(const PingRing& ring, int32_t index, const uint16_t* reach) {
    std::vector<Shown> pings;
    for (int32_t slot = 0; slot <= index; ++slot) {
      const uint8_t* const bytes = ring.slots[slot];
      Shown shown{
          LoadPingHeader(bytes),
          SamplesAt(bytes + kSlotSamples, (std::max<size_t>(reach[slot], kSlotSamples) - kSlotSamples) / 2)};
      if (pings.empty() || pings.back().header.ping != shown.header.ping) pings.push_back(std::move(shown));
    }
    return pings;
  }
  std::vector<Shown> PingsOfA() { return PingsOf(*state_->ringA, state_->ringIndexA, globals.slotReachA); }
  std::vector<Shown> PingsOfB() { return PingsOf(*state_->ringB, state_->ringIndexB, globals.slotReachB); }

  // Pings that the device does not number share one counter live; it is not recorded.
  bool numbered_ = true;

  void ExpectSame(const std::vector<Shown>& live, const std::vector<Shown>& played, const char* ring) {
    ASSERT_EQ(played.size(), live.size()) << ring;
    for (size_t i = 0; i < live.size() && !HasFailure(); ++i) {
      SCOPED_TRACE(testing::Message() << ring << " " << i);
      const PingHeader& was = live[i].header;
      const PingHeader& is = played[i].header;
      if (numbered_) {
        EXPECT_EQ(is.ping - played[0].header.ping, was.ping - live[0].header.ping);
      }
      EXPECT_EQ(is.altitude_m, was.altitude_m);
      EXPECT_EQ(is.temperature_c, was.temperature_c);
      EXPECT_EQ(is.pitch_deg, was.pitch_deg);
      EXPECT_EQ(is.roll_deg, was.roll_deg);
      EXPECT_NEAR(is.timeOfWork_s, was.timeOfWork_s, 1);
      // Ahead of the receiver's first sentence there is none.
      EXPECT_EQ(is.gpsValid, was.gpsLatitude_rad != 0.0f ? was.gpsValid : 0);
      EXPECT_NEAR(is.gpsLatitude_rad, was.gpsLatitude_rad, 1e-6);
      EXPECT_NEAR(is.gpsLongitude_rad, was.gpsLongitude_rad, 1e-6);
      EXPECT_EQ(played[i].samples, live[i].samples);
    }
  }
};

TEST_P(PlaybackModes, TheRingsShowWhatTheyShowedLive) {
  const ModeCase& each = GetParam();
  sim::SounderOptions options = QuickSounder();
  each.Configure(options);
  options.pingsPerSecond = 4;  // so that each ping has a slot of its own
  options.startTime_s = kBegin_s;
  sim::GpsOptions gps;
  gps.startTime_s = kBegin_s;
  Record(options, 20, gps);
  ASSERT_EQ(files_.size(), each.Files());
  const std::vector<Shown> liveA = PingsOfA();
  const std::vector<Shown> liveB = PingsOfB();
  ASSERT_GT(liveA.size(), 30u);

  numbered_ = !each.dual || state_->echogramEnabled != 0;
  Play(files_);
  ASSERT_TRUE(Ui().boxes.empty());
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::playing);
  if (each.Files() == 1) {  // what is stepped over is shown again, where it was
    SleepMilliseconds(1'000);
    StepPlaybackBack(*state_, kBack20);
    SleepMilliseconds(400);
    StepPlaybackBack(*state_, kBack20);
    StepPlaybackBack(*state_, kBack100);
  }
  PlayToTheEnd();
  SleepMilliseconds(3'000);  // the second file's end is told to nobody
  ExpectSame(liveA, PingsOfA(), "A");
  if (each.dual) ExpectSame(liveB, PingsOfB(), "B");
  EXPECT_EQ(LoadShared(globals.dualMode), each.dual ? 1 : 0);
  EXPECT_EQ(LoadShared(globals.playedFrequencyA_hz), each.frequency_hz);
  if (each.dual) {
    EXPECT_EQ(LoadShared(globals.playedFrequencyB_hz), 200'000);
  }
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::paused);
  EXPECT_EQ(Ui().progress.back().position, Ui().progress.back().fileSize);
  EXPECT_TRUE(Ui().posts[static_cast<size_t>(StatusPart::position)].back().starts_with(L"Position(3D)"));
  StopRun(*state_);
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle);
  for (const Handle* const file : {&state_->inputFileA, &state_->inputFileB})
    EXPECT_EQ(*file, Handle::invalid);
  for (const Handle* const worker : {&state_->fileWorkerA, &state_->fileWorkerB})
    EXPECT_EQ(*worker, Handle::null);
}

INSTANTIATE_TEST_SUITE_P(Modes, PlaybackModes, testing::ValuesIn(AllModeCases()),
                         [](const auto& each) { return each.param.Name(); });

}  // namespace
}  // namespace tw::test
