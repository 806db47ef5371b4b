// A run whose link is cut, with the option to go on: what stands in its record files against what the device
// sent. With TW_FULL set each form is cut a thousand times.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>

#include "acquisition/link_return.h"
#include "app/settings/family_controls.h"
#include "app/window/commands.h"
#include "base/shared_value.h"
#include "display/panel.h"
#include "platform/clock.h"
#include "platform/virtual/faults.h"
#include "platform/virtual/file_sink.h"
#include "platform/virtual/virtual_clock.h"
#include "tests/app/run_control_fixture.h"
#include "tests/end_to_end/cut_line.h"
#include "tests/end_to_end/mode_case.h"
#include "tests/end_to_end/received_pings.h"

namespace tw::test {
namespace {

constexpr int32_t kLow_hz = 200'000;

struct Record {
  std::string bytes;
  int64_t time_us;
};

// Each record is one write.
class Records final : public FileSink {
 public:
  void Written(std::wstring_view path, uint64_t offset, std::span<const uint8_t> bytes) override {
    const std::string_view record(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::vector<Record>& records = files[std::wstring(path)];
    if (offset != 0 && !record.starts_with("INFO:"))
      records.push_back({std::string(record), VirtualNow_us()});
  }
  std::map<std::wstring, std::vector<Record>> files;
};

class ComeBack : public RunControlTest, public testing::WithParamInterface<ModeCase> {
 protected:
  ComeBack() { SinkFiles(folder_.wstring().c_str(), &records_); }
  ~ComeBack() override {
    StopRun(*state_);
    DetachSerialLines();
    SinkFiles(nullptr, nullptr);
  }

  void SetUp() override {
    state_->options.keepRunGoing = 1;
    state_->options.silence_s = 5;
    AttachPeer(kDeviceLine, &line_);
    ConnectGps();
    StartRun(*state_);
    ASSERT_TRUE(Ui().boxes.empty());
    const uint64_t before = line_.Sent();
    Run(3);
    bytesOf3s_ = line_.Sent() - before;
    runNumber_ = LoadShared(state_->runNumber);
  }

  void AwaitCut() {
    for (int i = 0; i < 1'200 && !line_.IsCut(); ++i) SleepMilliseconds(100);
    ASSERT_TRUE(line_.IsCut()) << "the run does not go on";
  }
  void AwaitReturn() {
    const uint32_t begin = MillisecondClock();
    while (!IsBack() && MillisecondClock() - begin < 180'000) Run(1);
    ASSERT_TRUE(IsBack());
  }
  [[nodiscard]] bool IsBack() const { return LoadShared(state_->linkAway) == 0; }

  void CutAndMend(uint64_t bytes, Cut cut, int away_s) {
    line_.CutBehind(bytes, cut);
    AwaitCut();
    Run(away_s);
    SleepMilliseconds(++cuts_ * 37 % 200);  // it may end in mid-message, too
    line_.Mend();
  }

  // The run has gone on in its own files; then they end, and hold what they must.
  void EndAndJudge() {
    EXPECT_EQ(LoadShared(state_->runNumber), runNumber_) << "one run";
    EXPECT_TRUE(Ui().boxes.empty());
    line_.CutBehind(1, Cut::cable);
    AwaitCut();
    Run(1);
    StopRun(*state_);
    ExpectIdle();
    ASSERT_EQ(records_.files.size(), GetParam().Files());
    size_t file = 0;  // "..._200kHz_..." comes before "..._450kHz_..."
    for (const auto& [path, records] : records_.files)
      Judge(records, records_.files.size() == 2 && file++ == 0);
  }

  void Judge(const std::vector<Record>& records, bool low);
  [[nodiscard]] const sim::SentPing& Sent(size_t message) const {
    return line_.account.messages[message].sent;
  }
  [[nodiscard]] std::vector<size_t> MessagesOfFile(bool low) const;

  Records records_;
  CutLine line_{GetParam()};
  uint64_t bytesOf3s_ = 0;
  uint32_t cuts_ = 0;
  uint32_t runNumber_ = 0;
};

std::vector<size_t> ComeBack::MessagesOfFile(bool low) const {
  std::vector<size_t> chosen;
  for (size_t i = 0; i < line_.account.messages.size(); ++i) {
    const bool isLow = GetParam().IsPair() && line_.account.messages[i].sent.txFrequency_hz == kLow_hz;
    if (GetParam().Files() == 1 || isLow == low) chosen.push_back(i);
  }
  return chosen;
}

// Every record is a message that was sent whole, none twice, in their order, and every message that was owed
// is there. Lines repeat themselves, so a record's time counts too: all are as late as the first one.
void ComeBack::Judge(const std::vector<Record>& records, bool low) {
  // Lines: less than the shortest dialogue between two pings. Echoes do not repeat themselves, and the first
  // of a stream can wait while its start is still told.
  const int64_t between_us = GetParam().IsPulse() ? 15'000 : 60'000;
  const std::vector<size_t> sent = MessagesOfFile(low);
  ASSERT_FALSE(records.empty() || sent.empty());
  const int64_t late_us = records[0].time_us - Sent(sent[0]).time_us;
  const std::vector<CutLine::Turn>& turns = line_.turns;
  size_t next = 0;
  size_t turn = 0;
  bool owed = false;
  const auto takeTurns = [&] {
    for (; turn < turns.size() && turns[turn].message <= sent[next]; ++turn) owed = turns[turn].owed;
  };
  const auto passOver = [&](const Record* record) {
    for (; next < sent.size(); ++next) {
      takeTurns();
      if (record != nullptr && Holds(record->bytes, line_.account.messages[sent[next]]) &&
          std::abs(record->time_us - Sent(sent[next]).time_us - late_us) < between_us) {
        return;
      }
      ASSERT_FALSE(owed) << "missing: message " << sent[next] << " at " << Sent(sent[next]).time_us << " us";
    }
  };
  for (const Record& record : records) {
    ASSERT_NO_FATAL_FAILURE(passOver(&record)) << "or foreign: a record at " << record.time_us << " us";
    ASSERT_LT(next, sent.size()) << "no message that was sent, or one again, at " << record.time_us << " us";
    // Also of a stream that was taken up without a command; of a line that was cut the last byte may be
    // missing.
    owed = turn == 0 || turns[turn - 1].owed || turns[turn - 1].message != sent[next];
    ++next;
  }
  passOver(nullptr);
  EXPECT_GT(records.size(), turns.size() * 3);
}

TEST_P(ComeBack, NoPingIsLostBesideThoseOfTheCuts) {
  std::mt19937 random(7);
  const int cuts = std::getenv("TW_FULL") != nullptr ? 1'000 : 12;
  for (int i = 0; i < cuts; ++i) {
    // A cable that is mended within a ping interval can join two halves of lines that tell nobody; one that
    // is mended before the link counts as lost must not.
    const Cut cut = kCuts[i % 4];
    const auto away_s = static_cast<int>(cut == Cut::cable ? 1 + random() % 12 : random() % 40);
    ASSERT_NO_FATAL_FAILURE(CutAndMend(1 + random() % bytesOf3s_, cut, away_s));
    if (i % 3 == 2) continue;  // cut again at once, perhaps in the midst of the come-back
    ASSERT_NO_FATAL_FAILURE(AwaitReturn());
    Run(2);
  }
  ASSERT_NO_FATAL_FAILURE(AwaitReturn());
  Run(2);
  EndAndJudge();
}

// Those of one form of each family, and of a dual run.
class EachKind : public ComeBack {};

TEST_P(EachKind, ACutAtEachCommandOfTheComeBack) {
  int command = 1;
  for (bool reached = true; reached; ++command) {
    ASSERT_NO_FATAL_FAILURE(CutAndMend(1, Cut::plugPower, 3));
    line_.CutAtCommand(command, kCuts[command % 4]);
    for (int i = 0; i < 120 && !line_.IsCut() && !(IsBack() && line_.Commands() > 0); ++i) Run(1);
    reached = line_.IsCut();
    Run(1);
    line_.Mend();
    ASSERT_NO_FATAL_FAILURE(AwaitReturn());
    Run(2);
  }
  EXPECT_GT(command, 15);
  EndAndJudge();
}

TEST_P(EachKind, StopInEachStepEndsTheRunAtOnce) {
  int command = 1;
  for (bool reached = true; reached; ++command) {
    ASSERT_NO_FATAL_FAILURE(CutAndMend(100, kCuts[command % 4], command % 30));
    for (int i = 0; i < 6'000 && line_.Commands() < command && !IsBack(); ++i) SleepMilliseconds(10);
    reached = line_.Commands() >= command || kCuts[command % 4] != Cut::plugPower;
    const uint32_t begin = MillisecondClock();
    StopRun(*state_);
    EXPECT_LE(MillisecondClock() - begin, 3'000u);
    ExpectIdle();
    SleepMilliseconds(100);  // what the device still says
    StartRun(*state_);
    ASSERT_TRUE(Ui().boxes.empty());
    ASSERT_NE(state_->acquisitionThread, Handle::null);
    Run(2);
  }
  EXPECT_GT(command, 15);
}

// What answers is not the run's device, or not well enough: told, tried on, and the run goes on with its own.
TEST_P(EachKind, WaitsForItsOwnDeviceAsItWas) {
  const sim::SounderOptions own = line_.options;
  const struct {
    const char* what;
    const char* identity;
    int32_t baud, mode;
    bool mute, streaming;
    AwayFor away = AwayFor::nothing;
    const wchar_t* told = L"";
  } rows[] = {
      {"another device", "4711", 921'600, 2, false, false, AwayFor::otherDevice, L"another device answers"},
      {"it tells nothing", nullptr, 921'600, 2, true, false, AwayFor::answer, L"the device does not answer"},
      {"at its own speed", nullptr, 115'200, 2, false, false},
      {"at its own speed, streaming", nullptr, 115'200, 2, false, true},
      {"streaming in another mode", nullptr, 921'600, 3, false, true},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    if (row.identity != nullptr) line_.options.identity = row.identity;
    if (row.mute) line_.options.faults.mute = {"#iden", "#rangeh", "#info"};
    line_.options.baud = row.baud;
    line_.options.outputMode = row.mode;
    line_.options.streaming = row.streaming;
    ASSERT_NO_FATAL_FAILURE(CutAndMend(1, Cut::plugPower, 3));
    if (row.away != AwayFor::nothing) {
      for (int i = 0; i < 100 && LoadShared(state_->linkAway) != static_cast<int32_t>(row.away); ++i) Run(1);
      Run(1);
      EXPECT_NE(Ui().status[0].find(row.told), std::wstring::npos);
      line_.options = own;
      line_.PowerOn();
    }
    ASSERT_NO_FATAL_FAILURE(AwaitReturn());
    line_.options = own;
    EXPECT_EQ(line_.Device().LineSpeed(), 921'600);
    Run(3);
    EXPECT_EQ(Ui().status[0].find(L"lost"), std::wstring::npos);
  }
  EndAndJudge();
}

TEST_P(EachKind, TheOperatorGoesOnMeanwhile) {
  line_.CutBehind(1, Cut::plug);
  AwaitCut();
  Ui().Choose(ID_RANGE, L"10");
  TakeSettingsChoice(*state_, ID_RANGE);
  Run(5);
  EXPECT_TRUE(Ui().boxes.empty()) << "a choice waits until the device is back";
  EXPECT_EQ(&ShownSettings(*state_), &state_->appliedSettings) << "and is not drawn by before";
  EXPECT_TRUE(Ui().status[0].ends_with(L" s, the port is not there")) << "the other ports were there before";
  SetSerialLineList({L"COM11", L"COM6", L"COM9"});
  HandleTimer(*state_, ID_TIMER_PORTS);
  Run(1);
  EXPECT_TRUE(Ui().status[0].ends_with(L" s, new: COM9 COM11, the port is not there"));
  ApplySettings(*state_);
  ExpectErrorBox(L"Echosounder is not connected");
  line_.Mend();
  SetSerialLineList({L"COM11", L"COM5", L"COM6", L"COM9"});
  HandleTimer(*state_, ID_TIMER_PORTS);
  EXPECT_EQ(Ui().controls[ID_DEVICE_PORT].text, L"COM5") << "the next start takes the same port";
  ASSERT_NO_FATAL_FAILURE(AwaitReturn());
  EXPECT_EQ(LoadShared(state_->runNumber), runNumber_);
  Run(3);
  const DeviceSettings& now = state_->appliedSettings;
  EXPECT_EQ(UsesLowChannel(now, FamilyInUse()) ? now.rangeLow_mm : now.rangeHigh_mm, 10'000);
  StopRun(*state_);
  ExpectIdle();
}

TEST_P(EachKind, AWorkerThatIsLateDisturbsNoOtherRun) {
  line_.CutBehind(1, Cut::plug);
  AwaitCut();
  line_.opening_ms = 60'000;
  Run(5);
  StopRun(*state_);
  line_.opening_ms = 0;
  line_.Mend();
  StartRun(*state_);
  for (int i = 0; i < 70; ++i) {
    Run(1);
    ASSERT_TRUE(IsBack()) << i;
  }
  EXPECT_TRUE(Ui().boxes.empty());
}

TEST_P(EachKind, ACutBehindTheFirstPingIsNoticedAsSoonAsAnother) {
  ASSERT_NO_FATAL_FAILURE(CutAndMend(1, Cut::plug, 60));
  while (!IsBack()) SleepMilliseconds(1);
  line_.CutBehind(1, Cut::cable);
  Run(12);
  EXPECT_FALSE(IsBack());
}

// Drivers whose reads of an adapter that is gone end with nothing, as those of a silent device do.
TEST_P(EachKind, ADeadHandleIsNoSilence) {
  SilenceLine(kDeviceLine);
  Run(2);
  EXPECT_TRUE(IsBack());
  InjectFault({.point = FaultPoint::askLine, .subject = kDeviceLine});
  Run(1);
  EXPECT_EQ(LoadShared(state_->linkAway), static_cast<int32_t>(AwayFor::port));
  RestoreLine(kDeviceLine);
  ASSERT_NO_FATAL_FAILURE(AwaitReturn());
  EXPECT_EQ(LoadShared(state_->runNumber), runNumber_);
}

// A long wait is no dead line to a device that pings seldom.
TEST_P(EachKind, SeldomPingsAfterAMinuteAway) {
  line_.options.pingsPerSecond = 1;
  ASSERT_NO_FATAL_FAILURE(CutAndMend(1, Cut::power, 3));
  ASSERT_NO_FATAL_FAILURE(AwaitReturn());
  Run(20);
  for (const Cut cut : kCuts) {
    ASSERT_NO_FATAL_FAILURE(CutAndMend(1, cut, 90));
    ASSERT_NO_FATAL_FAILURE(AwaitReturn());
    Run(20);
  }
  EndAndJudge();
}

std::vector<ModeCase> Forms(bool kinds) {
  std::vector<ModeCase> cases;
  for (const ModeCase& each : AllModeCases()) {
    if (each.IsPlain() && (!kinds || each.row->code == 2)) cases.push_back(each);
  }
  return cases;
}
const auto kNameOfCase = [](const testing::TestParamInfo<ModeCase>& row) { return row.param.Name(); };
INSTANTIATE_TEST_SUITE_P(Forms, ComeBack, testing::ValuesIn(Forms(false)), kNameOfCase);
INSTANTIATE_TEST_SUITE_P(Kinds, EachKind, testing::ValuesIn(Forms(true)), kNameOfCase);

}  // namespace
}  // namespace tw::test
