// The acquisition workers of the modes without samples: a line or an epoch becomes a pulse in the ring of its
// channel. That each mode's stream reaches rings and files is shown with the virtual echosounder, end to end.
#include <gtest/gtest.h>

#include "acquisition/altimeter_lines.h"
#include "acquisition/nmea_depth.h"
#include "base/shared_value.h"
#include "tests/acquisition/golden_epochs.h"
#include "tests/acquisition/live_fixture.h"

namespace tw {
namespace {

using test::kFirstEpoch;

class LiveLines : public test::LiveTest {
 protected:
  // The pulse's first non-zero sample in the slot on view; -1 when there is none.
  [[nodiscard]] int32_t PulseAt() {
    const std::vector<uint16_t> samples = SamplesA(kMaxSlotSamples);
    const auto found = std::find_if(samples.begin(), samples.end(), [](uint16_t each) { return each != 0; });
    return found == samples.end() ? -1 : static_cast<int32_t>(found - samples.begin());
  }
};

// What the virtual echosounder never sends: the set low frequency is 30 kHz, the virtual one 33 kHz.
TEST_F(LiveLines, GoToTheRingAndTheFileOfTheirChannel) {
  const std::string alt = "Alt : 4.25\r\n";
  const std::string low = "Hz\r\n 33000\r\nAlt : 5.5\r\n";
  const std::string epoch = "#F 30000 Hz\r\n" + std::string(kFirstEpoch);
  constexpr float kNone = 0;
  const struct {
    const char* what;
    const StreamForm& form;
    bool dual;
    std::string stream;
    float altitudeA_m, altitudeB_m;
    std::string recorded;
    bool inB = false;
  } rows[] = {
      {"dual without frequency", kSimpleStream, true, alt, 4.25f, kNone, alt},
      {"the virtual low", kReportingStream, true, low, kNone, 5.5f, low, true},
      {"low alone", kReportingStream, false, low, 5.5f, kNone, low},
      {"an epoch of the low", kFirstNmeaStream, true, epoch, kNone, 4.25f, "#F 30000 Hz\r\n" + epoch, true},
      {"single DESO has one channel", kDesoStream, false, "DB5.5 m*\r\n", 5.5f, kNone, "DB5.5 m*\r\n"},
      {"between prompts", kAltiTempStream, false, "> \r\n4.25, 11\r\n> ", 4.25f, kNone, "4.25, 11\r\n"},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    globals.dualMode = row.dual ? 1 : 0;
    state_.ringIndexA = 0;
    Record();
    RunWith(row.stream, row.form);
    EXPECT_EQ(program_.IndexA() == 0 ? kNone : PingA().altitude_m, row.altitudeA_m);
    EXPECT_EQ(program_.IndexB() == 0 ? kNone : PingB().altitude_m, row.altitudeB_m);
    const std::string record = row.recorded + test::kNoPosition;
    EXPECT_EQ(program_.FileContent(L"a.log"), "INFO\r\n" + (row.inB ? "" : record));
    EXPECT_EQ(program_.FileContent(L"b.log"), "INFO\r\n" + (row.inB ? record : ""));
  }
}

TEST_F(LiveLines, PingsCountFromOneAcrossRunsAndBothChannelsOfALineShareTheNumber) {
  globals.dualMode = 1;
  RunWith("Dual : 90, 1, 2, 3\r\nDual : 91, 1, 2, 3\r\n", kDualStream);
  EXPECT_EQ(PingA().ping, 2u);
  EXPECT_EQ(PingB().ping, 2u);
  EXPECT_EQ(PingA().txFrequency_hz, 200'000);
  EXPECT_EQ(PingB().txFrequency_hz, 30'000);
  EXPECT_EQ(LoadShared(globals.pingCounter), 2u);
  RunWith("Dual : 1, 1, 2, 3\r\n", kDualStream);
  EXPECT_EQ(PingA().ping, 3u);
}

TEST_F(LiveLines, AnEpochWithoutASentenceKeepsItsValueAndOneWithoutBottomHasDepthZero) {
  const std::string rest = "$SDXDR,A,1.5,P,EMA*2B\r\n";
  Take(kFirstEpoch, kFirstNmeaStream);
  EXPECT_EQ(PulseAt(), 566);  // 4.25 m at 1,500 m/s
  Take("$SDZDA,1\r\n" + rest);
  const PingHeader ping = PingA();
  EXPECT_EQ(ping.ping, 2u);
  EXPECT_EQ(ping.altitude_m, 4.25f);
  EXPECT_EQ(ping.temperature_c, 11.4f);
  EXPECT_EQ(ping.pitch_deg, 2.0f);
  EXPECT_EQ(ping.roll_deg, -1.0f);
  EXPECT_EQ(ping.timeOfWork_s, 1'700'000'000u) << "this computer's clock, not the device's";
  EXPECT_EQ(ping.samplingFrequency_hz, 100'000u);
  EXPECT_EQ(ping.sampleCount, 0u);
  Take("$SDZDA,1\r\n$SDDBT,,f,,M,,F*21\r\n" + rest);
  EXPECT_EQ(PingA().altitude_m, 0.0f);
  EXPECT_EQ(PulseAt(), 0);
}

TEST_F(LiveLines, TheStatusLineGoesByTheRun) {
  const struct {
    const char* what;
    bool dual;
    const StreamForm& form;
    const char* stream;
    const wchar_t* line;
  } rows[] = {
      {"no attitude", false, kAltiTempStream, "4.2506,   -11.25\r\n",
       L"Time:14.11.2023 22:13:20 UTC Ping:1, Altitude:4.251m, Temperature:-11.2\u00B0C"},
      {"dual, no attitude", true, kDualStream, "Dual : 1, 4.2551, 5.5, 11.4\r\n",
       L"Time:14.11.2023 22:13:20, Ping:2, AltitudeH:4.26m, AltitudeL:5.50m, Temperature:11.4\u00B0C"},
      {"dual, the other channel's latest", true, kFirstNmeaStream, kFirstEpoch,
       L"Time:14.11.2023 22:13:20, Ping:3, AltitudeH:4.25m, AltitudeL:5.50m, Temperature:11.4\u00B0C, "
       L"Pitch:2.0\u00B0, Roll:-1.0\u00B0"},
      {"attitude", false, kSecondNmeaStream, test::kSecondEpoch,
       L"Time:14.11.2023 22:13:20 UTC Ping:4, Altitude:4.250m, Temperature:11.4\u00B0C, "
       L"Pitch:2.0\u00B0, Roll:-1.0\u00B0"},
  };
  for (const auto& row : rows) {
    globals.dualMode = row.dual ? 1 : 0;
    RunWith(row.stream, row.form);
    const auto posts = test::TakePostedTexts();
    ASSERT_EQ(posts.size(), 1u) << row.what;
    EXPECT_EQ(posts[0].text, row.line) << row.what;
  }
}

}  // namespace
}  // namespace tw
