// Every output mode of every family, recorded live and played back: the rings show the same pings in the same
// order.
#include <algorithm>

#include "tests/app/run/playback_fixture.h"

namespace tw::test {
namespace {

using sim::DeviceFamily;

constexpr uint32_t kBegin_s = 1'741'944'605;  // when the virtual clock begins

struct Case {
  friend void PrintTo(const Case& each, std::ostream* out) { *out << each.name; }
  DeviceFamily family;
  int32_t mode;
  const char* name;
  bool dual = false;
  size_t files = 1;
};

// What a slot shows.
struct Shown {
  PingHeader header;
  std::vector<uint8_t> samples;
};

class PlaybackModes : public Playback, public testing::WithParamInterface<Case> {
 protected:
  // The pings in a ring, oldest first, each once however many slots it fills.
  std::vector<Shown> PingsOf(const PingRing& ring, int32_t index, const uint16_t* reach) {
    std::vector<Shown> pings;
    for (int32_t slot = 0; slot <= index; ++slot) {
      const uint8_t* const bytes = ring.slots[slot];
      Shown shown{LoadPingHeader(bytes),
                  {bytes + kSlotSamples, bytes + std::max<size_t>(reach[slot], kSlotSamples)}};
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
  const Case& each = GetParam();
  sim::SounderOptions options = QuickSounder(each.mode);
  options.family = each.family;
  options.identity = each.family == DeviceFamily::first ? "KT-1042" : "1042";
  options.dual = each.dual;
  options.pingsPerSecond = 4;  // so that each ping has a slot of its own
  options.startTime_s = kBegin_s;
  sim::GpsOptions gps;
  gps.startTime_s = kBegin_s;
  Record(options, 20, gps);
  ASSERT_EQ(files_.size(), each.files);
  const std::vector<Shown> liveA = PingsOfA();
  const std::vector<Shown> liveB = PingsOfB();
  ASSERT_GT(liveA.size(), 30u);

  numbered_ = !each.dual || state_->echogramEnabled != 0;
  Play(files_);
  ASSERT_TRUE(Ui().boxes.empty());
  EXPECT_EQ(StateOfProgram(*state_), ProgramState::playing);
  if (each.files == 1) {  // what is stepped over is shown again, where it was
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
  EXPECT_EQ(LoadShared(globals.playedFrequencyA_hz), 450'000);
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

constexpr auto kFirst = DeviceFamily::first;
constexpr auto kSecond = DeviceFamily::second;
constexpr auto kThird = DeviceFamily::third;

INSTANTIATE_TEST_SUITE_P(
    Modes, PlaybackModes,
    testing::Values(
        Case{kFirst, 1, "FirstSimple"}, Case{kFirst, 2, "FirstText10"}, Case{kFirst, 3, "FirstNmea"},
        Case{kFirst, 4, "FirstText12"}, Case{kFirst, 6, "FirstDeso"}, Case{kFirst, 7, "FirstDual"},
        Case{kFirst, 8, "FirstDfx"}, Case{kFirst, 9, "FirstOld"}, Case{kFirst, 100, "FirstBinary"},
        Case{kFirst, 101, "FirstCompanded"}, Case{kFirst, 1, "PairSimple", true, 2},
        Case{kFirst, 2, "PairText10", true, 2}, Case{kFirst, 3, "PairNmea", true, 2},
        Case{kFirst, 4, "PairText12", true, 2}, Case{kFirst, 6, "BothDeso", true},
        Case{kFirst, 7, "BothDual", true}, Case{kFirst, 8, "BothDfx", true},
        Case{kFirst, 100, "PairBinary", true, 2}, Case{kFirst, 101, "PairCompanded", true, 2},
        Case{kSecond, 1, "SecondSimple"}, Case{kSecond, 2, "SecondText"}, Case{kSecond, 3, "SecondNmea"},
        Case{kSecond, 4, "SecondText200"}, Case{kSecond, 5, "SecondText500"},
        Case{kSecond, 6, "SecondText1000"}, Case{kSecond, 7, "SecondPsa"}, Case{kSecond, 8, "SecondAltiTemp"},
        Case{kSecond, 9, "SecondDfx"}, Case{kSecond, 10, "SecondOld"}, Case{kSecond, 100, "SecondBinary"},
        Case{kSecond, 101, "SecondCompanded"}, Case{kThird, 2, "ThirdText"}, Case{kThird, 3, "ThirdNmea"},
        Case{kThird, 8, "ThirdAltiTemp"}, Case{kThird, 100, "ThirdBinary"}),
    [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace tw::test
