// A run whose link is cut, with the option to go on: what stands in its one record file against what the
// device sent.
#include <gtest/gtest.h>

#include <random>

#include "app/window/commands.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/virtual/virtual_clock.h"
#include "tests/app/run_control_fixture.h"
#include "tests/end_to_end/mode_case.h"
#include "tests/sent_account.h"

namespace tw::test {
namespace {

enum class Cut : uint8_t {
  cable,      // the device streams on unheard
  plug,       // the port is gone, and comes back under its name; the device streams on
  power,      // the device begins anew at its defaults, and does not stream
  plugPower,  // both
};
constexpr Cut kCuts[] = {Cut::cable, Cut::plug, Cut::power, Cut::plugPower};

// A line that is cut behind a given byte of the stream.
class CutLine final : public SerialPeer {
 public:
  explicit CutLine(const ModeCase& each) : each_(each) { PowerOn(); }

  void CutBehind(uint64_t bytes, Cut cut) {
    cutAt_ = sent_ + bytes;
    cut_ = cut;
  }
  void Mend() {
    if (cut_ == Cut::power || cut_ == Cut::plugPower) PowerOn();
    isCut_ = false;
    cutAt_ = UINT64_MAX;
  }
  [[nodiscard]] uint64_t Sent() const { return sent_; }
  [[nodiscard]] bool IsCut() const { return isCut_; }
  [[nodiscard]] bool IsGone() const { return isCut_ && (cut_ == Cut::plug || cut_ == Cut::plugPower); }

  bool Open(const char*) override {
    Discard(VirtualNow_us());
    return !IsGone();
  }
  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    if (!isCut_) device_->Receive(bytes, now_us);
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    if (isCut_) return Discard(now_us);
    const size_t count = device_->Send(out.first(std::min<uint64_t>(out.size(), cutAt_ - sent_)), now_us);
    sent_ += count;
    isCut_ = sent_ == cutAt_;
    if (isCut_) cuts.push_back(accounts.back()->messages.size());
    return count;
  }
  int64_t NextSend_us(int64_t now_us) override {
    return isCut_ ? now_us + 50'000 : device_->NextSend_us(now_us);
  }
  size_t Waiting(int64_t now_us) override {
    if (isCut_) return 0;
    return std::min<uint64_t>(device_->Waiting(now_us), cutAt_ - sent_);
  }
  bool HungUp(int64_t) override { return IsGone(); }

  std::vector<std::unique_ptr<SentAccount>> accounts;  // one from each power-on
  std::vector<size_t> cuts;

 private:
  void PowerOn() {
    sim::SounderOptions options = QuickSounder();
    each_.Configure(options);
    options.sampleCount = 100;
    options.depth_m = 1.5;
    options.streaming = false;
    accounts.push_back(std::make_unique<SentAccount>());
    device_ = std::make_unique<sim::VirtualEchosounder>(options, accounts.back().get());
  }
  size_t Discard(int64_t now_us) {
    uint8_t scrap[4'096];
    while (device_->Send(scrap, now_us) > 0) {
    }
    return 0;
  }

  const ModeCase& each_;
  std::unique_ptr<sim::VirtualEchosounder> device_;
  uint64_t sent_ = 0;
  uint64_t cutAt_ = UINT64_MAX;
  bool isCut_ = false;
  Cut cut_ = Cut::cable;
};

// The records of a text recording: messages as they came, without the position behind each.
std::vector<std::string_view> RecordsOf(std::string_view file) {
  std::vector<std::string_view> records;
  file.remove_prefix(file.find("\r\n") + 2);  // how it was recorded
  while (!file.empty()) {
    if (file.starts_with("#F ")) file.remove_prefix(file.find('\n') + 1);
    const size_t end = std::min(file.find("$GPGGA"), file.size());
    records.push_back(file.substr(0, end));
    file.remove_prefix(end);
    while (file.starts_with("$GPGGA") || file.starts_with("$GPRMC") || file.starts_with("\r\n")) {
      file.remove_prefix(file.find('\n') + 1);
    }
  }
  return records;
}

bool Holds(std::string_view record, const SentMessage& message) {
  return message.sent.whole && record.size() == message.sent.size &&
         sim::HashOf({reinterpret_cast<const uint8_t*>(record.data()), record.size()}) == message.sent.hash;
}

// Which sent message each record is. Lines repeat themselves, so behind a gap the place is the first from
// which several in a row stand there. A torn or foreign record is a failure.
std::vector<size_t> Recorded(std::string_view file, const std::vector<const SentMessage*>& sent) {
  constexpr size_t kInARow = 200;
  const std::vector<std::string_view> records = RecordsOf(file);
  std::vector<size_t> recorded;
  size_t next = 0;
  for (size_t i = 0; i < records.size(); ++i) {
    const auto inARow = [&](size_t from) {
      size_t count = 0;
      while (count < kInARow && i + count < records.size() && from + count < sent.size() &&
             Holds(records[i + count], *sent[from + count])) {
        ++count;
      }
      return count;
    };
    size_t place = next;
    size_t best = next < sent.size() && Holds(records[i], *sent[next]) ? kInARow : 0;
    for (size_t from = next; from < sent.size() && best < kInARow; ++from) {
      if (const size_t count = inARow(from); count > best) {
        best = count;
        place = from;
      }
    }
    if (best == 0) {
      ADD_FAILURE() << "no message that was sent: " << records[i].substr(0, 60);
      return recorded;
    }
    recorded.push_back(place);
    next = place + 1;
  }
  return recorded;
}

class ComeBack : public RunControlTest, public testing::WithParamInterface<ModeCase> {
 protected:
  ~ComeBack() override {
    StopRun(*state_);
    DetachSerialLines();
  }

  void Start() {
    state_->options.keepRunGoing = 1;
    state_->options.silence_s = 5;
    AttachPeer(kDeviceLine, &line_);
    StartRun(*state_);
    ASSERT_TRUE(Ui().boxes.empty());
    const uint64_t before = line_.Sent();
    Run(3);
    bytesOf3s_ = line_.Sent() - before;
  }

  void CutAndMend(uint64_t bytes, Cut cut, int away_s) {
    line_.CutBehind(bytes, cut);
    for (int i = 0; i < 600 && !line_.IsCut(); ++i) SleepMilliseconds(100);
    ASSERT_TRUE(line_.IsCut()) << "the run does not go on";
    Run(away_s);
    line_.Mend();
    const uint32_t begin = MillisecondClock();
    while (LoadShared(state_->linkAway) != 0 && MillisecondClock() - begin < 120'000) Run(1);
    EXPECT_EQ(LoadShared(state_->linkAway), 0);
    Run(2);
  }

  CutLine line_{GetParam()};
  uint64_t bytesOf3s_ = 0;
};

TEST_P(ComeBack, NoPingIsLostBesideThoseOfTheCuts) {
  Start();
  std::mt19937 random(7);
  const uint32_t runNumber = LoadShared(state_->runNumber);
  for (int i = 0; i < 12; ++i)
    CutAndMend(1 + random() % bytesOf3s_, kCuts[i % 4], 1 + static_cast<int>(random() % 40));
  EXPECT_EQ(LoadShared(state_->runNumber), runNumber) << "one run";
  EXPECT_TRUE(Ui().boxes.empty());
  StopRun(*state_);
  ExpectIdle();
  ASSERT_EQ(RecordFiles().size(), 1u);

  std::vector<const SentMessage*> sent;
  std::vector<size_t> powerOns;
  for (const auto& account : line_.accounts) {
    powerOns.push_back(sent.size());
    for (const SentMessage& message : account->messages) sent.push_back(&message);
  }
  const std::vector<size_t> recorded = Recorded(Content(RecordFiles()[0]), sent);
  EXPECT_GT(recorded.size(), 12u * 10u);
  size_t gaps = 0;
  for (size_t i = 1; i < recorded.size(); ++i) gaps += recorded[i] != recorded[i - 1] + 1 ? 1 : 0;
  EXPECT_LE(gaps, 12u) << "pings are missing where nothing was cut";
}

class StopWhileAway : public ComeBack {};

TEST_P(StopWhileAway, EndsTheRunAtOnce) {
  Start();
  for (const Cut cut : kCuts) {
    for (const int away_s : {1, 6, 9, 14, 25}) {
      line_.CutBehind(100, cut);
      for (int i = 0; i < 50 && !line_.IsCut(); ++i) SleepMilliseconds(100);
      Run(away_s);
      const uint32_t begin = MillisecondClock();
      StopRun(*state_);
      EXPECT_LE(MillisecondClock() - begin, 3'000u);
      ExpectIdle();
      line_.Mend();
      StartRun(*state_);
      EXPECT_TRUE(Ui().boxes.empty());
      ASSERT_NE(state_->acquisitionThread, Handle::null);
      Run(2);
    }
  }
}

std::vector<ModeCase> TextForms(bool echoOnly) {
  std::vector<ModeCase> cases;
  for (const ModeCase& each : AllModeCases()) {
    if (each.IsPlain() && !each.dual && !each.IsBinary() && (!echoOnly || each.row->code == 2))
      cases.push_back(each);
  }
  return cases;
}
const auto kNameOfCase = [](const testing::TestParamInfo<ModeCase>& row) { return row.param.Name("Mode"); };
INSTANTIATE_TEST_SUITE_P(Forms, ComeBack, testing::ValuesIn(TextForms(false)), kNameOfCase);
INSTANTIATE_TEST_SUITE_P(Families, StopWhileAway, testing::ValuesIn(TextForms(true)), kNameOfCase);

}  // namespace
}  // namespace tw::test
