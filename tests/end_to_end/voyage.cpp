#include "tests/end_to_end/voyage.h"

#include <malloc.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "acquisition/output_mode.h"
#include "acquisition/ping_record.h"
#include "app/settings/family_controls.h"
#include "app/window/commands.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/memory.h"
#include "platform/virtual/virtual_clock.h"
#include "tests/end_to_end/lossy_peer.h"
#include "tests/end_to_end/received_pings.h"

namespace tw::test {
namespace {

constexpr int64_t kSecond_us = 1'000'000;
constexpr int64_t kDelivery_us = 20'000;
// A ping that ended longer ago has been recorded, if it is ever to be.
constexpr int64_t kOnItsWay_us = 50'000;
constexpr int32_t kSilenceLimit_s = 60;  // of the program
constexpr int32_t kFilled_s = 60'000;

// "$GPGGA,time,latitude,N,longitude,E,quality,..."
bool HasFix(std::string_view gga) {
  for (int field = 0; field < 6; ++field) gga.remove_prefix(std::min(gga.find(',') + 1, gga.size()));
  return !gga.empty() && gga[0] > '0';
}

}  // namespace

// The log.

void VoyageLog::PingMade(const sim::SentPing& ping, std::span<const uint16_t> samples) {
  ++figures.sent;
  ++leaving_;
  pending_.push_back({{ping, {samples.begin(), samples.end()}}, kNever, excuse_});
}

// Pings end in their order.
void VoyageLog::PingEnded(const sim::SentPing& ping) {
  Ping& ended = pending_[pending_.size() - leaving_--];
  ended.sent = ping;
  ended.ended_us = VirtualNow_us();
}

void VoyageLog::Open(Excuse excuse) {
  excuse_ = excuse;
  for (Ping& ping : pending_) {
    const bool onItsWay = ping.ended_us == kNever || ping.ended_us + kOnItsWay_us >= VirtualNow_us();
    if (ping.excuse == Excuse::none && onItsWay) ping.excuse = excuse;
  }
}

void VoyageLog::Finish() {
  for (const Ping& ping : pending_) Lose(ping);
  pending_.clear();
  leaving_ = 0;
}

void VoyageLog::Fail(const std::string& what) {
  if (firstFailure.empty()) firstFailure = what + ", at " + std::to_string(VirtualNow_us()) + " us";
}

void VoyageLog::Lose(const Ping& ping) {
  ++figures.lost[static_cast<size_t>(ping.excuse)];
  if (ping.excuse == Excuse::none) Fail("ping " + std::to_string(ping.sent.number) + " was not recorded");
}

void VoyageLog::Written(std::wstring_view, uint64_t offset, std::span<const uint8_t> bytes) {
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  figures.bytes += bytes.size();
  figures.hash = 31 * figures.hash + sim::HashOf(bytes);
  if (text == "\r") return;  // the mark of a run that recorded nothing; the file is removed
  if (offset != 0) return TakeRecord(text);
  ++figures.files;
  if (!text.starts_with("INFO:1,")) Fail("a file without settings");
}

// Lines have no numbers: one that is excused may look like the next one, which is not and so comes first.
void VoyageLog::TakeRecord(std::string_view record) {
  size_t match = pending_.size();
  for (size_t i = 0; i < pending_.size(); ++i) {
    const bool owed = pending_[i].excuse == Excuse::none;
    if ((owed || match == pending_.size()) && Holds(record, pending_[i])) match = i;
    if (owed) break;
  }
  if (match == pending_.size()) {
    ++figures.unexpected;
    return Fail("a record that is no ping: " + std::string(record.substr(0, 80)));
  }
  std::for_each_n(pending_.begin(), match, [this](const Ping& ping) { Lose(ping); });
  const bool hasFix = record.starts_with("TR57")
                          ? LoadPingHeader(reinterpret_cast<const uint8_t*>(record.data())).gpsValid == 1
                          : (static_cast<void>(TakeMessage(record)), HasFix(record));
  figures.withPosition += hasFix ? 1 : 0;
  ++figures.recorded;
  pending_.erase(pending_.begin(), pending_.begin() + static_cast<std::ptrdiff_t>(match) + 1);
  leaving_ = std::min(leaving_, pending_.size());
}

// The voyage.

Voyage::Voyage() {
  SinkFiles(folder_.wstring().c_str(), &log_);
}

Voyage::~Voyage() {
  StopRun(*state_);
  SinkFiles(nullptr, nullptr);
}

int32_t Voyage::Draw(int32_t least, int32_t most) {
  draws_ = draws_ * 6'364'136'223'846'793'005u + 1'442'695'040'888'963'407u;
  return least + static_cast<int32_t>((draws_ >> 33) % static_cast<uint64_t>(most - least + 1));
}

void Voyage::Begin() {
  sim::SounderOptions options = QuickSounder();
  options.delivery_us = kDelivery_us;
  options.outputMode = 4;
  options.logSize = 1'024;  // kept by the devices; filled long before memory is measured
  peer_ = std::make_unique<LossyPeer>(options, log_);
  AttachPeer(kDeviceLine, peer_.get());
  ConnectGps({.delivery_us = 100'000, .logSize = options.logSize});
  Ui().controls[ID_RECORD].checked = true;
}

void Voyage::Start() {
  StartRun(*state_);
  EXPECT_TRUE(Ui().boxes.empty()) << "a box at Start";
  log_.Close();
}

void Voyage::ForgetPosts() {
  for (auto& posts : Ui().posts) posts.clear();
  Ui().pointers.clear();
  Ui().log.clear();
  Ui().boxes.clear();
}

void Voyage::Leg(int32_t seconds) {
  for (int32_t i = 0; i < seconds; ++i) {
    SleepMilliseconds(1'000);
    HandleTimer(*state_, ID_TIMER_REPAINT);
    if (Ui().timers.contains(ID_TIMER_LINK)) HandleTimer(*state_, ID_TIMER_LINK);
  }
}

// The link is up again, and the program takes the stream up by itself.
void Voyage::AwaitLink() {
  for (int i = 0; i < 180 && LoadShared(state_->linkAway) != 0; ++i) Leg(1);
  EXPECT_EQ(LoadShared(state_->linkAway), 0);
  EXPECT_TRUE(Ui().boxes.empty());
  SleepMilliseconds(300);  // a ping that was torn may take the next one with it
  log_.Close();
}

// A run that does not go on by itself has ended where the program has found out, and is started again.
void Voyage::MendLink(bool lost) {
  if (lost && !goesOn_) ExpectErrorBox(L"Connection lost!");
  peer_->link = LossyPeer::Link::up;
  if (lost && !goesOn_) return Start();
  AwaitLink();
}

void Voyage::HangUp() {
  ++log_.figures.hangUps;
  log_.Open(Excuse::linkDown);
  peer_->link = LossyPeer::Link::hungUp;
  Leg(Draw(3, 120));
  MendLink(true);
}

// A short silence passes; a long one ends the run.
void Voyage::FallSilent() {
  ++log_.figures.silences;
  log_.Open(Excuse::linkDown);
  peer_->link = LossyPeer::Link::silent;
  const int32_t seconds = Draw(1, 2) == 1 ? Draw(1, kSilenceLimit_s - 5) : kSilenceLimit_s + Draw(5, 30);
  Leg(seconds);
  MendLink(seconds > kSilenceLimit_s);
}

// The device is at its prompt, perhaps at its own speed, and sends nothing that need not be recorded.
void Voyage::LosePower() {
  ++log_.figures.powerLosses;
  log_.Open(Excuse::linkDown);
  peer_->link = Draw(0, 1) == 1 ? LossyPeer::Link::hungUp : LossyPeer::Link::silent;
  peer_->options.baud = Draw(0, 1) == 1 ? 115'200 : 921'600;
  log_.PowerOff();
  peer_->PowerOn();
  Leg(Draw(1, 60));
  peer_->link = LossyPeer::Link::up;
  log_.Close();
  const uint64_t before = log_.figures.recorded;
  for (int i = 0; i < 180 && log_.figures.recorded == before; ++i) Leg(1);
  EXPECT_EQ(LoadShared(state_->linkAway), 0);
}

// What the line brings meanwhile is lost; at times its handle is dead afterwards.
void Voyage::FallAsleep() {
  ++log_.figures.sleeps;
  log_.Open(Excuse::linkDown);
  peer_->link = Draw(0, 1) == 1 ? LossyPeer::Link::hungUp : LossyPeer::Link::silent;
  SuspendMachine(Draw(5, 600) * kSecond_us);
  peer_->Discard(VirtualNow_us());
  Leg(Draw(0, 3));
  peer_->link = LossyPeer::Link::up;
  Signal(state_->linkRetry);
  Leg(1);
  AwaitLink();
}

void Voyage::ApplyAnotherMode() {
  constexpr int32_t kModes[] = {4, 2, 100, 101, 3, 1, 6, 7, 8, 9};
  ++log_.figures.applies;
  int32_t mode = state_->settings.outputMode;
  while (mode == state_->settings.outputMode) mode = kModes[Draw(0, std::size(kModes) - 1)];
  Ui().Choose(ID_OUTPUT, std::wstring(NameOfMode(DeviceFamily::first, mode)));
  TakeSettingsChoice(*state_, ID_OUTPUT);
  log_.Open(Excuse::apply);
  ApplySettings(*state_);
  log_.Close();
  EXPECT_TRUE(Ui().boxes.empty()) << "a box at Apply";
  EXPECT_EQ(state_->appliedSettings.outputMode, mode);
}

void Voyage::PauseRecording() {
  ++log_.figures.pauses;
  log_.Open(Excuse::recordingOff);
  SetRecording(false);
  Leg(Draw(1, 60));
  SetRecording(true);
  log_.Close();
}

void Voyage::Happen() {
  using Event = void (Voyage::*)();
  constexpr Event kEvents[] = {&Voyage::HangUp, &Voyage::FallSilent, &Voyage::ApplyAnotherMode,
                               &Voyage::ApplyAnotherMode, &Voyage::PauseRecording,
                               // with a run that goes on alone
                               &Voyage::FallAsleep, &Voyage::FallAsleep, &Voyage::LosePower};
  const int32_t event = Draw(0, goesOn_ ? 13 : 4);
  (this->*kEvents[static_cast<size_t>(event) < std::size(kEvents) ? event : 0])();
}

Held Voyage::Measure() const {
  malloc_trim(0);  // what this test itself has given back since the longest sleep
  const auto count = [](const char* folder) {
    const std::filesystem::directory_iterator entries(folder);
    return static_cast<size_t>(std::distance(begin(entries), end(entries)));
  };
  return {ResidentBytes(), count("/proc/self/task"), count("/proc/self/fd"),
          peer_->IsOpen() + gpsPeer_->Opened() - gpsPeer_->Closed()};
}

VoyageFigures Voyage::Sail(const VoyagePlan& plan) {
  draws_ = plan.seed;
  goesOn_ = plan.goesOn;
  state_->options.keepRunGoing = state_->options.splitByTime = goesOn_ ? 1 : 0;
  Begin();
  Start();
  const uint32_t runNumber = LoadShared(state_->runNumber);
  const int32_t filled_s = std::min(kFilled_s, plan.duration_s / 2);
  const auto sailed_s = [] { return VirtualNow_us() / kSecond_us; };
  while (sailed_s() < plan.duration_s && !HasFailure() && log_.firstFailure.empty()) {
    Leg(Draw(plan.shortestLeg_s, plan.longestLeg_s));
    Happen();
    EXPECT_TRUE(!goesOn_ || LoadShared(state_->runNumber) == runNumber) << "one run";
    ForgetPosts();
    if (log_.figures.early.bytes == 0 && sailed_s() >= filled_s) log_.figures.early = Measure();
  }
  log_.figures.atEnd = Measure();
  log_.Open(Excuse::stop);
  StopRun(*state_);
  log_.Finish();
  EXPECT_EQ(log_.firstFailure, "");
  EXPECT_EQ(log_.figures.unexpected, 0u);
  EXPECT_EQ(log_.figures.lost[static_cast<size_t>(Excuse::none)], 0u);
  return log_.figures;
}

}  // namespace tw::test
