// Damaged streams of the modes with samples, on the virtual clock: two thousand messages of the virtual
// echosounder, one in twenty of them hit by a fault, all recorded. In text a fault costs its ping and at most
// the next one; in frames at most those that its false length covers. All others are recorded as they were
// sent, and what is recorded of a damaged one differs only where its bytes do.
#include <gtest/gtest.h>

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

#include "acquisition/echo_text_worker.h"
#include "acquisition/frame_worker.h"
#include "base/bytes.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/host/virtual_clock.h"
#include "tests/acquisition/damaged_stream.h"
#include "tests/acquisition/live_program.h"

namespace tw {
namespace {

using sim::DeviceFamily;
using sim::StreamFault;
using test::Fault;

constexpr size_t kMessages = 2'000;
constexpr size_t kSampleCount = 100;
constexpr size_t kBlockHeader = 62;

struct Mode {
  friend void PrintTo(const Mode& mode, std::ostream* out) { *out << mode.name; }
  const char* name;
  DeviceFamily family;
  int32_t mode;
  ThreadBody worker;
};

constexpr Mode kTextModes[] = {{"FirstText10", DeviceFamily::first, 2, EchoTextWorker},
                               {"FirstText12", DeviceFamily::first, 4, EchoTextWorker},
                               {"SecondText", DeviceFamily::second, 2, SecondFamilyEchoTextWorker},
                               {"SecondText200", DeviceFamily::second, 4, SecondFamilyEchoTextWorker}};
constexpr Mode kBinaryModes[] = {{"FirstWords", DeviceFamily::first, 100, BinaryEchoWorker},
                                 {"FirstCompanded", DeviceFamily::first, 101, BinaryEchoWorker},
                                 {"SecondWords", DeviceFamily::second, 100, SecondFamilyBinaryEchoWorker}};

class LiveEchoFaults : public testing::TestWithParam<std::tuple<Mode, Fault>> {
 protected:
  // Runs the worker over the messages; gives the record file without the line in front.
  std::string Record() {
    const auto& [mode, fault] = GetParam();
    const VirtualClock clock(1'700'000'000'000);
    sim::SounderOptions options;
    options.family = mode.family;
    options.outputMode = mode.mode;
    options.baud = 921'600;
    options.delivery_us = 1'000;
    options.pingsPerSecond = 20;
    options.sampleCount = kSampleCount;
    options.streaming = true;
    if (fault.fault != StreamFault::none) options.faults.stream = {fault.fault};
    options.faults.streamRate = 0.05;
    sim::VirtualEchosounder device(options, &account_);
    test::ListeningPeer peer(device);
    test::LiveProgram program(peer);
    AppState& state = program.State();
    globals.deviceFamily = static_cast<int32_t>(mode.family);
    state.settings.outputMode = mode.mode;
    program.OpenFile(RecordChannel::a, L"a.log");
    Signal(state.recordingEvent);
    program.StartWorker(mode.worker);
    while (account_.sent.size() < kMessages) SleepMilliseconds(50);
    SleepMilliseconds(20);
    EXPECT_EQ(WaitForThread(state.acquisitionThread, 0), ThreadWait::timedOut);
    EXPECT_EQ(LoadShared(state.linkLost), 0);
    EXPECT_TRUE(IsRecordFileOpen(state, RecordChannel::a));
    program.StopWorker();
    bytes_ = std::move(peer.bytes);
    // The last ones may still have been on their way.
    while (account_.sent.back().offset + account_.sent.back().size > bytes_.size()) account_.sent.pop_back();
    return program.FileContent(L"a.log").substr(6);
  }

  void Report(size_t damaged, size_t received) {
    RecordProperty("sent", static_cast<int>(account_.sent.size()));
    RecordProperty("damaged", static_cast<int>(damaged));
    RecordProperty("received", static_cast<int>(received));
  }

  test::SentMessages account_;
  std::string bytes_;  // of the stream
};

class LiveTextFaults : public LiveEchoFaults {};

std::vector<std::string> BlocksOf(std::string_view file) {
  std::vector<std::string> blocks;
  for (size_t end; (end = file.find("$GPGGA,000000.00,")) != file.npos;) {
    blocks.emplace_back(file.substr(0, end));
    file.remove_prefix(file.find("\r\n\r\n\r\n", end) + 6);
  }
  return blocks;
}

TEST_P(LiveTextFaults, CostTheirPingAndAtMostTheNext) {
  const std::vector<std::string> blocks = BlocksOf(Record());
  size_t damaged = 0;
  size_t block = 0;
  bool afterDamage = false;
  for (const sim::SentPing& sent : account_.sent) {
    const std::string message = bytes_.substr(sent.offset, sent.size);
    const bool owed = sent.intact && !afterDamage;
    afterDamage = sent.faulty;
    damaged += sent.faulty ? 1 : 0;
    if (!owed) continue;
    while (block < blocks.size() && blocks[block] != message) ++block;
    ASSERT_LT(block, blocks.size()) << "not recorded: ping " << sent.number;
    ++block;
  }
  size_t from = 0;
  for (const std::string& each : blocks) {
    from = bytes_.find(each, from);
    ASSERT_NE(from, bytes_.npos) << "recorded, but never sent: " << each;
  }
  Report(damaged, blocks.size());
}

INSTANTIATE_TEST_SUITE_P(Modes, LiveTextFaults,
                         testing::Combine(testing::ValuesIn(kTextModes), testing::ValuesIn(test::kFaults)),
                         [](const auto& each) {
                           return std::string(std::get<0>(each.param).name) + std::get<1>(each.param).name;
                         });

struct Frame {
  PingHeader header;
  std::vector<uint16_t> samples;  // one for each of the device's
};

class LiveFrameFaults : public LiveEchoFaults {
 protected:
  static std::vector<Frame> FramesOf(std::string_view file) {
    std::vector<Frame> frames;
    while (!file.empty()) {
      EXPECT_TRUE(file.starts_with("TR57") && file.size() >= 88);
      const auto* bytes = reinterpret_cast<const uint8_t*>(file.data());
      Frame frame{LoadPingHeader(bytes), {}};
      const size_t count = frame.header.sampleCount;
      EXPECT_GE(file.size(), 88 + 2 * count);
      for (size_t i = 0; i < count; i += 4) frame.samples.push_back(LoadLe<uint16_t>(bytes + 88 + 2 * i));
      frames.push_back(std::move(frame));
      file.remove_prefix(88 + 2 * count);
    }
    return frames;
  }

  // How far the lengths of a damaged message reach: its own end at least.
  [[nodiscard]] size_t EndOf(const sim::SentPing& sent) const {
    const size_t end = sent.offset + sent.size;
    const size_t magic = bytes_.find("TIDEWRITEC", sent.offset);
    if (magic >= end || magic + 14 > bytes_.size()) return end;
    const auto claimed = LoadLe<uint32_t>(reinterpret_cast<const uint8_t*>(bytes_.data()) + magic + 10);
    return claimed > 256'000 ? end : std::max(end, magic + claimed);
  }

  // The amplitudes as sent, but where the message's bytes were changed.
  [[nodiscard]] bool SamplesAgree(const Frame& frame, size_t message) const {
    const sim::SentPing& sent = account_.sent[message];
    const std::vector<uint16_t>& samples = account_.samples[message];
    const size_t size = std::get<0>(GetParam()).mode == 100 ? 2 : 1;
    if (frame.samples.size() != samples.size()) return false;
    for (size_t i = 0; i < samples.size(); ++i) {
      const size_t at = kBlockHeader + i * size;
      const bool changed = sent.faulty && at + size > sent.faultAt && at < sent.faultAt + sent.faultSize;
      if (frame.samples[i] != samples[i] && !changed) return false;
    }
    return frame.header.altitude_m == sent.altitude_m && frame.header.ping == sent.number;
  }
};

TEST_P(LiveFrameFaults, CostAtMostThePingsWithinTheirFalseLength) {
  const std::vector<Frame> frames = FramesOf(Record());
  const StreamFault fault = std::get<1>(GetParam()).fault;
  size_t damaged = 0;
  size_t frame = 0;
  size_t covered = 0;  // the stream up to there
  for (size_t message = 0; message < account_.sent.size(); ++message) {
    const sim::SentPing& sent = account_.sent[message];
    // Flipped samples move nothing: their ping is owed as well.
    const bool samplesOnly = fault == StreamFault::flippedBytes && sent.faultAt >= kBlockHeader;
    const bool owed = sent.offset >= covered && (sent.intact || samplesOnly);
    if (sent.faulty) {
      ++damaged;
      if (!samplesOnly && sent.offset >= covered) covered = EndOf(sent);
    }
    if (!owed) continue;
    while (frame < frames.size() && !SamplesAgree(frames[frame], message)) ++frame;
    ASSERT_LT(frame, frames.size()) << "not recorded: ping " << sent.number;
    ++frame;
  }
  EXPECT_LE(frames.size(), account_.sent.size() + 1);
  Report(damaged, frames.size());
}

INSTANTIATE_TEST_SUITE_P(Modes, LiveFrameFaults,
                         testing::Combine(testing::ValuesIn(kBinaryModes), testing::ValuesIn(test::kFaults)),
                         [](const auto& each) {
                           return std::string(std::get<0>(each.param).name) + std::get<1>(each.param).name;
                         });

}  // namespace
}  // namespace tw
