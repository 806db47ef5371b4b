// Every output mode with samples, of every family, single and dual, on the virtual clock: two thousand pings
// of the virtual echosounder. What it says it sent is compared with the rings, ping by ping and sample by
// sample, and with the record files, byte by byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "acquisition/echo_text_worker.h"
#include "acquisition/frame_worker.h"
#include "platform/clock.h"
#include "platform/host/virtual_clock.h"
#include "simulator/virtual_echosounder.h"
#include "tests/acquisition/live_program.h"
#include "tests/simulator_peer.h"

namespace tw {
namespace {

using sim::DeviceFamily;

constexpr int64_t kBegin_ms = 1'700'000'000'000;
constexpr size_t kPings = 2'000;
constexpr int32_t kLow_hz = 200'000;
constexpr int32_t kHigh_hz = 450'000;

struct MadePing {
  sim::SentPing sent;
  std::vector<uint16_t> samples;
};

// What was sent, a list for each channel.
class Account : public sim::PingObserver {
 public:
  explicit Account(bool dual) : dual_(dual) {}
  void PingMade(const sim::SentPing& ping, std::span<const uint16_t> samples) override {
    Of(ping).push_back({ping, {samples.begin(), samples.end()}});
  }
  void PingEnded(const sim::SentPing& ping) override { Of(ping)[ping.number - 1].sent = ping; }

  std::vector<MadePing> made[2];

 private:
  std::vector<MadePing>& Of(const sim::SentPing& ping) {
    return made[dual_ && ping.txFrequency_hz == kLow_hz ? 1 : 0];
  }
  const bool dual_;
};

struct Case {
  DeviceFamily family;
  int32_t mode;
  bool dual;
  uint16_t factor;
  [[nodiscard]] bool IsBinary() const { return mode >= 100; }
  [[nodiscard]] ThreadBody Worker() const {
    if (family == DeviceFamily::first) return IsBinary() ? BinaryEchoWorker : EchoTextWorker;
    return IsBinary() ? SecondFamilyBinaryEchoWorker : SecondFamilyEchoTextWorker;
  }
};

void PrintTo(const Case& each, std::ostream* out) {
  *out << "family " << static_cast<int>(each.family) << " mode " << each.mode;
}

std::vector<uint16_t> OnGrid(const MadePing& made, uint16_t factor) {
  std::vector<uint16_t> grid;
  for (const uint16_t sample : made.samples) {
    grid.insert(grid.end(), 4, static_cast<uint16_t>(sample * factor));  // 25,000 Hz
  }
  return grid;
}

std::vector<uint16_t> SamplesAt(const uint8_t* bytes, size_t count) {
  std::vector<uint16_t> samples(count);
  for (size_t i = 0; i < count; ++i) samples[i] = static_cast<uint16_t>(bytes[2 * i] | bytes[2 * i + 1] << 8);
  return samples;
}

class LiveEchoModes : public testing::TestWithParam<Case> {
 protected:
  void ExpectSame(const PingHeader& ping, const MadePing& made) const {
    const bool binary = GetParam().IsBinary();
    EXPECT_EQ(ping.ping, made.sent.number);
    EXPECT_EQ(ping.deviceSeconds, binary ? made.sent.deviceTime_s : 0);
    EXPECT_EQ(ping.deviceMilliseconds, binary ? made.sent.deviceTime_ms : 0);
    // A block takes some of the time between two pings to come in.
    EXPECT_NEAR(ping.timeOfWork_s, static_cast<double>(kBegin_ms * 1'000 + made.sent.time_us) / 1e6, 1.2);
    EXPECT_EQ(ping.samplingFrequency_hz, binary ? 100'000u : 25'000u);
    EXPECT_EQ(ping.sampleCount, made.samples.size() * (binary ? 4 : 1));
    EXPECT_EQ(ping.txFrequency_hz, made.sent.txFrequency_hz);
    EXPECT_EQ(ping.altitude_m, made.sent.altitude_m);
    EXPECT_EQ(ping.temperature_c, made.sent.temperature_c);
    EXPECT_EQ(ping.pitch_deg, made.sent.pitch_deg);
    EXPECT_EQ(ping.roll_deg, made.sent.roll_deg);
  }

  // The ping on view, when it is another than before.
  void Look(const PingRing& ring, int32_t index, const std::vector<MadePing>& made, uint32_t& last) const {
    const uint8_t* slot = ring.slots[index];
    const PingHeader ping = LoadPingHeader(slot);
    if (ping.ping == last) return;
    ASSERT_EQ(ping.ping, last + 1) << "a ping was never published, or went to the other channel";
    ASSERT_LE(ping.ping, made.size());
    last = ping.ping;
    ExpectSame(ping, made[last - 1]);
    const std::vector<uint16_t> grid = OnGrid(made[last - 1], GetParam().factor);
    ASSERT_EQ(SamplesAt(slot + 728, grid.size()), grid) << "ping " << last;
  }

  void CompareTextFile(std::string_view file, const std::vector<MadePing>& made) const {
    size_t ping = 0;
    for (; !file.empty(); ++ping) {
      ASSERT_LT(ping, made.size());
      const std::string_view block = file.substr(0, made[ping].sent.size);
      ASSERT_EQ(sim::HashOf({reinterpret_cast<const uint8_t*>(block.data()), block.size()}),
                made[ping].sent.hash)
          << "ping " << ping;
      file.remove_prefix(block.size());
      for (const std::string_view start : {"$GPGGA,", "$GPRMC,", "\r\n\r\n"}) {
        ASSERT_TRUE(file.starts_with(start)) << "ping " << ping << ": " << file.substr(0, 100);
        file.remove_prefix(start[0] == '$' ? file.find("\r\n") + 2 : start.size());
      }
    }
    EXPECT_GE(ping, kPings);
  }

  void CompareFrameFile(std::string_view file, const std::vector<MadePing>& made) const {
    size_t ping = 0;
    for (; !file.empty(); ++ping) {
      ASSERT_LT(ping, made.size());
      const std::vector<uint16_t> grid = OnGrid(made[ping], 1);
      ASSERT_GE(file.size(), 88 + 2 * grid.size()) << "a torn frame";
      const auto* frame = reinterpret_cast<const uint8_t*>(file.data());
      EXPECT_EQ(file.substr(0, 8), std::string_view("TR57\x58\0\0\0", 8));
      EXPECT_EQ(file.substr(28, 4), std::string_view("\0\0\0\0", 4)) << "reserved";
      EXPECT_EQ(file.substr(44, 4), std::string_view("\0\0\0\0", 4)) << "reserved";
      ExpectSame(LoadPingHeader(frame), made[ping]);
      ASSERT_EQ(SamplesAt(frame + 88, grid.size()), grid) << "ping " << ping;
      file.remove_prefix(88 + 2 * grid.size());
    }
    EXPECT_GE(ping, kPings);
  }

  void CompareFile(std::string_view file, const std::vector<MadePing>& made) const {
    ASSERT_TRUE(file.starts_with("INFO\r\n"));
    file.remove_prefix(6);
    if (GetParam().IsBinary()) {
      CompareFrameFile(file, made);
    } else {
      CompareTextFile(file, made);
    }
  }
};

TEST_P(LiveEchoModes, EveryPingReachesRingsAndFiles) {
  const Case& each = GetParam();
  const VirtualClock clock(kBegin_ms);
  Account account(each.dual);
  sim::VirtualEchosounder device({.family = each.family,
                                  .baud = 921'600,
                                  .delivery_us = 1'000,
                                  .outputMode = each.mode,
                                  .sampleCount = 200,
                                  .dual = each.dual,
                                  .streaming = true},
                                 &account);
  test::SimulatorPeer peer(device);
  test::LiveProgram program(peer);
  AppState& state = program.State();
  globals.deviceFamily = static_cast<int32_t>(each.family);
  globals.dualMode = each.dual ? 1 : 0;
  state.settings.outputMode = each.mode;
  state.settings.samplingFrequency_hz = 25'000;
  state.settings.lowFrequency_hz = state.settings.virtualLowFrequency_hz = kLow_hz;
  state.settings.frequencyInUse_hz = state.settings.highFrequency_hz = kHigh_hz;
  program.OpenFile(RecordChannel::a, L"a.log");
  if (each.dual) program.OpenFile(RecordChannel::b, L"b.log");
  Signal(state.recordingEvent);
  program.StartWorker(each.Worker());

  uint32_t seen[2] = {0, 0};
  while (account.made[0].size() < kPings + 2) {
    SleepMilliseconds(20);
    ASSERT_NO_FATAL_FAILURE(Look(*state.ringA, program.IndexA(), account.made[0], seen[0]));
    if (each.dual) {
      ASSERT_NO_FATAL_FAILURE(Look(*state.ringB, program.IndexB(), account.made[1], seen[1]));
    }
  }
  program.StopWorker();
  EXPECT_GE(seen[0], kPings);
  EXPECT_GE(seen[1], each.dual ? kPings : 0u);
  CompareFile(program.FileContent(L"a.log"), account.made[0]);
  if (each.dual) CompareFile(program.FileContent(L"b.log"), account.made[1]);
}

constexpr DeviceFamily kFirst = DeviceFamily::first;
constexpr DeviceFamily kSecond = DeviceFamily::second;
constexpr DeviceFamily kThird = DeviceFamily::third;

INSTANTIATE_TEST_SUITE_P(
    Modes, LiveEchoModes,
    testing::Values(Case{kFirst, 2, false, 4}, Case{kFirst, 2, true, 4}, Case{kFirst, 4, false, 1},
                    Case{kFirst, 4, true, 1}, Case{kFirst, 100, false, 1}, Case{kFirst, 100, true, 1},
                    Case{kFirst, 101, false, 1}, Case{kFirst, 101, true, 1}, Case{kSecond, 2, false, 4},
                    Case{kSecond, 4, false, 1}, Case{kSecond, 5, false, 1}, Case{kSecond, 6, false, 1},
                    Case{kSecond, 100, false, 1}, Case{kSecond, 101, false, 1}, Case{kThird, 2, false, 4},
                    Case{kThird, 4, false, 1}, Case{kThird, 5, false, 1}, Case{kThird, 6, false, 1}),
    [](const auto& each) {
      return "Family" + std::to_string(static_cast<int>(each.param.family)) + "Mode" +
             std::to_string(each.param.mode) + (each.param.dual ? "Dual" : "");
    });

}  // namespace
}  // namespace tw
