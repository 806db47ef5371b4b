#include "gps/gps_worker.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <memory>
#include <new>
#include <numbers>
#include <set>
#include <string>
#include <vector>

#include "app/state/posts.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "gps/receiver_watch.h"
#include "platform/clock.h"
#include "platform/serial_line.h"
#include "platform/thread.h"
#include "platform/virtual/debug_capture.h"
#include "platform/virtual/faults.h"
#include "platform/virtual/serial_peer.h"
#include "platform/virtual/virtual_clock.h"
#include "simulator/virtual_gps.h"
#include "tests/simulator_peer.h"

namespace {

std::atomic<bool> memoryIsUsedUp = false;

}  // namespace

void* operator new[](size_t size, const std::nothrow_t&) noexcept {
  return memoryIsUsedUp ? nullptr : ::operator new[](size);
}

namespace tw {

namespace {
std::vector<std::pair<StatusPart, const wchar_t*>> posts;
}

void PostStatusText(AppState&, StatusPart part, const wchar_t* text) {
  posts.emplace_back(part, text);
}

namespace {

constexpr wchar_t kLine[] = L"\\\\.\\COM4";

Handle OpenReceiver(const wchar_t* name, int32_t speed_bps) {
  return speed_bps == 4'800 ? OpenSerialLine(name, "baud=4800 parity=N data=8 stop=1", 100) : Handle::invalid;
}

// A receiver whose port can take its time to close.
class ReceiverPeer final : public test::SimulatorPeer {
 public:
  using SimulatorPeer::SimulatorPeer;
  void Close() override {
    SimulatorPeer::Close();
    if (closing_ms != 0) SleepMilliseconds(closing_ms);
  }
  uint32_t closing_ms = 0;
};

// A worker with the virtual receiver behind a line in this process, on the real clock.
class GpsRace : public testing::Test {
 protected:
  GpsRace() {
    globals = {};
    posts.clear();
    MakeLock(state_->gpsLock);
    MakeLock(state_->linkLock);
    state_->runNumber = 7;
  }
  ~GpsRace() override {
    DestroyLock(state_->gpsLock);
    DestroyLock(state_->linkLock);
    DetachSerialLines();
  }

  void Connect(const sim::GpsOptions& options = {}) {
    gps_ = std::make_unique<sim::VirtualGps>(options);
    peer_ = std::make_unique<ReceiverPeer>(*gps_);
    AttachPeer(kLine, peer_.get());
  }
  void Start(const sim::GpsOptions& options = {}) {
    Connect(options);
    state_->gpsPort = OpenReceiver(kLine, 4'800);
    ASSERT_NE(state_->gpsPort, Handle::invalid);
    StartWorker();
  }
  void StartWorker() {
    StoreShared(state_->gpsRunNumber, state_->runNumber);
    thread_ = StartThread(GpsWorker, state_.get());
    ASSERT_NE(thread_, Handle::null);
  }
  void WaitForEnd() {
    EXPECT_EQ(WaitForThread(thread_, 1000), ThreadWait::ended);
    CloseThread(thread_);
  }
  // What Stop does with the GPS port.
  void Stop() {
    StoreShared(state_->runNumber, state_->runNumber + 1);
    CloseSerialLine(ExchangeShared(state_->gpsPort, Handle::invalid));
    WaitForEnd();
    EXPECT_EQ(peer_->Closed(), 1);
  }
  [[nodiscard]] ReceiverState Judged() const {
    return JudgeReceiver(TimesOfReceiver(*state_), 3'000, MillisecondClock());
  }
  void ExpectQuality(int32_t quality) const {
    EXPECT_EQ(globals.gpsQuality, quality);
    EXPECT_EQ(globals.fix.quality, quality);
  }
  // Of a worker that is not that of the present run, once it has ended.
  void ExpectUntouched(Handle port, uint32_t updates) {
    WaitForEnd();
    EXPECT_EQ(state_->gpsPort, port);
    EXPECT_EQ(peer_->Closed(), 0);
    ExpectQuality(5);
    EXPECT_EQ(globals.fix.presence, 0u);
    EXPECT_EQ(globals.gpsUpdates, updates);
  }
  // Else a next run without a receiver would record the old position as a valid one.
  void ExpectNoQuality() const {
    EXPECT_EQ(state_->gpsPort, Handle::invalid);
    ExpectQuality(0);
  }

  std::unique_ptr<AppState> state_ = std::make_unique<AppState>();
  std::unique_ptr<sim::VirtualGps> gps_;
  std::unique_ptr<ReceiverPeer> peer_;
  Handle thread_ = Handle::null;
};

// The same on the virtual clock.
class GpsWorkerTest : public GpsRace {
 protected:
  const VirtualClock clock_{1'700'000'000'000};  // 2023-11-14
};

TEST_F(GpsWorkerTest, KeepsTheFixAndWhatIsDerivedFromIt) {
  Start({.baud = 9'600,
         .latitude_deg = -35.1,
         .longitude_deg = 129.05,
         .startTime_s = 1'600'000'000,
         .faults = {.instrument = {.silentFrom_us = 9'500'000, .silentFor_us = 60'000'000}}});
  SleepMilliseconds(10'900);
  {
    const Locked held(state_->gpsLock);
    const sim::SentEpoch& epoch = gps_->Epochs().Entries().back();
    EXPECT_NEAR(globals.gpsLatitude_rad, epoch.latitude_deg * std::numbers::pi / 180, 1e-6);
    EXPECT_NEAR(globals.gpsLongitude_rad, epoch.longitude_deg * std::numbers::pi / 180, 1e-6);
    EXPECT_NEAR(globals.gpsLongitudeDdmm, 12903, 2);
    EXPECT_EQ(globals.gpsTime_s, epoch.utc_centi / 100);
    EXPECT_GE(globals.gpsTime_s, 1'600'000'009u);
    EXPECT_EQ(globals.gpsQuality, 2);
    EXPECT_EQ(globals.gpsFixType, 3);
    EXPECT_NEAR(globals.gpsPdop, 1.5811f, 1e-4f) << "the root of 0.9 and 1.3 squared";
    const auto& sent = gps_->Counts();
    EXPECT_EQ(globals.gpsUpdates, sent.gga + sent.gsa + sent.gsv + sent.rmc + sent.vtg);
  }
  Stop();
}

TEST_F(GpsWorkerTest, InputThatTheLineLostIsCounted) {
  StartDebugCapture();
  for (const uint64_t call : {3, 7}) InjectFault({.point = FaultPoint::overrunLine, .call = call});
  Start();
  SleepMilliseconds(3'000);
  EXPECT_EQ(TakeDebugTexts(), (std::vector<std::wstring>{L"GPS input lost : 1\n", L"GPS input lost : 2\n"}));
  StopDebugCapture();
  ClearFaults();
  Stop();
}

TEST_F(GpsWorkerTest, BeforeTheFirstSentenceTheTimeIsTheSystems) {
  Start({.faults = {.instrument = {.dead = true}}});
  SleepMilliseconds(500);
  const auto& utc = globals.fix.utc;
  EXPECT_TRUE(utc.year == 123 && utc.month == 10 && utc.day == 14);
  EXPECT_EQ(globals.fix.quality, 1);
  EXPECT_EQ(globals.gpsQuality, 0);
  EXPECT_EQ(globals.gpsUpdates, 0u);
  Stop();
}

// Silent, or sending what are no sentences; with the next sentence the position is back by itself.
TEST_F(GpsWorkerTest, ASilentReceiverLeavesNoPositionIfThatIsWanted) {
  for (const bool wanted : {false, true}) {
    state_->dropPositionAfter_ms = wanted ? 3'000 : 0;
    Start();
    SleepMilliseconds(5'500);
    SilenceLine(kLine);
    SleepMilliseconds(2'000);
    EXPECT_EQ(globals.gpsQuality, 2);
    SleepMilliseconds(5'000);
    ExpectQuality(wanted ? 0 : 2);
    EXPECT_EQ(Judged(), ReceiverState::silent);
    RestoreLine(kLine);
    SleepMilliseconds(5'000);
    EXPECT_EQ(globals.gpsQuality, 2);
    EXPECT_EQ(Judged(), ReceiverState::tells);
    Stop();
  }
}

TEST_F(GpsWorkerTest, BytesThatAreNoSentencesAreToldApartFromSilence) {
  state_->dropPositionAfter_ms = 3'000;
  Start({.faults = {.badChecksumEvery = 1}});
  SleepMilliseconds(8'000);
  EXPECT_EQ(Judged(), ReceiverState::noSentences);
  EXPECT_EQ(globals.fix.quality, 0) << "1 until a sentence tells";
  Stop();
}

TEST_F(GpsWorkerTest, APulledPlugClosesThePortOnceAndLeavesNoQuality) {
  Start({.faults = {.instrument = {.hangUpAt_us = 5'000'000}}});
  SleepMilliseconds(4'500);
  EXPECT_EQ(globals.gpsQuality, 2);
  SleepMilliseconds(1'000);
  WaitForEnd();
  ExpectNoQuality();
  EXPECT_EQ(peer_->Closed(), 1);
  EXPECT_NE(globals.gpsLatitude_rad, 0.0f);
}

// Taken away at 5 s; Stop at a time of its own, or the receiver tells again from 20 s on. Reads of the dead
// handle fail, or end with nothing.
TEST_F(GpsWorkerTest, APulledPlugComesBackWhereThatIsWanted) {
  constexpr struct {
    uint32_t stopAt_ms;
    bool fails;
  } kRows[] = {{5'300, true}, {8'000, true}, {30'000, true}, {8'000, false}, {30'000, false}};
  for (const auto& [stopAt_ms, fails] : kRows) {
    state_->openReceiver = OpenReceiver;
    CopyWide(state_->gpsPortName, kLine);
    globals.gpsBaud = 4'800;
    Start({.faults = {.instrument = {.hangUpAt_us = fails ? VirtualNow_us() + 5'000'000 : sim::kNever}}});
    const uint32_t begin_ms = MillisecondClock();
    SleepMilliseconds(4'900);
    EXPECT_EQ(globals.gpsQuality, 2);
    SleepMilliseconds(100);
    DetachSerialLines();
    if (!fails) {
      SilenceLine(kLine);
      InjectFault({.point = FaultPoint::askLine});
      SleepMilliseconds(200);
      RestoreLine(kLine);
    }
    while (MillisecondClock() - begin_ms < std::min(stopAt_ms, 20'000u)) SleepMilliseconds(50);
    EXPECT_EQ(LoadShared(state_->gpsPort), Handle::null);
    EXPECT_EQ(globals.gpsQuality, 0);
    EXPECT_EQ(peer_->Closed(), 1) << "the dead handle";
    if (stopAt_ms > 20'000) {
      Connect();
      SleepMilliseconds(8'000);
      EXPECT_EQ(globals.gpsQuality, 2);
    }
    Stop();
    DetachSerialLines();
    EXPECT_EQ(state_->gpsPort, Handle::invalid);
  }
}

// The port is there again, and closed by who opened it: in the record stands that of another run.
TEST_F(GpsWorkerTest, AReceiverThatComesBackAfterStopTouchesNothing) {
  static AppState* state = nullptr;
  state = state_.get();
  state_->openReceiver = [](const wchar_t* name, int32_t) {
    StoreShared(state->runNumber, state->runNumber + 2);
    return OpenReceiver(name, 4'800);
  };
  CopyWide(state_->gpsPortName, kLine);
  Start();
  HangUpLine(kLine, 1'000);
  SleepMilliseconds(4'000);
  RestoreLine(kLine);
  SleepMilliseconds(3'000);
  WaitForEnd();
  EXPECT_EQ(state_->gpsPort, Handle::null);
  EXPECT_EQ(peer_->Closed(), 2);
}

TEST_F(GpsWorkerTest, WhileThePortIsClosingNobodyWaitsForTheFix) {
  Start({.faults = {.instrument = {.hangUpAt_us = 1'000'000}}});
  peer_->closing_ms = 5'000;
  SleepMilliseconds(3'000);
  const int64_t begin_us = VirtualNow_us();
  Enter(state_->gpsLock);
  Leave(state_->gpsLock);
  EXPECT_EQ(peer_->Closed(), 1);
  EXPECT_LT(VirtualNow_us() - begin_us, 1'000);
  SleepMilliseconds(5'000);
  WaitForEnd();
  ExpectNoQuality();
}

TEST_F(GpsWorkerTest, WithoutMemoryItSaysSoAndEnds) {
  memoryIsUsedUp = true;
  Start();
  WaitForEnd();
  memoryIsUsedUp = false;
  ASSERT_EQ(posts.size(), 1u);
  EXPECT_STREQ(posts[0].second, L"Insufficient memory!");
  ExpectNoQuality();
}

TEST_F(GpsWorkerTest, OfNoRunOrOfAnEarlierOneItTouchesNothing) {
  for (const bool early : {true, false}) {
    Start();
    const Handle port = state_->gpsPort;
    globals.fix.quality = globals.gpsQuality = 5;
    if (early) {  // before its first step
      state_->runNumber += 2;
    } else {
      state_->gpsRunNumber = 0;
      state_->gpsPort = Handle::invalid;
    }
    SleepMilliseconds(3'000);
    ExpectUntouched(early ? port : Handle::invalid, 0);
    CloseSerialLine(port);
  }
}

TEST_F(GpsWorkerTest, OnTheNullHandleItEndsAtOnce) {
  globals.gpsQuality = 3;
  ASSERT_EQ(state_->gpsPort, Handle::null);
  StartWorker();
  WaitForEnd();
  ExpectNoQuality();
}

TEST_F(GpsWorkerTest, OvertakenByAnotherStartItTouchesNothing) {
  Start();
  const Handle first = state_->gpsPort;
  SleepMilliseconds(3'000);
  for (const Handle other : {first, Handle{0x1234}}) {
    if (other != first) {  // a second worker, for the case that the port's handle is another one
      StartWorker();
      SleepMilliseconds(3'000);
    }
    StoreShared(state_->gpsPort, other);
    StoreShared(state_->runNumber, state_->runNumber + 2);
    globals.fix = {};
    globals.fix.quality = globals.gpsQuality = 5;
    ExpectUntouched(other, globals.gpsUpdates);
  }
  CloseSerialLine(first);
}

TEST_F(GpsWorkerTest, TheTalkerFlagChangesOnlyWithASentenceThatIsApplied) {
  globals.gpsTalkerGn = 1;  // of the last run
  for (const int32_t badEvery : {1, 0}) {
    Start({.faults = {.instrument = {}, .badChecksumEvery = badEvery}});
    SleepMilliseconds(3'000);
    Stop();
    EXPECT_EQ(globals.gpsTalkerGn, badEvery == 1 ? 1 : 0);
  }
}

TEST_F(GpsWorkerTest, PositionStatusTextsStayWholeForAWhile) {
  globals.gpsFixType = 2;
  for (int i = 0; i < 4; ++i) {
    globals.gpsPdop = static_cast<float>(i);
    FormatPositionStatus(*state_);
  }
  ASSERT_EQ(posts.size(), 4u);
  const wchar_t* const ends[] = {L" 0.0 (N/A)", L" 1.0 (Excellent)", L" 2.0 (Good)", L" 3.0 (Good)"};
  for (size_t i = 0; i < posts.size(); ++i) {
    EXPECT_EQ(posts[i].first, StatusPart::position);
    const std::wstring_view text = posts[i].second;
    EXPECT_TRUE(text.starts_with(L"Position(2D):   0\u00b0") && text.ends_with(ends[i])) << i;
  }
}

// Besides for the race detector: whoever reads finds the latitude and the longitude of one place.
TEST_F(GpsRace, ReadersUnderTheLockSeeWholeValues) {
  Start({.baud = 115'200, .epochsPerSecond = 10, .course_deg = 45, .speed_kn = 100});
  std::set<std::pair<float, float>> places;
  const auto goesOn = [&](uint32_t updates) {
    return updates < 30 || (places.size() < 3 && updates < 5'000);
  };
  while (goesOn(LoadShared(globals.gpsUpdates))) {  // a busy machine shows few of the places that pass
    FormatPositionStatus(*state_);
    const Locked held(state_->gpsLock);
    if (globals.fix.presence != 0) places.emplace(globals.gpsLatitude_rad, globals.gpsLongitude_rad);
    SleepMilliseconds(1);
  }
  Stop();
  EXPECT_GE(places.size(), 3u);
  for (const auto& [latitude_rad, longitude_rad] : places) {
    const auto isThere = [latitude = latitude_rad, longitude = longitude_rad](const sim::SentEpoch& epoch) {
      constexpr double kRadians = std::numbers::pi / 180;
      return std::abs(latitude - epoch.latitude_deg * kRadians) < 2e-7 &&
             std::abs(longitude - epoch.longitude_deg * kRadians) < 2e-7;
    };
    const auto& epochs = gps_->Epochs().Entries();
    EXPECT_TRUE(std::any_of(epochs.begin(), epochs.end(), isThere)) << latitude_rad << ' ' << longitude_rad;
  }
  for (const auto& [part, text] : posts)
    EXPECT_TRUE(std::wstring_view(text).starts_with(L"Position(")) << text;
}

}  // namespace
}  // namespace tw
