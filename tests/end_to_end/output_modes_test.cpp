// Every output mode of every family, single and dual: Start against the virtual echosounder and the virtual
// GPS receiver, messages through worker, rings and record files, Stop; first thousands of sound ones, then
// five hundred with each stream fault, at places drawn by a seed. In text, epochs and lines a fault costs its
// message and at most the next one; in device blocks it costs the messages that stand within the length that
// the damaged one tells. Every other message stands in its file byte for byte and has been on view value by
// value, and nothing else happens.
//
// The figures of all cells are printed at the end; docs/fault-tolerance.md has them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include "acquisition/record_file.h"
#include "app/window/commands.h"
#include "base/shared_value.h"
#include "display/panel.h"
#include "display/zoom.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "tests/app/run_control_fixture.h"
#include "tests/end_to_end/mode_case.h"
#include "tests/end_to_end/received_pings.h"
#include "tests/end_to_end/recorded_position.h"
#include "tests/sent_account.h"

namespace tw::test {
namespace {

using sim::StreamFault;

constexpr size_t kPings = 2'000;              // without a fault
constexpr size_t kMessages = 500;             // with one
constexpr double kBegin_s = 1'741'944'605.0;  // of the virtual clock
constexpr double kRadian = 57.29577951308232;
constexpr int32_t kLow_hz = 200'000;
constexpr size_t kMostLines = 1'000;  // that a message of another mode can be taken for
constexpr size_t kBlockHeader = 62;

constexpr struct {
  const char* name;
  StreamFault fault;
} kFaults[] = {
    {"none", StreamFault::none},
    {"flipped", StreamFault::flippedBytes},
    {"lost", StreamFault::lostBytes},
    {"doubled", StreamFault::doubledBytes},
    {"cut off", StreamFault::truncated},
    {"absurd", StreamFault::absurdCount},
    {"no number", StreamFault::notANumber},
    {"time jump", StreamFault::timeJump},
    {"other mode", StreamFault::otherMode},
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

class ListeningPeer final : public SimulatorPeer {
 public:
  using SimulatorPeer::SimulatorPeer;
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    const size_t count = SimulatorPeer::Send(out, now_us);
    bytes.append(reinterpret_cast<const char*>(out.data()), count);
    return count;
  }
  std::string bytes;
};

struct RecordedFile {
  std::vector<std::string> messages;  // as they came, in the modes that are recorded so
  std::vector<Shown> frames;
  [[nodiscard]] size_t Size() const { return messages.size() + frames.size(); }
};

class OutputModes : public RunControlTest, public testing::WithParamInterface<ModeCase> {
 protected:
  ~OutputModes() override { StopRun(*state_); }

  // A column of the table.
  void Start(StreamFault fault);
  void Receive();
  void Judge() {
    MarkOwed();
    for (size_t file = 0; file < each_.Files(); ++file) ExpectRecorded(file);
    // A line may be recorded behind one that was kept, and with a line end of the program's.
    if (!each_.IsBinary() && each_.TellsAttitude()) {
      for (const RecordedFile& file : files_) ExpectSent(file);
    }
    ExpectShown(false);
    if (each_.dual) ExpectShown(true);
  }

  void ReadFile(std::string_view file, RecordedFile& out);
  void ReadFrame(std::string_view& file, RecordedFile& out) {
    ASSERT_GE(file.size(), 88u);
    ASSERT_TRUE(file.starts_with(std::string_view("TR57\x58\0\0\0", 8)));
    EXPECT_EQ(file.substr(28, 4), std::string_view("\0\0\0\0", 4)) << "reserved";
    EXPECT_EQ(file.substr(44, 4), std::string_view("\0\0\0\0", 4)) << "reserved";
    const auto* frame = reinterpret_cast<const uint8_t*>(file.data());
    const PingHeader header = LoadPingHeader(frame);
    const size_t size = 88 + 2 * size_t{header.sampleCount};
    ASSERT_GE(file.size(), size) << "a torn frame";
    out.frames.push_back({header, SamplesAt(frame + 88, header.sampleCount)});
    file.remove_prefix(size);
  }
  void ReadText(std::string_view& file, RecordedFile& out);
  // Threshold line and wheel go by what the device has told.
  void ExpectViewOfTheHighChannel() const {
    const PanelPlace place = each_.dual ? PanelPlace::upper : PanelPlace::single;
    const PanelSource view = DescribePanel(*state_, place);
    EXPECT_EQ(view.threshold_percent, 10);
    EXPECT_EQ(view.scale.range_mm, each_.range_mm);
    const int32_t deviceRange_mm = DeviceRangeOf(ShownSettings(*state_), place);
    EXPECT_EQ(ZoomedRange(view.scale.range_mm, deviceRange_mm, WheelTurn::back), each_.range_mm);
  }
  // Which messages must have been received: the intact ones that do not stand within a damage.
  void MarkOwed() {
    owed_.clear();
    uint64_t cleanFrom = 0;
    bool behindDamage = false;
    for (const SentMessage& message : std::span(account_.messages).first(judged_)) {
      const bool clean = each_.IsBinary() ? message.sent.offset >= cleanFrom : !behindDamage;
      const bool readable = message.sent.intact || DiffersInSamplesOnly(message);
      owed_.push_back(clean && readable);
      behindDamage = !readable;
      // Counted even within another's: the reader may have seen through that one.
      if (!readable) cleanFrom = std::max(cleanFrom, EndOfDamage(message));
    }
  }
  void ExpectRecorded(size_t file);
  void ExpectShown(bool low);
  // A place where the receiver has been by then.
  void ExpectPosition(const PingHeader& ping) {
    if (ping.gpsLatitude_rad == 0 && ping.gpsLongitude_rad == 0) return;  // before the first fix
    ++positions_;
    EXPECT_EQ(ping.gpsValid, 1);
    EXPECT_TRUE(HasBeenAt(*gps_, static_cast<double>(ping.gpsLatitude_rad) * kRadian,
                          static_cast<double>(ping.gpsLongitude_rad) * kRadian, 1e-5));
    EXPECT_LE(static_cast<int64_t>(ping.gpsTime_s), gps_->Epochs().Entries().back().utc_centi / 100);
  }
  // Nothing is recorded that was not sent so, in that order.
  void ExpectSent(const RecordedFile& file) const {
    size_t from = 0;
    for (const std::string& message : file.messages) {
      const size_t at = Bytes().find(message, from);
      ASSERT_NE(at, Bytes().npos) << "recorded, but never sent: " << message;
      from = at + 1;
    }
  }

  [[nodiscard]] bool IsSound() const { return fault_ == StreamFault::none; }
  [[nodiscard]] bool IsLow(const SentMessage& message) const {
    return each_.IsPair() && message.sent.txFrequency_hz == kLow_hz;
  }
  [[nodiscard]] size_t FileOf(const SentMessage& message) const {
    return each_.Files() == 2 && IsLow(message) ? 1 : 0;
  }
  [[nodiscard]] const std::string& Bytes() const {
    return static_cast<const ListeningPeer&>(*sounderPeer_).bytes;
  }
  // Other samples move nothing: the ping is owed, and differs there only.
  [[nodiscard]] bool DiffersInSamplesOnly(const SentMessage& message) const {
    return each_.IsBinary() && fault_ == StreamFault::flippedBytes && !message.sent.intact &&
           message.sent.faultAt >= kBlockHeader;
  }
  // Where the bytes end that a damaged device block may cost: those of the length that it tells, if such a
  // block can be.
  [[nodiscard]] uint64_t EndOfDamage(const SentMessage& message) const {
    constexpr std::string_view kMagic = "TIDEWRITEC";
    constexpr uint64_t kLongest = 256'000;
    const uint64_t end = message.sent.offset + message.sent.size;
    const size_t magic = Bytes().find(kMagic, message.sent.offset);
    if (magic >= end || magic + kMagic.size() + 4 > Bytes().size()) return end;
    const auto* length = reinterpret_cast<const uint8_t*>(Bytes().data()) + magic + kMagic.size();
    const uint64_t told = LoadLe<uint32_t>(length);
    return told > kLongest ? end : std::max(end, magic + told);
  }
  [[nodiscard]] bool ShowsPulse(const Shown& shown, float altitude_m) const {
    const std::vector<uint16_t>& samples = shown.samples;
    // 10 us a sample, at 1,500 m/s.
    const auto pulse = static_cast<size_t>(static_cast<double>(altitude_m) * 2 / 1'500.0 / 0.00001);
    const auto first = std::find_if(samples.begin(), samples.end(), [](uint16_t each) { return each != 0; });
    return static_cast<size_t>(first - samples.begin()) == pulse && samples[pulse] == 921 &&
           samples[pulse + 4] == 3685 && samples[pulse + 9] == 921 && samples[pulse + 10] == 0;
  }
  [[nodiscard]] bool ShowsSamples(const Shown& shown, const SentMessage& message) const;
  [[nodiscard]] bool Shows(const Shown& shown, const SentMessage& message, bool low) const;
  [[nodiscard]] bool Holds(const RecordedFile& file, size_t record, const SentMessage& message) const {
    if (each_.IsBinary()) return Shows(file.frames[record], message, false);
    return file.messages[record] == std::string_view(Bytes()).substr(message.sent.offset, message.sent.size);
  }

  const ModeCase& each_ = GetParam();
  StreamFault fault_ = StreamFault::none;
  SentAccount account_;
  size_t judged_ = 0;  // messages; a few more come until the worker ends
  std::vector<bool> owed_;
  std::vector<Shown> seen_[2];
  RecordedFile files_[2];
  size_t positions_ = 0;  // pings and records with one
};

void OutputModes::Start(StreamFault fault) {
  fault_ = fault;
  account_ = {};
  sim::SounderOptions options = QuickSounder();
  each_.Configure(options);
  options.delivery_us = IsSound() ? 1'000 : 5'000;
  if (!IsSound()) {
    options.seed =
        static_cast<uint64_t>(each_.row->code) * 100 + (each_.dual ? 50 : 0) + static_cast<uint64_t>(fault);
    options.pingsPerSecond = 50;
    options.sampleCount = 100;
    options.depth_m = 0.9;  // within the samples
    options.faults.stream = {fault};
    options.faults.streamRate = 0.05;
  }
  sounder_ = std::make_unique<sim::VirtualEchosounder>(options, &account_);
  sounderPeer_ = std::make_unique<ListeningPeer>(*sounder_);
  AttachPeer(kDeviceLine, sounderPeer_.get());
  ConnectGps();
  Ui().Choose(ID_GPS_PORT, IsSound() ? L"COM6" : L"N/A");
  StartRun(*state_);
  ASSERT_TRUE(Ui().boxes.empty()) << "a box was shown at Start";
  EXPECT_EQ(LoadShared(globals.deviceFamily), static_cast<int32_t>(each_.family));
  EXPECT_EQ(LoadShared(globals.dualMode), each_.dual ? 1 : 0);
  EXPECT_EQ(state_->settings.outputMode, each_.row->code);
  EXPECT_EQ(state_->echogramEnabled, each_.IsPulse() ? 0 : 1);
  if (!each_.IsPulse()) ExpectViewOfTheHighChannel();
}

void OutputModes::Receive() {
  const size_t repeat = each_.IsPulse() ? 0 : each_.IsBinary() ? 1 : kRepeat;
  RingWatch high(*state_->ringA, state_->ringIndexA, state_->ringLockA, repeat);
  RingWatch low(*state_->ringB, state_->ringIndexB, state_->ringLockB, repeat);
  // One mode has a longer run.
  const size_t pings = each_.IsFirstFamily() && each_.row->code == 4 && !each_.dual ? 5 * kPings : kPings;
  const size_t wanted = IsSound() ? pings * (each_.IsPair() ? 2 : 1) : kMessages;
  while (account_.messages.size() < wanted) {
    SleepMilliseconds(IsSound() ? 20 : 4);
    high.Look();
    low.Look();
  }
  EXPECT_EQ(WaitForThread(state_->acquisitionThread, 0), ThreadWait::timedOut) << "the worker has ended";
  EXPECT_EQ(LoadShared(state_->linkLost), 0);
  EXPECT_TRUE(IsRecordFileOpen(*state_, RecordChannel::a));
  EXPECT_EQ(IsRecordFileOpen(*state_, RecordChannel::b), each_.Files() == 2);
  judged_ = account_.messages.size();
  for (int i = 0; i < 50; ++i) {  // the last of them arrive
    SleepMilliseconds(2);
    high.Look();
    low.Look();
  }
  StopRun(*state_);
  ExpectIdle();
  seen_[0] = std::move(high.seen);
  seen_[1] = std::move(low.seen);
  std::vector<std::string> names = RecordFiles();
  ASSERT_EQ(names.size(), each_.Files());
  // "..._450kHz_..." and "..._200kHz_...": the low frequency's name comes first.
  std::reverse(names.begin(), names.end());
  for (size_t file = 0; file < names.size(); ++file) {
    const std::string content = Content(names[file]);
    std::filesystem::remove(records_ / names[file]);
    ASSERT_NO_FATAL_FAILURE(ReadFile(content, files_[file]));
  }
}

// A torn or foreign part is a fatal failure.
void OutputModes::ReadFile(std::string_view file, RecordedFile& out) {
  out = {};
  positions_ = 0;
  ASSERT_TRUE(file.starts_with("INFO:"));
  while (file.starts_with("INFO:")) file.remove_prefix(file.find("\r\n") + 2);
  while (!file.empty()) {
    if (each_.IsBinary()) {
      ASSERT_NO_FATAL_FAILURE(ReadFrame(file, out));
    } else {
      ASSERT_NO_FATAL_FAILURE(ReadText(file, out));
    }
  }
  if (IsSound() && !each_.IsBinary()) {
    EXPECT_GT(positions_, out.Size() * 9 / 10);
  }
}

// A message as it came, in NMEA behind a frequency line; behind it the position, and in echo text an empty
// line.
void OutputModes::ReadText(std::string_view& file, RecordedFile& out) {
  if (each_.IsEpoch()) {
    const DeviceSettings& settings = state_->appliedSettings;
    const int32_t set_hz = !each_.dual          ? settings.frequencyInUse_hz
                           : &out == &files_[0] ? settings.highFrequency_hz
                                                : settings.lowFrequency_hz;
    const std::string line = "#F " + std::to_string(set_hz) + " Hz\r\n";
    ASSERT_TRUE(file.starts_with(line)) << file.substr(0, 80);
    file.remove_prefix(line.size());
  }
  const size_t end = file.find("$GPGGA,");
  ASSERT_NE(end, file.npos) << file.substr(0, 100);
  out.messages.emplace_back(file.substr(0, end));
  file.remove_prefix(end);
  ASSERT_NO_FATAL_FAILURE(TakePosition(file, *gps_, positions_));
  if (each_.IsPulse()) return;
  ASSERT_TRUE(file.starts_with("\r\n\r\n"));
  file.remove_prefix(4);
}

bool OutputModes::ShowsSamples(const Shown& shown, const SentMessage& message) const {
  const uint16_t factor = each_.row->code == 2 ? 4 : 1;
  if (shown.samples.size() != message.samples.size() * kRepeat) return false;
  const size_t size = each_.row->code == 100 ? 2 : 1;
  for (size_t i = 0; i < shown.samples.size(); ++i) {
    const size_t at = kBlockHeader + i / kRepeat * size;
    const bool changed = DiffersInSamplesOnly(message) && at + size > message.sent.faultAt &&
                         at < message.sent.faultAt + message.sent.faultSize;
    if (!changed && shown.samples[i] != message.samples[i / kRepeat] * factor) return false;
  }
  return true;
}

bool OutputModes::Shows(const Shown& shown, const SentMessage& message, bool low) const {
  const PingHeader& header = shown.header;
  const sim::SentPing& sent = message.sent;
  const float altitude_m = low && each_.IsJoint() ? sent.altitudeLow_m : sent.altitude_m;
  const bool attitude = each_.TellsAttitude();
  // This computer's time. A block takes some of the time between two pings to come in.
  const double late_s = header.timeOfWork_s - kBegin_s - static_cast<double>(sent.time_us) / 1e6;
  const bool same = std::abs(late_s) < 1.2 && header.altitude_m == altitude_m &&
                    header.temperature_c == (each_.TellsTemperature() ? sent.temperature_c : 0) &&
                    header.pitch_deg == (attitude ? sent.pitch_deg : 450.0f) &&
                    header.roll_deg == (attitude ? sent.roll_deg : 0.0f);
  if (each_.IsPulse()) {
    // Such a mode numbers its pings by its messages, through all runs.
    const auto number = static_cast<size_t>(&message - account_.messages.data()) + 1;
    return same && (!IsSound() || header.ping == number) && header.samplingFrequency_hz == 100'000 &&
           header.sampleCount == 0 && ShowsPulse(shown, altitude_m);
  }
  const bool binary = each_.IsBinary();
  return same && header.ping == sent.number && header.deviceSeconds == (binary ? sent.deviceTime_s : 0) &&
         header.deviceMilliseconds == (binary ? sent.deviceTime_ms : 0) &&
         header.samplingFrequency_hz == (binary ? 100'000u : 25'000u) &&
         header.sampleCount == message.samples.size() * (binary ? kRepeat : 1) &&
         header.range_m == static_cast<float>(each_.range_mm) / 1'000.0f &&
         header.txFrequency_hz == sent.txFrequency_hz && ShowsSamples(shown, message);
}

// The file holds each message that is owed to it, in order. What it holds besides stems from damaged ones: no
// more of it than was damaged so far. (Lines have no numbers, so one may be taken for its like.)
void OutputModes::ExpectRecorded(size_t file) {
  const RecordedFile& recorded = files_[file];
  if (each_.IsBinary()) positions_ = 0;
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
    if (each_.IsBinary()) ExpectPosition(recorded.frames[record].header);
    ++record;
    ++owed;
    EXPECT_LE(record - owed, doubtful) << "more than was sent, up to ping " << message.sent.number;
  }
  EXPECT_LE(recorded.Size() - owed, doubtful + account_.messages.size() - judged_);
  if (IsSound() && each_.IsBinary()) {
    EXPECT_GT(positions_, owed * 9 / 10);
  }
}

// Each message that is owed was on view, and of a sound stream nothing else. One that a damaged message
// follows at once may have been covered.
void OutputModes::ExpectShown(bool low) {
  const std::vector<Shown>& seen = seen_[low ? 1 : 0];
  positions_ = 0;
  size_t view = 0;
  for (size_t i = 0; i < judged_; ++i) {
    const SentMessage& message = account_.messages[i];
    const bool here = !each_.IsPair() || IsLow(message) == low;
    const bool followed = i + 1 < account_.messages.size() && !account_.messages[i + 1].sent.intact;
    if (!here || !owed_[i] || followed) continue;
    while (view < seen.size() && !IsSound() && !Shows(seen[view], message, low)) ++view;
    ASSERT_TRUE(view < seen.size() && Shows(seen[view], message, low))
        << "not on view: ping " << message.sent.number;
    if (IsSound()) {
      EXPECT_GT(seen[view].header.altitude_m, 3.0f);
    }
    ExpectPosition(seen[view++].header);
  }
  if (!IsSound()) return;
  EXPECT_GE(view + 1, kPings);
  EXPECT_LE(seen.size() - view, account_.messages.size() - judged_);
  EXPECT_GT(positions_, view * 9 / 10);
}

TEST_P(OutputModes, CarryEveryPingAndAFaultCostsNoMoreThanItMust) {
  std::vector<Figures> cells;
  for (const auto& column : kFaults) {
    SCOPED_TRACE(column.name);
    ASSERT_NO_FATAL_FAILURE(Start(column.fault));
    ASSERT_NO_FATAL_FAILURE(Receive());
    ASSERT_NO_FATAL_FAILURE(Judge());
    ASSERT_FALSE(HasFailure());
    if (!each_.IsPlain()) return;
    Figures cell{account_.messages.size(), 0, files_[0].Size() + files_[1].Size()};
    for (const SentMessage& message : account_.messages) cell.damaged += message.sent.faulty ? 1 : 0;
    cells.push_back(cell);
  }
  table->rows.emplace_back(each_.Name(", "), std::move(cells));
}

INSTANTIATE_TEST_SUITE_P(Modes, OutputModes, testing::ValuesIn(AllModeCases()),
                         [](const auto& each) { return each.param.Name(); });

}  // namespace
}  // namespace tw::test
