// Every output mode without samples, of every family, single and dual: Start against the virtual echosounder
// and the virtual GPS receiver, thousands of pings, Stop. What the instruments say they sent is compared with
// the rings, ping by ping, and with the record files, byte by byte.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "acquisition/ping_ring.h"
#include "app/run_control.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "simulator/virtual_echosounder.h"
#include "tests/app/run_control_fixture.h"

namespace tw {
namespace {

using sim::DeviceFamily;

constexpr size_t kPings = 2'000;
constexpr double kRadian = 57.29577951308232;

class Account : public sim::PingObserver {
 public:
  void PingMade(const sim::SentPing& ping, std::span<const uint16_t>) override { sent.push_back(ping); }
  // Messages end in their order.
  void PingEnded(const sim::SentPing& ping) override { sent[ended_++] = ping; }

  std::vector<sim::SentPing> sent;

 private:
  size_t ended_ = 0;
};

// What a message tells; each with what stands before it.
enum class Says : uint8_t { altitude, temperature, attitude };

struct Case {
  friend void PrintTo(const Case& each, std::ostream* out) { *out << each.name; }
  DeviceFamily family;
  int32_t mode;
  const char* name;
  Says says;
  bool dual = false;
  bool joint = false;  // a message holds both altitudes
  int files = 1;
};

// Where the pulse of an altitude begins, at the speed of sound that the device was made with.
size_t PulseOf(float altitude_m, float soundSpeed_mps) {
  return static_cast<size_t>((static_cast<double>(altitude_m) * 2 / static_cast<double>(soundSpeed_mps)) /
                             0.00001);
}

class AltimeterModes : public test::RunControlTest, public testing::WithParamInterface<Case> {
 protected:
  struct Ring {
    const PingRing* slots;
    int32_t* index;
    Lock* lock;
    bool low;
    uint32_t last = 0;
    size_t seen = 0;
  };

  void Look(Ring& ring) {
    int32_t index = 0;
    {
      Locked held(*ring.lock);
      index = *ring.index;
    }
    const uint8_t* slot = ring.slots->slots[index];
    const PingHeader ping = LoadPingHeader(slot);
    if (ping.ping == ring.last) return;
    ASSERT_LE(ping.ping, account_.sent.size());
    const sim::SentPing& sent = account_.sent[ping.ping - 1];
    const Case& each = GetParam();
    const bool everyMessage = !each.dual || each.joint;
    ASSERT_EQ(ping.ping,
              ring.last == 0 ? (ring.low && !everyMessage ? 2 : 1) : ring.last + (everyMessage ? 1 : 2))
        << "a ping was never published, or went to the other channel";
    ring.last = ping.ping;
    ++ring.seen;
    const float altitude_m = ring.low && each.joint ? sent.altitudeLow_m : sent.altitude_m;
    EXPECT_EQ(ping.altitude_m, altitude_m) << ping.ping;
    EXPECT_EQ(ping.temperature_c, each.says == Says::altitude ? 0 : sent.temperature_c) << ping.ping;
    EXPECT_EQ(ping.pitch_deg, each.says == Says::attitude ? sent.pitch_deg : 450.0f) << ping.ping;
    EXPECT_EQ(ping.roll_deg, each.says == Says::attitude ? sent.roll_deg : 0.0f) << ping.ping;
    EXPECT_EQ(ping.sampleCount, 0u);
    ExpectPulse(slot, altitude_m);
    ExpectPosition(ping);
  }

  void ExpectPulse(const uint8_t* slot, float altitude_m) {
    const size_t first = PulseOf(altitude_m, state_->settings.soundSpeed_mps);
    const auto sample = [&](size_t i) { return slot[728 + 2 * i] | slot[729 + 2 * i] << 8; };
    ASSERT_LT(first + 12, kMaxSlotSamples);
    EXPECT_EQ(first == 0 ? 0 : sample(first - 1), 0);
    EXPECT_EQ(sample(first), 921);
    EXPECT_EQ(sample(first + 4), 3685);
    EXPECT_EQ(sample(first + 9), 921);
    EXPECT_EQ(sample(first + 10), 0);
  }

  // A receiver's position of the last seconds stands in the ping.
  void ExpectPosition(const PingHeader& ping) {
    if (ping.gpsValid == 0) return;
    ++positions_;
    const sim::SentEpoch& newest = gps_->Epochs().Entries().back();
    EXPECT_NEAR(static_cast<double>(ping.gpsLatitude_rad) * kRadian, newest.latitude_deg, 1e-4);
    EXPECT_NEAR(static_cast<double>(ping.gpsLongitude_rad) * kRadian, newest.longitude_deg, 1e-4);
    EXPECT_LE(static_cast<int64_t>(ping.gpsTime_s), newest.utc_centi / 100);
  }

  void CompareFile(std::string_view file, bool low, bool every);

  Account account_;
  size_t positions_ = 0;
};

// Takes a sentence with this address and a valid checksum off the front; the fields in between, or nothing.
std::string_view TakeSentence(std::string_view& rest, std::string_view address) {
  const size_t end = rest.find("\r\n");
  if (!rest.starts_with(address) || end == rest.npos || end < 10) return {};
  const std::string_view sentence = rest.substr(0, end);
  unsigned sum = 0;
  for (const char c : sentence.substr(1, sentence.size() - 4)) sum ^= static_cast<unsigned char>(c);
  char text[4];
  std::snprintf(text, sizeof text, "*%02x", sum);
  if (!sentence.ends_with(text)) return {};
  rest.remove_prefix(end + 2);
  return sentence;
}

// The file holds every message of its channel, in order, whole, each behind its frequency line in NMEA and
// with GGA and RMC behind it, and nothing else but settings lines in front.
void AltimeterModes::CompareFile(std::string_view file, bool low, bool every) {
  while (file.starts_with("INFO:")) file.remove_prefix(file.find("\r\n") + 2);
  const DeviceSettings& settings = state_->appliedSettings;
  const int32_t set_hz = !GetParam().dual ? settings.frequencyInUse_hz
                         : low            ? settings.lowFrequency_hz
                                          : settings.highFrequency_hz;
  const std::string line = "#F " + std::to_string(set_hz) + " Hz\r\n";
  size_t pings = 0;
  for (const sim::SentPing& sent : account_.sent) {
    if (!every && (sent.txFrequency_hz == settings.lowFrequency_hz) != low) continue;
    if (file.empty()) break;  // stopped
    if (GetParam().mode == 3) {
      ASSERT_TRUE(file.starts_with(line)) << "ping " << pings << ": " << file.substr(0, 80);
      file.remove_prefix(line.size());
    }
    const std::string_view message = file.substr(0, sent.size);
    ASSERT_EQ(sim::HashOf({reinterpret_cast<const uint8_t*>(message.data()), message.size()}), sent.hash)
        << "ping " << pings << ": " << message;
    file.remove_prefix(message.size());
    ASSERT_FALSE(TakeSentence(file, "$GPGGA,").empty()) << "ping " << pings << ": " << file.substr(0, 80);
    ASSERT_FALSE(TakeSentence(file, "$GPRMC,").empty()) << "ping " << pings << ": " << file.substr(0, 80);
    ++pings;
  }
  EXPECT_TRUE(file.empty()) << file.substr(0, 200);
  EXPECT_GE(pings, kPings);
}

TEST_P(AltimeterModes, EveryPingReachesRingsAndFiles) {
  const Case& each = GetParam();
  sim::SounderOptions options = test::QuickSounder();
  options.family = each.family;
  options.outputMode = each.mode;
  options.dual = each.dual;
  options.delivery_us = 1'000;
  ConnectSounder(options, &account_);
  ConnectGps({});
  ChooseGps();
  StartRun(*state_);
  ASSERT_TRUE(test::Ui().boxes.empty()) << "a box was shown at Start";
  EXPECT_EQ(LoadShared(globals.deviceFamily), static_cast<int32_t>(each.family));
  EXPECT_EQ(LoadShared(globals.dualMode), each.dual ? 1 : 0);
  EXPECT_EQ(state_->echogramEnabled, 0);

  Ring high{state_->ringA, &state_->ringIndexA, &state_->ringLockA, false};
  Ring low{state_->ringB, &state_->ringIndexB, &state_->ringLockB, true};
  while (high.seen < kPings) {
    SleepMilliseconds(20);
    ASSERT_NO_FATAL_FAILURE(Look(high));
    ASSERT_NO_FATAL_FAILURE(Look(low));
  }
  EXPECT_GE(low.seen + 1, each.dual ? kPings : 1u);
  EXPECT_GT(positions_, kPings * 9 / 10);

  StopRun(*state_);
  ExpectIdle();
  const std::vector<std::string> files = RecordFiles();
  ASSERT_EQ(files.size(), static_cast<size_t>(each.files));
  const bool every = !each.dual || each.joint || each.files == 1;
  // "..._450kHz_..." and "..._200kHz_...": the low frequency's name comes first.
  CompareFile(Content(files.back()), false, every);
  if (!every) CompareFile(Content(files.front()), true, every);
}

constexpr DeviceFamily kFirst = DeviceFamily::first;

INSTANTIATE_TEST_SUITE_P(Modes, AltimeterModes,
                         testing::Values(Case{kFirst, 1, "FirstSimple", Says::altitude},
                                         Case{kFirst, 1, "FirstSimpleDual", Says::altitude, true, false, 2},
                                         Case{kFirst, 3, "FirstNmea", Says::attitude},
                                         Case{kFirst, 3, "FirstNmeaDual", Says::attitude, true, false, 2},
                                         Case{kFirst, 6, "FirstDeso", Says::altitude},
                                         Case{kFirst, 6, "FirstDesoDual", Says::altitude, true},
                                         Case{kFirst, 7, "FirstDualSingle", Says::temperature, false, true},
                                         Case{kFirst, 7, "FirstDual", Says::temperature, true, true},
                                         Case{kFirst, 8, "FirstDfx", Says::altitude, false, true},
                                         Case{kFirst, 8, "FirstDfxDual", Says::altitude, true, true},
                                         Case{kFirst, 9, "FirstOld", Says::altitude, false, true}),
                         [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace tw
