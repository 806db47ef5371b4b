// The acquisition workers of the modes without samples, on the virtual clock: a line or an epoch becomes a
// pulse in the ring of its channel and a record in the file that the mode has for it.
#include <gtest/gtest.h>

#include "acquisition/altimeter_worker.h"
#include "acquisition/nmea_worker.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/host/virtual_clock.h"
#include "tests/acquisition/golden_epochs.h"
#include "tests/acquisition/live_program.h"
#include "tests/acquisition/scripted_line.h"

namespace tw {
namespace {

using test::kFirstEpoch;
using test::kReportingEpoch;
using test::kSecondEpoch;
using test::LiveProgram;
using test::ScriptedLine;

constexpr int64_t kBegin_ms = 1'700'000'000'000;
constexpr float kNothing = -1;  // no ping came to the channel

// What stands behind each ping while there is no fix at all.
const std::string kPosition =
    "$GPGGA,000000.00,00.0000,S,00.0000,W,0,00,0.0,0.000,M,0.000,M,0.0,0000*4c\r\n"
    "$GPRMC,000000.00,V,00.0000,S,00.0000,W,0.0,0.0,000100,0.0,W,A*0e\r\n";

const std::string kLowEpoch =
    "#F 30000 Hz\r\n" + std::string(kFirstEpoch).replace(std::string(kFirstEpoch).find("4.250"), 5, "5.500");
// Of the low frequency: 30 kHz, or the virtual one of 33 kHz.
const std::string kLowLine = "Hz\r\n 33000\r\nAlt : 5.5\r\n";

struct Case {
  friend void PrintTo(const Case& each, std::ostream* out) { *out << each.what; }
  const char* what;
  ThreadBody worker;
  bool dual;
  std::string stream;
  float altitudeA_m;
  float altitudeB_m;
  float temperature_c;
  std::string fileA;
  std::string fileB;
};

class LiveLines : public testing::TestWithParam<Case> {
 protected:
  const VirtualClock clock_{kBegin_ms};
  ScriptedLine device_;
  LiveProgram program_{device_};
  AppState& state_ = program_.State();
};

// The pulse's first non-zero sample; -1 when there is none.
int32_t PulseAt(const PingRing& ring, int32_t index) {
  for (int32_t i = 0; i < static_cast<int32_t>(kMaxSlotSamples); ++i) {
    const uint8_t* sample = ring.slots[index] + 728 + 2 * i;
    if ((sample[0] | sample[1] << 8) != 0) return i;
  }
  return -1;
}

void ExpectPing(const PingRing& ring, int32_t index, float altitude_m, float temperature_c) {
  const PingHeader ping = LoadPingHeader(ring.slots[index]);
  if (altitude_m == kNothing) {
    EXPECT_EQ(ping.ping, 0u);
    return;
  }
  EXPECT_EQ(ping.altitude_m, altitude_m);
  EXPECT_EQ(ping.temperature_c, temperature_c);
  EXPECT_EQ(ping.samplingFrequency_hz, 100'000u);
  EXPECT_EQ(ping.sampleCount, 0u);
  EXPECT_EQ(PulseAt(ring, index), altitude_m == 4.25f ? 566 : 733);  // 5.5 m at 1,500 m/s: 733
}

TEST_P(LiveLines, FillRingsAndFiles) {
  const Case& each = GetParam();
  globals.dualMode = each.dual ? 1 : 0;
  program_.OpenFile(RecordChannel::a, L"a.log");
  program_.OpenFile(RecordChannel::b, L"b.log");
  Signal(state_.recordingEvent);
  device_.At_ms(100, each.stream);
  program_.StartWorker(each.worker);
  SleepMilliseconds(200);
  program_.StopWorker();
  ExpectPing(*state_.ringA, program_.IndexA(), each.altitudeA_m, each.temperature_c);
  ExpectPing(*state_.ringB, program_.IndexB(), each.altitudeB_m, each.temperature_c);
  EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n" + each.fileA);
  EXPECT_EQ(program_.FileContent(L"b.log"), "INFO\r\n" + each.fileB);
}

std::string Recorded(const std::string& ping) {
  return ping + kPosition;
}

INSTANTIATE_TEST_SUITE_P(
    Modes, LiveLines,
    testing::Values(
        Case{"simple", SimpleWorker, false, "Alt : 4.25\r\n", 4.25f, kNothing, 0, Recorded("Alt : 4.25\r\n"),
             ""},
        Case{"simple dual without frequency", SimpleWorker, true, "Alt : 4.25\r\n", 4.25f, kNothing, 0,
             Recorded("Alt : 4.25\r\n"), ""},
        Case{"reporting dual", ReportingSimpleWorker, true, kLowLine + "Hz\r\n 200000\r\nAlt : 4.25\r\n",
             4.25f, 5.5f, 0, Recorded("Hz\r\n 200000\r\nAlt : 4.25\r\n"), Recorded(kLowLine)},
        Case{"reporting single", ReportingSimpleWorker, false, kLowLine, 5.5f, kNothing, 0,
             Recorded(kLowLine), ""},
        Case{"NMEA", FirstFamilyNmeaWorker, false, kFirstEpoch, 4.25f, kNothing, 11.4f,
             Recorded("#F 200000 Hz\r\n" + std::string(kFirstEpoch)), ""},
        Case{"NMEA dual", FirstFamilyNmeaWorker, true, kLowEpoch + kReportingEpoch, 4.25f, 5.5f, 11.4f,
             Recorded("#F 200000 Hz\r\n" + std::string(kReportingEpoch)),
             Recorded("#F 30000 Hz\r\n" + kLowEpoch)},
        Case{"NMEA second family", SecondFamilyNmeaWorker, false, kSecondEpoch, 4.25f, kNothing, 11.4f,
             Recorded("#F 200000 Hz\r\n" + std::string(kSecondEpoch)), ""},
        Case{"DESO dual", Deso25Worker, true, "DB5.5 m*\r\nDA4.25 m*\r\n", 4.25f, 5.5f, 0,
             Recorded("DB5.5 m*\r\n") + Recorded("DA4.25 m*\r\n"), ""},
        Case{"DESO single has one channel", Deso25Worker, false, "DA4.25 m*DB5.5 m*", 5.5f, kNothing, 0,
             Recorded("DA4.25 m*\r\n") + Recorded("DB5.5 m*\r\n"), ""},
        Case{"dual text", DualTextWorker, true, "Dual : 1, 4.25, 5.5, 11.4\r\n", 4.25f, 5.5f, 11.4f,
             Recorded("Dual : 1, 4.25, 5.5, 11.4\r\n"), ""},
        Case{"dual text single", DualTextWorker, false, "Dual : 1, 4.25, 5.5, 11.4\r\n", 4.25f, kNothing,
             11.4f, Recorded("Dual : 1, 4.25, 5.5, 11.4\r\n"), ""},
        Case{"DFX dual", SonarmiteDfxWorker, true, "1 4.25 5.5 0 0 0\r\n", 4.25f, 5.5f, 0,
             Recorded("1 4.25 5.5 0 0 0\r\n"), ""},
        Case{"DFX", SonarmiteDfxWorker, false, "1 4.25 5.5 0 0 0\r\n", 4.25f, kNothing, 0,
             Recorded("1 4.25 5.5 0 0 0\r\n"), ""},
        Case{"OLD", SonarmiteOldWorker, false, "1 4.25 0 0 0 12.1 0 0\r\n", 4.25f, kNothing, 0,
             Recorded("1 4.25 0 0 0 12.1 0 0\r\n"), ""},
        Case{"PSA", Psa916Worker, false, "R4.25\r\n", 4.25f, kNothing, 0, Recorded("R4.25\r\n"), ""},
        Case{"AltiPlusTemp", AltiPlusTempWorker, false, "> \r\n4.25,   11.4\r\n", 4.25f, kNothing, 11.4f,
             Recorded("4.25,   11.4\r\n"), ""}),
    [](const auto& each) {
      std::string name = each.param.what;
      for (char& c : name) c = c == ' ' ? '_' : c;
      return name;
    });

using LiveLine = LiveLines;

TEST_F(LiveLine, PingsCountFromOneAcrossRunsAndBothChannelsOfALineShareTheNumber) {
  globals.dualMode = 1;
  device_.At_ms(100, "Dual : 90, 1, 2, 3\r\nDual : 91, 1, 2, 3\r\n");
  program_.StartWorker(DualTextWorker);
  SleepMilliseconds(200);
  program_.StopWorker();
  EXPECT_EQ(program_.HeaderA(program_.IndexA()).ping, 2u);
  EXPECT_EQ(program_.HeaderB(program_.IndexB()).ping, 2u);
  EXPECT_EQ(LoadShared(globals.pingCounter), 2u);
  device_.At_ms(500, "Dual : 1, 1, 2, 3\r\n");
  program_.StartWorker(DualTextWorker);
  SleepMilliseconds(500);
  program_.StopWorker();
  EXPECT_EQ(program_.HeaderA(program_.IndexA()).ping, 3u);
}

TEST_F(LiveLine, AnEpochWithoutASentenceKeepsItsValueAndOneWithoutBottomHasDepthZero) {
  const std::string rest = "$SDXDR,A,1.5,P,EMA*2B\r\n";
  device_.At_ms(100, kFirstEpoch);
  device_.At_ms(300, "$SDZDA,1\r\n" + rest);
  program_.StartWorker(FirstFamilyNmeaWorker);
  SleepMilliseconds(400);
  PingHeader ping = program_.HeaderA(program_.IndexA());
  EXPECT_EQ(ping.ping, 2u);
  EXPECT_EQ(ping.altitude_m, 4.25f);
  EXPECT_EQ(ping.temperature_c, 11.4f);
  EXPECT_EQ(ping.pitch_deg, 2.0f);
  EXPECT_EQ(ping.roll_deg, -1.0f);
  EXPECT_EQ(ping.timeOfWork_s, 1'700'000'000u) << "this computer's clock, not the device's";
  device_.At_ms(500, "$SDZDA,1\r\n$SDDBT,,f,,M,,F*21\r\n" + rest);
  SleepMilliseconds(200);
  EXPECT_EQ(program_.HeaderA(program_.IndexA()).altitude_m, 0.0f);
  EXPECT_EQ(PulseAt(*state_.ringA, program_.IndexA()), 0);
}

TEST_F(LiveLine, StatusLinesOfSingleAndDualRuns) {
  device_.At_ms(100, "4.25,   11.4\r\n");
  program_.StartWorker(AltiPlusTempWorker);
  SleepMilliseconds(200);
  program_.StopWorker();
  globals.dualMode = 1;
  device_.At_ms(300, "Dual : 1, 4.25, 5.5, 11.4\r\n");
  program_.StartWorker(DualTextWorker);
  SleepMilliseconds(200);
  program_.StopWorker();
  device_.At_ms(500, kFirstEpoch);
  program_.StartWorker(FirstFamilyNmeaWorker);
  SleepMilliseconds(200);
  program_.StopWorker();
  globals.dualMode = 0;
  device_.At_ms(700, kSecondEpoch);
  program_.StartWorker(SecondFamilyNmeaWorker);
  SleepMilliseconds(200);
  const auto posts = test::TakePostedTexts();
  ASSERT_EQ(posts.size(), 4u);
  EXPECT_EQ(posts[0].text, L"Time:14.11.2023 22:13:20 UTC Ping:1, Altitude:4.250m, Temperature:11.4\u00B0C");
  EXPECT_EQ(posts[1].text,
            L"Time:14.11.2023 22:13:20, Ping:2, AltitudeH:4.25m, AltitudeL:5.50m, Temperature:11.4\u00B0C");
  EXPECT_EQ(posts[2].text,
            L"Time:14.11.2023 22:13:20, Ping:3, AltitudeH:4.25m, AltitudeL:5.50m, Temperature:11.4\u00B0C, "
            L"Pitch:2.0\u00B0, Roll:-1.0\u00B0");
  EXPECT_EQ(posts[3].text,
            L"Time:14.11.2023 22:13:20 UTC Ping:4, Altitude:4.250m, Temperature:11.4\u00B0C, "
            L"Pitch:2.0\u00B0, Roll:-1.0\u00B0");
}

TEST_F(LiveLine, AnAltitudeThatFitsNoSlotIsAPingWithoutPulse) {
  device_.At_ms(100, "Alt : 1e38\r\nAlt : nan\r\n");
  program_.StartWorker(SimpleWorker);
  SleepMilliseconds(150);
  EXPECT_EQ(program_.HeaderA(program_.IndexA()).altitude_m, 1e38f);
  EXPECT_EQ(PulseAt(*state_.ringA, program_.IndexA()), -1);
  EXPECT_EQ(LoadShared(globals.pingCounter), 1u) << "not a number is no ping";
  device_.At_ms(300, "Alt : -3\r\n");
  SleepMilliseconds(250);
  EXPECT_EQ(program_.HeaderA(program_.IndexA()).altitude_m, -3.0f);
  EXPECT_EQ(PulseAt(*state_.ringA, program_.IndexA()), -1);
}

TEST_F(LiveLine, StopIsHeardInEndlessGarbage) {
  for (const ThreadBody worker : {Deso25Worker, SonarmiteOldWorker, FirstFamilyNmeaWorker}) {
    const int64_t now_ms = VirtualNow_us() / 1'000;
    for (int64_t time_ms = now_ms; time_ms < now_ms + 1'500; ++time_ms) {
      device_.At_ms(time_ms, "DA 1 #F $SDZDA garbage 1 1 1");
    }
    program_.StartWorker(worker);
    SleepMilliseconds(1'000);
    const int64_t begin_us = VirtualNow_us();
    program_.StopWorker();
    EXPECT_LE(VirtualNow_us() - begin_us, 102'000);
    SleepMilliseconds(1'000);
  }
}

}  // namespace
}  // namespace tw
