// Every output mode with samples, of every family, single and dual: Start against the virtual echosounder and
// the virtual GPS receiver, thousands of pings through worker, rings and record files, Stop. What the
// instruments say they sent is compared with the rings, ping by ping and sample by sample, and with the
// record files, byte by byte.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "acquisition/ping_ring.h"
#include "app/run/run_control.h"
#include "base/bytes.h"
#include "base/shared_value.h"
#include "display/panel.h"
#include "display/zoom.h"
#include "platform/clock.h"
#include "simulator/virtual_echosounder.h"
#include "tests/app/run_control_fixture.h"
#include "tests/end_to_end/recorded_position.h"
#include "tests/sent_account.h"

namespace tw {
namespace {

using sim::DeviceFamily;
using test::SentMessage;

constexpr double kBegin_s = 1'741'944'605.0;  // of the virtual clock
constexpr double kRadian = 57.29577951308232;
constexpr size_t kRepeat = 4;  // a sample on the grid: the device samples at 25,000 Hz

struct Case {
  friend void PrintTo(const Case& each, std::ostream* out) { *out << each.name; }
  DeviceFamily family;
  int32_t mode;
  const char* name;
  bool dual = false;
  size_t pings = 2'000;
  int32_t frequency_hz = 450'000;  // of a device of one channel
  int32_t range_mm = 30'000;
  [[nodiscard]] bool IsBinary() const { return mode >= 100; }
  [[nodiscard]] uint16_t Factor() const { return mode == 2 ? 4 : 1; }
};

std::vector<uint16_t> OnGrid(const SentMessage& message, uint16_t factor) {
  std::vector<uint16_t> grid;
  for (const uint16_t sample : message.samples) {
    grid.insert(grid.end(), kRepeat, static_cast<uint16_t>(sample * factor));
  }
  return grid;
}

std::vector<uint16_t> SamplesAt(const uint8_t* bytes, size_t count) {
  std::vector<uint16_t> samples(count);
  for (size_t i = 0; i < count; ++i) samples[i] = LoadLe<uint16_t>(bytes + 2 * i);
  return samples;
}

class EchoModes : public test::RunControlTest, public testing::WithParamInterface<Case> {
 protected:
  ~EchoModes() override { StopRun(*state_); }

  // The messages of a ping follow each other, the high frequency's first.
  [[nodiscard]] const SentMessage* MessageOf(uint32_t ping, bool low) const {
    const size_t at = GetParam().dual ? 2 * (size_t{ping} - 1) + (low ? 1 : 0) : ping - 1;
    return at < account_.messages.size() ? &account_.messages[at] : nullptr;
  }

  void ExpectSame(const PingHeader& ping, const SentMessage& message);
  void Look(const PingRing& ring, Lock& lock, const int32_t& index, bool low);
  void ExpectViewOfTheHighChannel();
  void CompareTextFile(std::string_view file, bool low);
  void CompareFrameFile(std::string_view file, bool low);
  void CompareFile(std::string_view file, bool low);

  test::SentAccount account_;
  uint32_t seen_[2] = {0, 0};
  size_t positions_ = 0;  // pings with one
};

void EchoModes::ExpectSame(const PingHeader& ping, const SentMessage& message) {
  const bool binary = GetParam().IsBinary();
  const sim::SentPing& sent = message.sent;
  EXPECT_GT(sent.altitude_m, 3.0f);
  EXPECT_EQ(ping.ping, sent.number);
  EXPECT_EQ(ping.deviceSeconds, binary ? sent.deviceTime_s : 0);
  EXPECT_EQ(ping.deviceMilliseconds, binary ? sent.deviceTime_ms : 0);
  // A block takes some of the time between two pings to come in.
  EXPECT_NEAR(ping.timeOfWork_s, kBegin_s + static_cast<double>(sent.time_us) / 1e6, 1.2);
  EXPECT_EQ(ping.samplingFrequency_hz, binary ? 100'000u : 25'000u);
  EXPECT_EQ(ping.sampleCount, message.samples.size() * (binary ? kRepeat : 1));
  EXPECT_EQ(ping.range_m, static_cast<float>(GetParam().range_mm) / 1'000.0f);
  EXPECT_EQ(ping.txFrequency_hz, sent.txFrequency_hz);
  EXPECT_EQ(ping.altitude_m, sent.altitude_m);
  EXPECT_EQ(ping.temperature_c, sent.temperature_c);
  EXPECT_EQ(ping.pitch_deg, sent.pitch_deg);
  EXPECT_EQ(ping.roll_deg, sent.roll_deg);
  if (ping.gpsLatitude_rad == 0 && ping.gpsLongitude_rad == 0) return;  // before the first fix
  ++positions_;
  EXPECT_EQ(ping.gpsValid, 1);
  EXPECT_TRUE(test::HasBeenAt(*gps_, static_cast<double>(ping.gpsLatitude_rad) * kRadian,
                              static_cast<double>(ping.gpsLongitude_rad) * kRadian, 1e-5));
}

// The ping on view, when it is another than before. Look more often than pings come.
void EchoModes::Look(const PingRing& ring, Lock& lock, const int32_t& index, bool low) {
  int32_t published = 0;
  {
    Locked held(lock);
    published = index;
  }
  const uint8_t* slot = ring.slots[published];
  const PingHeader ping = LoadPingHeader(slot);
  uint32_t& last = seen_[low ? 1 : 0];
  if (ping.ping == last) return;
  ASSERT_EQ(ping.ping, last + 1) << "a ping was never published, or went to the other channel";
  last = ping.ping;
  const SentMessage* message = MessageOf(last, low);
  ASSERT_NE(message, nullptr);
  ExpectSame(ping, *message);
  const std::vector<uint16_t> grid = OnGrid(*message, GetParam().Factor());
  ASSERT_EQ(SamplesAt(slot + kSlotSamples, grid.size()), grid) << "ping " << last;
}

// Threshold line and wheel go by what the device has told.
void EchoModes::ExpectViewOfTheHighChannel() {
  const Case& each = GetParam();
  const PanelPlace place = each.dual ? PanelPlace::upper : PanelPlace::single;
  const PanelSource view = DescribePanel(*state_, place);
  EXPECT_EQ(view.threshold_percent, 10);
  EXPECT_EQ(view.scale.range_mm, each.range_mm);
  const int32_t deviceRange_mm = DeviceRangeOf(ShownSettings(*state_), place);
  EXPECT_EQ(ZoomedRange(view.scale.range_mm, deviceRange_mm, WheelTurn::back), each.range_mm);
}

void EchoModes::CompareTextFile(std::string_view file, bool low) {
  uint32_t ping = 0;
  for (; !file.empty(); ++ping) {
    const SentMessage* message = MessageOf(ping + 1, low);
    ASSERT_NE(message, nullptr) << "more than was sent";
    const std::string_view block = file.substr(0, message->sent.size);
    ASSERT_EQ(sim::HashOf({reinterpret_cast<const uint8_t*>(block.data()), block.size()}), message->sent.hash)
        << "ping " << ping + 1 << ": " << block;
    file.remove_prefix(block.size());
    ASSERT_NO_FATAL_FAILURE(test::TakePosition(file, *gps_, positions_));
    ASSERT_TRUE(file.starts_with("\r\n\r\n"));
    file.remove_prefix(4);
  }
  EXPECT_GE(ping, GetParam().pings);
}

void EchoModes::CompareFrameFile(std::string_view file, bool low) {
  uint32_t ping = 0;
  for (; !file.empty(); ++ping) {
    const SentMessage* message = MessageOf(ping + 1, low);
    ASSERT_NE(message, nullptr) << "more than was sent";
    const std::vector<uint16_t> grid = OnGrid(*message, 1);
    ASSERT_GE(file.size(), 88 + 2 * grid.size()) << "a torn frame";
    const auto* frame = reinterpret_cast<const uint8_t*>(file.data());
    EXPECT_EQ(file.substr(0, 8), std::string_view("TR57\x58\0\0\0", 8));
    EXPECT_EQ(file.substr(28, 4), std::string_view("\0\0\0\0", 4)) << "reserved";
    EXPECT_EQ(file.substr(44, 4), std::string_view("\0\0\0\0", 4)) << "reserved";
    ExpectSame(LoadPingHeader(frame), *message);
    ASSERT_EQ(SamplesAt(frame + 88, grid.size()), grid) << "ping " << ping + 1;
    file.remove_prefix(88 + 2 * grid.size());
  }
  EXPECT_GE(ping, GetParam().pings);
}

void EchoModes::CompareFile(std::string_view file, bool low) {
  ASSERT_TRUE(file.starts_with("INFO:"));
  while (file.starts_with("INFO:")) file.remove_prefix(file.find("\r\n") + 2);
  positions_ = 0;
  if (GetParam().IsBinary()) {
    CompareFrameFile(file, low);
  } else {
    CompareTextFile(file, low);
  }
  EXPECT_GT(positions_, GetParam().pings * 9 / 10);
}

TEST_P(EchoModes, EveryPingReachesRingsAndFiles) {
  const Case& each = GetParam();
  sim::SounderOptions options = test::QuickSounder();
  options.family = each.family;
  options.outputMode = each.mode;
  options.dual = each.dual;
  options.frequency_hz = each.frequency_hz;
  options.range_mm = each.range_mm;
  options.delivery_us = 1'000;
  ConnectSounder(options, &account_);
  ConnectGps({});
  ChooseGps();
  StartRun(*state_);
  ASSERT_TRUE(test::Ui().boxes.empty()) << "a box was shown at Start";
  EXPECT_EQ(LoadShared(globals.deviceFamily), static_cast<int32_t>(each.family));
  EXPECT_EQ(LoadShared(globals.dualMode), each.dual ? 1 : 0);
  EXPECT_EQ(state_->settings.outputMode, each.mode);
  EXPECT_EQ(state_->echogramEnabled, 1);
  ExpectViewOfTheHighChannel();

  while (seen_[0] <= each.pings) {
    SleepMilliseconds(20);
    ASSERT_NO_FATAL_FAILURE(Look(*state_->ringA, state_->ringLockA, state_->ringIndexA, false));
    if (each.dual) {
      ASSERT_NO_FATAL_FAILURE(Look(*state_->ringB, state_->ringLockB, state_->ringIndexB, true));
    }
    ASSERT_FALSE(HasFailure());
  }
  EXPECT_GE(seen_[1], each.dual ? each.pings : 0u);
  EXPECT_GT(positions_, each.pings * 9 / 10);

  StopRun(*state_);
  ExpectIdle();
  const std::vector<std::string> files = RecordFiles();
  ASSERT_EQ(files.size(), each.dual ? 2u : 1u);
  // "..._450kHz_..." and "..._200kHz_...": the low frequency's name comes first.
  CompareFile(Content(files.back()), false);
  if (each.dual) CompareFile(Content(files.front()), true);
}

constexpr DeviceFamily kFirst = DeviceFamily::first;
constexpr DeviceFamily kSecond = DeviceFamily::second;
constexpr DeviceFamily kThird = DeviceFamily::third;

INSTANTIATE_TEST_SUITE_P(
    Modes, EchoModes,
    testing::Values(Case{kFirst, 2, "FirstText10"}, Case{kFirst, 2, "FirstText10Dual", true},
                    Case{kFirst, 4, "FirstText12", false, 10'000}, Case{kFirst, 4, "FirstText12Dual", true},
                    Case{kFirst, 100, "FirstBinary"}, Case{kFirst, 100, "FirstBinaryDual", true},
                    Case{kFirst, 101, "FirstCompanded"}, Case{kFirst, 101, "FirstCompandedDual", true},
                    Case{kSecond, 2, "SecondText"}, Case{kSecond, 4, "SecondText200"},
                    Case{kSecond, 5, "SecondText500"}, Case{kSecond, 6, "SecondText1000"},
                    Case{kSecond, 100, "SecondBinary"}, Case{kSecond, 101, "SecondCompanded"},
                    Case{kThird, 2, "ThirdText"}, Case{kThird, 4, "ThirdText200"},
                    Case{kThird, 5, "ThirdText500"}, Case{kThird, 6, "ThirdText1000"},
                    Case{kThird, 100, "ThirdBinary"}, Case{kThird, 101, "ThirdCompanded"},
                    // The low frequency of the first family, in devices of one channel.
                    Case{kSecond, 100, "SecondOf200kHz", false, 200, 200'000, 50'000},
                    Case{kThird, 2, "ThirdOf200kHz", false, 200, 200'000, 50'000}),
    [](const auto& each) { return std::string(each.param.name); });

}  // namespace
}  // namespace tw
