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

#include "app/run/run_control.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "simulator/virtual_echosounder.h"
#include "tests/app/run_control_fixture.h"
#include "tests/end_to_end/pulse_watch.h"
#include "tests/end_to_end/recorded_position.h"
#include "tests/sent_account.h"

namespace tw {
namespace {

using sim::DeviceFamily;
using test::PulseWatch;
using test::Says;

constexpr size_t kPings = 2'000;
constexpr double kRadian = 57.29577951308232;

struct Case {
  friend void PrintTo(const Case& each, std::ostream* out) { *out << each.name; }
  DeviceFamily family;
  int32_t mode;
  const char* name;
  Says says;
  bool dual = false;
  bool joint = false;  // a message holds both altitudes
  int files = 1;
  bool reports = true;  // the transmit frequency, as a device with smoothing does
};

class AltimeterModes : public test::RunControlTest, public testing::WithParamInterface<Case> {
 protected:
  ~AltimeterModes() override { StopRun(*state_); }

  // Sets up what a ring is expected to show.
  void Expect(PulseWatch& watch, bool low) const {
    const Case& each = GetParam();
    watch.says = each.says;
    watch.soundSpeed_mps = state_->settings.soundSpeed_mps;
    watch.lowOfMessage = low && each.joint;
    if (each.dual && !each.joint) {
      watch.first = low ? 2 : 1;
      watch.step = 2;
    }
  }

  // A receiver's position of the last seconds stands in the ping.
  void ExpectPosition(const PingHeader& ping) {
    if (ping.gpsLatitude_rad == 0 && ping.gpsLongitude_rad == 0) return;  // before the first fix
    ++positions_;
    const sim::SentEpoch& newest = gps_->Epochs().Entries().back();
    EXPECT_NEAR(static_cast<double>(ping.gpsLatitude_rad) * kRadian, newest.latitude_deg, 1e-4);
    EXPECT_NEAR(static_cast<double>(ping.gpsLongitude_rad) * kRadian, newest.longitude_deg, 1e-4);
    EXPECT_LE(static_cast<int64_t>(ping.gpsTime_s), newest.utc_centi / 100);
  }

  void CompareFile(std::string_view file, bool low, bool every);

  test::SentAccount account_;
  size_t positions_ = 0;
};

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
  size_t positions = 0;
  for (const test::SentMessage& each : account_.messages) {
    const sim::SentPing& sent = each.sent;
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
    ASSERT_NO_FATAL_FAILURE(test::TakePosition(file, *gps_, positions)) << "ping " << pings;
    ++pings;
  }
  EXPECT_TRUE(file.empty()) << file.substr(0, 200);
  EXPECT_GE(pings, kPings);
  EXPECT_GT(positions, kPings * 9 / 10);
}

TEST_P(AltimeterModes, EveryPingReachesRingsAndFiles) {
  const Case& each = GetParam();
  sim::SounderOptions options = test::QuickSounder();
  options.family = each.family;
  options.outputMode = each.mode;
  options.dual = each.dual;
  options.reportsFrequency = each.reports;
  if (!each.reports) options.smoothing = sim::Smoothing::absent;
  options.delivery_us = 1'000;
  ConnectSounder(options, &account_);
  ConnectGps({});
  ChooseGps();
  StartRun(*state_);
  ASSERT_TRUE(test::Ui().boxes.empty()) << "a box was shown at Start";
  EXPECT_EQ(LoadShared(globals.deviceFamily), static_cast<int32_t>(each.family));
  EXPECT_EQ(LoadShared(globals.dualMode), each.dual ? 1 : 0);
  EXPECT_EQ(state_->settings.outputMode, each.mode);
  EXPECT_EQ(state_->echogramEnabled, 0);

  PulseWatch high(*state_->ringA, state_->ringIndexA, state_->ringLockA);
  PulseWatch low(*state_->ringB, state_->ringIndexB, state_->ringLockB);
  Expect(high, false);
  Expect(low, true);
  while (high.Seen() < kPings) {
    SleepMilliseconds(20);
    if (high.Look(account_.messages)) ExpectPosition(high.Newest());
    if (low.Look(account_.messages)) ExpectPosition(low.Newest());
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GE(low.Seen() + 1, each.dual ? kPings : 1u);
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
constexpr DeviceFamily kSecond = DeviceFamily::second;
constexpr DeviceFamily kThird = DeviceFamily::third;

INSTANTIATE_TEST_SUITE_P(
    Modes, AltimeterModes,
    testing::Values(
        Case{kFirst, 1, "FirstSimple", Says::altitude},
        Case{kFirst, 1, "FirstSimpleDual", Says::altitude, true, false, 2},
        Case{kFirst, 1, "FirstSimpleSilent", Says::altitude, false, false, 1, false},
        Case{kFirst, 3, "FirstNmea", Says::attitude},
        Case{kFirst, 3, "FirstNmeaSilent", Says::attitude, false, false, 1, false},
        Case{kFirst, 3, "FirstNmeaDual", Says::attitude, true, false, 2},
        Case{kFirst, 6, "FirstDeso", Says::altitude}, Case{kFirst, 6, "FirstDesoDual", Says::altitude, true},
        Case{kFirst, 7, "FirstDualSingle", Says::temperature, false, true},
        Case{kFirst, 7, "FirstDual", Says::temperature, true, true},
        Case{kFirst, 8, "FirstDfx", Says::altitude, false, true},
        Case{kFirst, 8, "FirstDfxDual", Says::altitude, true, true},
        Case{kFirst, 9, "FirstOld", Says::altitude, false, true},
        Case{kSecond, 1, "SecondSimple", Says::altitude}, Case{kSecond, 3, "SecondNmea", Says::attitude},
        Case{kSecond, 7, "SecondPsa916", Says::altitude},
        Case{kSecond, 8, "SecondAltiPlusTemp", Says::temperature},
        Case{kSecond, 9, "SecondDfx", Says::altitude}, Case{kSecond, 10, "SecondOld", Says::altitude},
        Case{kThird, 1, "ThirdSimple", Says::altitude}, Case{kThird, 3, "ThirdNmea", Says::attitude},
        Case{kThird, 7, "ThirdPsa916", Says::altitude},
        Case{kThird, 8, "ThirdAltiPlusTemp", Says::temperature}, Case{kThird, 9, "ThirdDfx", Says::altitude},
        Case{kThird, 10, "ThirdOld", Says::altitude}),
    [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace tw
