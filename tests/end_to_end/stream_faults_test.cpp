// Damaged streams of every output mode, of every family, single and dual, on the virtual clock: each stream
// fault at places drawn by a seed, five hundred messages of the virtual echosounder through worker, rings and
// record files. In text, epochs and lines a fault costs its message and at most the next one; in device
// blocks it costs the messages that stand within the length that the damaged one tells. Every other message
// stands in its file byte for byte and has been on view value by value, and nothing else happens.
//
// The figures of all cells are printed at the end; docs/fault-tolerance.md has them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include "acquisition/output_mode.h"
#include "base/bytes.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/virtual/virtual_clock.h"
#include "simulator/virtual_echosounder.h"
#include "tests/acquisition/live_program.h"
#include "tests/end_to_end/pulse_watch.h"
#include "tests/end_to_end/received_pings.h"
#include "tests/sent_account.h"
#include "tests/simulator_peer.h"

namespace tw {
namespace {

using sim::DeviceFamily;
using sim::StreamFault;
using test::RecordedFile;
using test::RingWatch;
using test::Says;
using test::SentMessage;
using test::Shown;
using Form = test::RecordForm;
using test::kRepeat;

constexpr size_t kMessages = 500;
constexpr int32_t kLow_hz = 200'000;
constexpr int32_t kHigh_hz = 450'000;
constexpr size_t kMostLines = 1'000;  // that a message of another mode can be taken for
constexpr size_t kBlockHeader = 62;

struct Mode {
  friend void PrintTo(const Mode& mode, std::ostream* out) { *out << mode.name; }
  const char* name;
  DeviceFamily family;
  int32_t mode;
  Form form;
  Says says = Says::attitude;
  bool joint = false;  // a message holds both altitudes
  bool oneFile = false;
};

constexpr auto kFirst = DeviceFamily::first;
constexpr auto kSecond = DeviceFamily::second;
constexpr auto kThird = DeviceFamily::third;

constexpr Mode kFirstFamily[] = {
    {"FirstSimple", kFirst, 1, Form::line, Says::altitude},
    {"FirstText10", kFirst, 2, Form::text},
    {"FirstNmea", kFirst, 3, Form::epoch},
    {"FirstText12", kFirst, 4, Form::text},
    {"FirstDeso", kFirst, 6, Form::line, Says::altitude, false, true},
    {"FirstDualLines", kFirst, 7, Form::line, Says::temperature, true, true},
    {"FirstDfx", kFirst, 8, Form::line, Says::altitude, true, true},
    {"FirstBinary", kFirst, 100, Form::block},
    {"FirstCompanded", kFirst, 101, Form::block},
};

// Has no dual form.
constexpr Mode kFirstFamilyOld = {"FirstOld", kFirst, 9, Form::line, Says::altitude, true, true};

template <DeviceFamily family>
constexpr Mode kOtherFamilies[] = {
    {"Simple", family, 1, Form::line, Says::altitude},
    {"Text", family, 2, Form::text},
    {"Nmea", family, 3, Form::epoch},
    {"Text200", family, 4, Form::text},
    {"Text500", family, 5, Form::text},
    {"Text1000", family, 6, Form::text},
    {"Psa916", family, 7, Form::line, Says::altitude},
    {"AltiPlusTemp", family, 8, Form::line, Says::temperature},
    {"Dfx", family, 9, Form::line, Says::altitude},
    {"Old", family, 10, Form::line, Says::altitude},
    {"Binary", family, 100, Form::block},
    {"Companded", family, 101, Form::block},
};

constexpr struct {
  const char* name;
  StreamFault fault;
} kFaults[] = {
    {"flipped", StreamFault::flippedBytes}, {"lost", StreamFault::lostBytes},
    {"doubled", StreamFault::doubledBytes}, {"cut off", StreamFault::truncated},
    {"absurd", StreamFault::absurdCount},   {"no number", StreamFault::notANumber},
    {"time jump", StreamFault::timeJump},   {"other mode", StreamFault::otherMode},
};

// What became of a cell of the table, in messages.
struct Figures {
  size_t sent;
  size_t damaged;
  size_t received;
};

// Prints the rows of this program's run when all tests are over.
class Table : public testing::Environment {
 public:
  std::vector<std::pair<std::string, std::vector<Figures>>> rows;
  void TearDown() override {
    std::printf("\nsent/damaged/received\n| mode |");
    for (const auto& fault : kFaults) std::printf(" %s |", fault.name);
    std::printf("\n");
    for (const auto& [name, cells] : rows) {
      std::printf("| %s |", name.c_str());
      for (const Figures& cell : cells) std::printf(" %zu/%zu/%zu |", cell.sent, cell.damaged, cell.received);
      std::printf("\n");
    }
  }
};
Table* const table = static_cast<Table*>(testing::AddGlobalTestEnvironment(new Table));

class ListeningPeer final : public test::SimulatorPeer {
 public:
  using SimulatorPeer::SimulatorPeer;
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    const size_t count = SimulatorPeer::Send(out, now_us);
    bytes.append(reinterpret_cast<const char*>(out.data()), count);
    return count;
  }
  std::string bytes;
};

struct Case {
  friend void PrintTo(const Case& each, std::ostream* out) { *out << each.mode.name; }
  Mode mode;
  bool dual;
};

class StreamFaultCell {
 public:
  StreamFaultCell(const Case& each, StreamFault fault)
      : mode_(each.mode), dual_(each.dual), fault_(fault), device_(OptionsOf(each, fault), &account_) {}

  void Run();
  [[nodiscard]] Figures Judge();

 private:
  static sim::SounderOptions OptionsOf(const Case& each, StreamFault fault) {
    sim::SounderOptions options;
    options.seed =
        static_cast<uint64_t>(each.mode.mode) * 100 + (each.dual ? 50 : 0) + static_cast<uint64_t>(fault);
    options.family = each.mode.family;
    options.outputMode = each.mode.mode;
    options.dual = each.dual;
    options.baud = 12'000'000;
    options.delivery_us = 5'000;
    options.pingsPerSecond = 50;
    options.sampleCount = 100;
    options.depth_m = 0.9;  // within the samples
    options.streaming = true;
    options.faults.stream = {fault};
    options.faults.streamRate = 0.05;
    return options;
  }

  void Configure(AppState& state) const;
  void MarkOwed();
  void ExpectRecorded(size_t file);
  void ExpectShown(const std::vector<Shown>& seen, bool low) const;
  void ExpectSent(const RecordedFile& file) const;

  [[nodiscard]] std::string_view Bytes(const SentMessage& message) const {
    return std::string_view(peer_.bytes).substr(message.sent.offset, message.sent.size);
  }
  [[nodiscard]] bool IsLow(const SentMessage& message) const {
    return dual_ && !mode_.joint && message.sent.txFrequency_hz == kLow_hz;
  }
  [[nodiscard]] size_t FileOf(const SentMessage& message) const {
    return IsLow(message) && !mode_.oneFile ? 1 : 0;
  }
  [[nodiscard]] bool DiffersInSamplesOnly(const SentMessage& message) const;
  [[nodiscard]] uint64_t EndOfDamage(const SentMessage& message) const;
  [[nodiscard]] bool ShowsSamples(const Shown& shown, const SentMessage& message, bool low) const;
  [[nodiscard]] bool Shows(const Shown& shown, const SentMessage& message, bool low) const;
  [[nodiscard]] bool Holds(const RecordedFile& file, size_t record, const SentMessage& message) const;

  const Mode mode_;
  const bool dual_;
  const StreamFault fault_;
  test::SentAccount account_;
  sim::VirtualEchosounder device_;
  ListeningPeer peer_{device_};
  size_t judged_ = 0;  // messages; a few more come until the worker ends
  std::vector<bool> owed_;
  std::vector<Shown> seen_[2];
  RecordedFile files_[2];
};

void StreamFaultCell::Configure(AppState& state) const {
  globals.deviceFamily = static_cast<int32_t>(mode_.family);
  globals.dualMode = dual_ ? 1 : 0;
  state.settings.outputMode = mode_.mode;
  state.settings.samplingFrequency_hz = 25'000;
  state.settings.lowFrequency_hz = state.settings.virtualLowFrequency_hz = kLow_hz;
  state.settings.frequencyInUse_hz = state.settings.highFrequency_hz = kHigh_hz;
}

void StreamFaultCell::Run() {
  const VirtualClock clock(1'700'000'000'000);
  test::LiveProgram program(peer_);
  AppState& state = program.State();
  Configure(state);
  program.OpenFile(RecordChannel::a, L"a.log");
  program.OpenFile(RecordChannel::b, L"b.log");
  Signal(state.recordingEvent);
  program.StartWorker(AcceptedMode(static_cast<tw::DeviceFamily>(mode_.family), mode_.mode).reporting);
  RingWatch high(*state.ringA, mode_.form);
  RingWatch low(*state.ringB, mode_.form);
  while (account_.messages.size() < kMessages) {
    SleepMilliseconds(2);
    high.Look(program.IndexA());
    low.Look(program.IndexB());
  }
  EXPECT_EQ(WaitForThread(state.acquisitionThread, 0), ThreadWait::timedOut) << "the worker has ended";
  EXPECT_EQ(LoadShared(state.linkLost), 0);
  EXPECT_TRUE(IsRecordFileOpen(state, RecordChannel::a));
  EXPECT_TRUE(IsRecordFileOpen(state, RecordChannel::b));
  judged_ = account_.messages.size();
  SleepMilliseconds(100);  // the last of them arrives
  program.StopWorker();
  seen_[0] = std::move(high.seen);
  seen_[1] = std::move(low.seen);
  const wchar_t* const names[] = {L"a.log", L"b.log"};
  for (size_t file = 0; file < 2; ++file) {
    const std::string content = program.FileContent(names[file]);
    ASSERT_TRUE(content.starts_with("INFO\r\n"));
    const std::string_view pings = std::string_view(content).substr(6);
    if (mode_.form == Form::block) {
      ASSERT_NO_FATAL_FAILURE(ReadFrames(pings, files_[file]));
    } else {
      ASSERT_NO_FATAL_FAILURE(ReadTexts(pings, mode_.form, files_[file]));
    }
  }
}

// Where the bytes end that a damaged device block may cost: those of the length that it tells, if such a
// block can be.
uint64_t StreamFaultCell::EndOfDamage(const SentMessage& message) const {
  constexpr std::string_view kMagic = "TIDEWRITEC";
  constexpr uint64_t kLongest = 256'000;
  const uint64_t end = message.sent.offset + message.sent.size;
  const size_t magic = peer_.bytes.find(kMagic, message.sent.offset);
  if (magic >= end || magic + kMagic.size() + 4 > peer_.bytes.size()) return end;
  const auto* length = reinterpret_cast<const uint8_t*>(peer_.bytes.data()) + magic + kMagic.size();
  const uint64_t told = LoadLe<uint32_t>(length);
  return told > kLongest ? end : std::max(end, magic + told);
}

// Other samples move nothing: the ping is owed, and differs there only.
bool StreamFaultCell::DiffersInSamplesOnly(const SentMessage& message) const {
  return mode_.form == Form::block && fault_ == StreamFault::flippedBytes && !message.sent.intact &&
         message.sent.faultAt >= kBlockHeader;
}

// Which messages must have been received: the intact ones that do not stand within a damage.
void StreamFaultCell::MarkOwed() {
  uint64_t cleanFrom = 0;
  bool behindDamage = false;
  for (const SentMessage& message : std::span(account_.messages).first(judged_)) {
    const bool clean = mode_.form == Form::block ? message.sent.offset >= cleanFrom : !behindDamage;
    const bool readable = message.sent.intact || DiffersInSamplesOnly(message);
    owed_.push_back(clean && readable);
    behindDamage = !readable;
    // Counted even within another's: the reader may have seen through that one.
    if (!readable) cleanFrom = std::max(cleanFrom, EndOfDamage(message));
  }
}

bool StreamFaultCell::ShowsSamples(const Shown& shown, const SentMessage& message, bool low) const {
  if (mode_.form == Form::line || mode_.form == Form::epoch) {
    const size_t pulse =
        test::PulseOf(low && mode_.joint ? message.sent.altitudeLow_m : message.sent.altitude_m, 1'500);
    const auto first =
        std::find_if(shown.samples.begin(), shown.samples.end(), [](uint16_t sample) { return sample != 0; });
    return static_cast<size_t>(first - shown.samples.begin()) == pulse;
  }
  const uint16_t factor = mode_.mode == 2 ? 4 : 1;
  if (shown.samples.size() != message.samples.size() * kRepeat) return false;
  const size_t size = mode_.mode == 100 ? 2 : 1;
  for (size_t i = 0; i < shown.samples.size(); ++i) {
    const size_t at = kBlockHeader + i / kRepeat * size;
    const bool changed = DiffersInSamplesOnly(message) && at + size > message.sent.faultAt &&
                         at < message.sent.faultAt + message.sent.faultSize;
    if (!changed && shown.samples[i] != message.samples[i / kRepeat] * factor) return false;
  }
  return true;
}

bool StreamFaultCell::Shows(const Shown& shown, const SentMessage& message, bool low) const {
  const PingHeader& header = shown.header;
  const sim::SentPing& sent = message.sent;
  const bool pulse = mode_.form == Form::line || mode_.form == Form::epoch;
  const bool attitude = mode_.says == Says::attitude;
  return (pulse || header.ping == sent.number) &&
         header.altitude_m == (low && mode_.joint ? sent.altitudeLow_m : sent.altitude_m) &&
         header.temperature_c == (mode_.says == Says::altitude ? 0 : sent.temperature_c) &&
         header.pitch_deg == (attitude ? sent.pitch_deg : 450.0f) &&
         header.roll_deg == (attitude ? sent.roll_deg : 0.0f) && ShowsSamples(shown, message, low);
}

bool StreamFaultCell::Holds(const RecordedFile& file, size_t record, const SentMessage& message) const {
  if (mode_.form != Form::block) return file.messages[record] == Bytes(message);
  return Shows(file.frames[record], message, false);
}

// The file holds each message that is owed to it, in order. What it holds besides stems from damaged ones: no
// more of it than was damaged so far. (Lines have no numbers, so one may be taken for its like.)
void StreamFaultCell::ExpectRecorded(size_t file) {
  const RecordedFile& recorded = files_[file];
  size_t record = 0;
  size_t owed = 0;
  size_t doubtful = 0;
  for (size_t i = 0; i < judged_; ++i) {
    const SentMessage& message = account_.messages[i];
    // Damage can move a message into the other channel's file.
    if (!message.sent.intact) doubtful += fault_ == StreamFault::otherMode ? kMostLines : 2;
    if (FileOf(message) != file) continue;
    if (!owed_[i]) {
      ++doubtful;
      continue;
    }
    while (record < recorded.Size() && !Holds(recorded, record, message)) ++record;
    ASSERT_LT(record, recorded.Size()) << "not recorded: ping " << message.sent.number;
    ++record;
    ++owed;
    EXPECT_LE(record - owed, doubtful) << "more than was sent, up to ping " << message.sent.number;
  }
  EXPECT_LE(recorded.Size() - owed, doubtful + account_.messages.size() - judged_);
}

// Each message that is owed was on view. One that a damaged message follows at once may have been covered.
void StreamFaultCell::ExpectShown(const std::vector<Shown>& seen, bool low) const {
  size_t view = 0;
  for (size_t i = 0; i < judged_; ++i) {
    const SentMessage& message = account_.messages[i];
    const bool here = !dual_ || mode_.joint || IsLow(message) == low;
    if (!here || !owed_[i] || !account_.messages[i + 1].sent.intact) continue;
    while (view < seen.size() && !Shows(seen[view], message, low)) ++view;
    ASSERT_LT(view, seen.size()) << "not on view: ping " << message.sent.number;
    ++view;
  }
}

// Nothing is recorded that was not sent so, in that order.
void StreamFaultCell::ExpectSent(const RecordedFile& file) const {
  size_t from = 0;
  for (const std::string& message : file.messages) {
    const size_t at = peer_.bytes.find(message, from);
    ASSERT_NE(at, peer_.bytes.npos) << "recorded, but never sent: " << message;
    from = at + 1;
  }
}

Figures StreamFaultCell::Judge() {
  MarkOwed();
  for (size_t file = 0; file < 2; ++file) ExpectRecorded(file);
  // A line may be recorded behind one that was kept, and with a line end of the program's.
  if (mode_.form == Form::text || mode_.form == Form::epoch) {
    for (const RecordedFile& file : files_) ExpectSent(file);
  }
  ExpectShown(seen_[0], false);
  if (dual_) ExpectShown(seen_[1], true);
  Figures figures{account_.messages.size(), 0, files_[0].Size() + files_[1].Size()};
  for (const SentMessage& message : account_.messages) figures.damaged += message.sent.faulty ? 1 : 0;
  return figures;
}

class StreamFaults : public testing::TestWithParam<Case> {};

TEST_P(StreamFaults, CostNoMoreThanTheyMust) {
  const Case& each = GetParam();
  constexpr const char* kFamilyNames[] = {"third", "first", "second"};
  auto& row = table->rows.emplace_back();
  row.first = std::string(kFamilyNames[static_cast<size_t>(each.mode.family)]) + ", " +
              std::to_string(each.mode.mode) + (each.dual ? " dual" : "");
  for (const auto& fault : kFaults) {
    SCOPED_TRACE(fault.name);
    StreamFaultCell cell(each, fault.fault);
    cell.Run();
    row.second.push_back(cell.Judge());
    ASSERT_FALSE(HasFailure());
  }
}

std::vector<Case> AllCases() {
  std::vector<Case> cases;
  for (const Mode& mode : kFirstFamily) {
    cases.push_back({mode, false});
    cases.push_back({mode, true});
  }
  cases.push_back({kFirstFamilyOld, false});
  for (const Mode& mode : kOtherFamilies<kSecond>) cases.push_back({mode, false});
  for (const Mode& mode : kOtherFamilies<kThird>) cases.push_back({mode, false});
  return cases;
}

std::string NameOf(const testing::TestParamInfo<Case>& each) {
  const Mode& mode = each.param.mode;
  const char* family = mode.family == kFirst ? "" : mode.family == kSecond ? "Second" : "Third";
  return std::string(family) + mode.name + (each.param.dual ? "Dual" : "");
}

INSTANTIATE_TEST_SUITE_P(Modes, StreamFaults, testing::ValuesIn(AllCases()), NameOf);

}  // namespace
}  // namespace tw
