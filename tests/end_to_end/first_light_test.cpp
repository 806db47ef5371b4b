// The program's main job, all of it but the window: Start against the virtual echosounder and the virtual GPS
// receiver, thousands of pings through worker, ring and record file, Stop. What the devices say they sent is
// compared with what the rings showed and with what the file holds, ping by ping and sample by sample.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "acquisition/ping_ring.h"
#include "app/run_control.h"
#include "platform/clock.h"
#include "simulator/virtual_echosounder.h"
#include "tests/app/run_control_fixture.h"

namespace tw {
namespace {

struct MadePing {
  sim::SentPing sent;
  std::vector<uint16_t> samples;
};

class Account : public sim::PingObserver {
 public:
  void PingMade(const sim::SentPing& ping, std::span<const uint16_t> samples) override {
    made.push_back({ping, {samples.begin(), samples.end()}});
  }
  void PingEnded(const sim::SentPing& ping) override {
    // The newest ping is the one that ends; a stop may cut it short.
    if (!made.empty() && made.back().sent.number == ping.number) made.back().sent = ping;
  }

  std::vector<MadePing> made;
};

struct Shown {
  PingHeader header;
  std::vector<uint16_t> samples;
};

Shown ReadSlot(const AppState& state, int32_t index) {
  const uint8_t* slot = state.ringA->slots[index];
  Shown shown{LoadPingHeader(slot), {}};
  const size_t count = std::min<size_t>(size_t{shown.header.sampleCount} * 4, kMaxSlotSamples);
  for (size_t i = 0; i < count; ++i) {
    const uint8_t* sample = slot + kSlotSamples + 2 * i;
    shown.samples.push_back(static_cast<uint16_t>(sample[0] | sample[1] << 8));
  }
  return shown;
}

void ExpectSame(const Shown& shown, const MadePing& made, uint16_t factor) {
  EXPECT_EQ(shown.header.altitude_m, made.sent.altitude_m);
  EXPECT_EQ(shown.header.temperature_c, made.sent.temperature_c);
  EXPECT_EQ(shown.header.pitch_deg, made.sent.pitch_deg);
  EXPECT_EQ(shown.header.roll_deg, made.sent.roll_deg);
  EXPECT_EQ(shown.header.txFrequency_hz, made.sent.txFrequency_hz);
  ASSERT_EQ(shown.samples.size(), made.samples.size() * 4);
  for (size_t i = 0; i < shown.samples.size(); ++i) {
    ASSERT_EQ(shown.samples[i], made.samples[i / 4] * factor)
        << "ping " << made.sent.number << " sample " << i;
  }
}

// One recorded ping behind its block: two sentences with valid checksums, then CR LF CR LF.
bool TakeSentences(std::string_view& rest) {
  for (const std::string_view start : {"$GPGGA,", "$GPRMC,"}) {
    const size_t end = rest.find("\r\n");
    if (!rest.starts_with(start) || end == rest.npos || end < 10) return false;
    const std::string_view sentence = rest.substr(0, end);
    unsigned sum = 0;
    for (const char c : sentence.substr(1, sentence.size() - 4)) sum ^= static_cast<unsigned char>(c);
    char text[4];
    std::snprintf(text, sizeof text, "*%02x", sum);
    if (!sentence.ends_with(text)) return false;
    rest.remove_prefix(end + 2);
  }
  if (!rest.starts_with("\r\n\r\n")) return false;
  rest.remove_prefix(4);
  return true;
}

// Compares the whole file with what was sent; returns the pings in it.
size_t CompareFile(std::string_view file, const std::vector<MadePing>& made) {
  const size_t headerEnd = file.find("\r\n");
  EXPECT_TRUE(file.starts_with("INFO:1,")) << file.substr(0, 80);
  if (headerEnd == file.npos) return 0;
  file.remove_prefix(headerEnd + 2);
  size_t ping = 0;
  while (!file.empty()) {
    if (ping >= made.size() || file.size() < made[ping].sent.size) {
      ADD_FAILURE() << "the file holds more than was sent, or a torn ping, at ping " << ping;
      return ping;
    }
    const std::string_view block = file.substr(0, made[ping].sent.size);
    EXPECT_EQ(sim::HashOf({reinterpret_cast<const uint8_t*>(block.data()), block.size()}),
              made[ping].sent.hash);
    file.remove_prefix(block.size());
    if (!TakeSentences(file)) {
      ADD_FAILURE() << "no GGA and RMC behind ping " << ping << ": " << file.substr(0, 120);
      return ping;
    }
    ++ping;
  }
  return ping;
}

struct Case {
  int32_t mode;
  uint16_t factor;
  size_t pings;
};

class FirstLight : public test::RunControlTest, public testing::WithParamInterface<Case> {
 protected:
  // The ping that the view would show now.
  [[nodiscard]] int32_t PublishedIndex() const {
    Locked held(state_->ringLockA);
    return state_->ringIndexA;
  }

  Account account_;
};

TEST_P(FirstLight, EveryPingReachesRingAndFile) {
  const Case& parameters = GetParam();
  sim::SounderOptions options = test::QuickSounder();
  options.outputMode = parameters.mode;
  options.delivery_us = 1000;
  ConnectSounder(options, &account_);
  ConnectGps({});
  ChooseGps();
  StartRun(*state_);
  ASSERT_TRUE(test::Ui().boxes.empty()) << "a box was shown at Start";

  // The operator's side: look every 20 ms, more often than the device pings, and compare each ping that is
  // published while the device streams on.
  uint32_t lastPing = 0;
  while (account_.made.size() < parameters.pings) {
    SleepMilliseconds(20);
    const int32_t index = PublishedIndex();
    const uint32_t ping = LoadPingHeader(state_->ringA->slots[index]).ping;
    if (ping == lastPing) continue;
    ASSERT_EQ(ping, lastPing + 1) << "a ping was never published";
    ASSERT_LE(ping, account_.made.size());
    lastPing = ping;
    ASSERT_NO_FATAL_FAILURE(ExpectSame(ReadSlot(*state_, index), account_.made[ping - 1], parameters.factor));
  }
  EXPECT_GE(lastPing, parameters.pings - 1);

  StopRun(*state_);
  ExpectIdle();
  const std::vector<std::string> files = RecordFiles();
  ASSERT_EQ(files.size(), 1u);
  EXPECT_GE(CompareFile(Content(files[0]), account_.made), lastPing);
}

INSTANTIATE_TEST_SUITE_P(TextModes, FirstLight, testing::Values(Case{4, 1, 10'000}, Case{2, 4, 2'000}),
                         [](const auto& each) { return "Mode" + std::to_string(each.param.mode); });

}  // namespace
}  // namespace tw
