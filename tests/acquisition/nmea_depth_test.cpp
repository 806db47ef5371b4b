#include "acquisition/nmea_depth.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/acquisition/golden_epochs.h"

namespace tw {
namespace {

using test::kFirstEpoch;
using test::kReportingEpoch;
using test::kSecondEpoch;

constexpr float kBefore = 99.5f;  // what a target holds before a parser is asked
constexpr auto kValue = SentenceResult::value;
constexpr auto kMissing = SentenceResult::missing;
constexpr auto kNoBottom = SentenceResult::noBottom;

struct Sentence {
  const char* what;
  std::string text;
  SentenceResult result;
  float value = kBefore;
};

TEST(NmeaDepth, FirstFamily) {
  const Sentence cases[] = {
      {"whole epoch", kFirstEpoch, kValue, 4.25f},
      {"wrong checksum", "$SDDBT,13.94,f,4.250,M,2.32,F*00\r\n", kValue, 4.25f},
      {"no checksum digits", "$SDDBT,13.94,f,4.250,M,2.32,F*\r\n", kValue, 4.25f},
      {"three empty fields: no bottom", "$SDDBT,,f,,M,,F*21\r\n", kNoBottom, 0},
      {"one empty field", "$SDDBT,13.94,f,4.250,M,,F*00\r\n", kNoBottom, 0},
      {"the first field empty", "$SDDBT,,f,4.250,M,2.32,F*00\r\n", kNoBottom, 0},
      {"an empty field of the next sentence", "$SDDBT,1,f,2,M,3,F*00\r\n$SDMTW,,*00\r\n", kValue, 2},
      {"no such sentence", "$GPDBT,13.94,f,4.250,M,,*62\r\n", kMissing},
      {"no line end", "$SDDBT,13.94,f,4.250,M,2.32,F*39", kMissing},
      {"no line end, empty field", "$SDDBT,,f,,M,,F*21", kMissing},
      {"a wrong letter", "$SDDBT,13.94,f,4.250,m,2.32,F*39\r\n", kMissing},
      {"no star", "$SDDBT,13.94,f,4.250,M,2.32,F\r\n", kMissing},
      {"not a number", "$SDDBT,13.94,f,nan,M,2.32,F*39\r\n", kMissing},
      {"infinite", "$SDDBT,13.94,f,inf,M,2.32,F*39\r\n", kMissing},
      {"beyond a float", "$SDDBT,13.94,f,1e39,M,2.32,F*39\r\n", kMissing},
      {"nothing", "", kMissing},
  };
  for (const Sentence& each : cases) {
    float depth_m = kBefore;
    EXPECT_EQ(ParseDepth(each.text, kFirstFamilyNmea, depth_m), each.result) << each.what;
    EXPECT_EQ(depth_m, each.value) << each.what;
  }
}

TEST(NmeaDepth, SecondFamilyKnowsNoEmptyFieldTest) {
  const Sentence cases[] = {
      {"whole epoch", kSecondEpoch, kValue, 4.25f},
      {"wrong checksum", "$GPDBT,13.94,f,4.250,M,,*00\r\n", kValue, 4.25f},
      {"empty depth", "$GPDBT,,f,,M,,*00\r\n", kMissing},
      {"with fathoms", "$GPDBT,13.94,f,4.250,M,2.32,F*00\r\n", kMissing},
      {"the other family's", kFirstEpoch, kMissing},
  };
  for (const Sentence& each : cases) {
    float depth_m = kBefore;
    EXPECT_EQ(ParseDepth(each.text, kSecondFamilyNmea, depth_m), each.result) << each.what;
    EXPECT_EQ(depth_m, each.value) << each.what;
  }
}

TEST(NmeaDepth, PitchAndRollComeFromTheFirstSentenceWithRoll) {
  const std::string ema = "$SDXDR,A,1.5,P,EMA*2B\r\n";
  const std::string roll = "$SDXDR,A,2.0,D,PTCH,A,-1.0,D,ROLL*65\r\n";
  const std::string later = "$SDXDR,A,7.0,D,PTCH,A,8.0,D,ROLL*00\r\n";
  const struct {
    const char* what;
    std::string text;
    SentenceResult result;
    float pitch = kBefore;
    float roll = kBefore;
  } cases[] = {
      {"EMA stands before it", ema + roll, kValue, 2, -1},
      {"the first of two", ema + roll + later, kValue, 2, -1},
      {"the first of two is broken", "$SDXDR,A,x,D,PTCH,A,-1.0,D,ROLL*65\r\n" + later, kMissing},
      {"EMA alone", ema, kMissing},
      {"no line end", ema + "$SDXDR,A,2.0,D,PTCH,A,-1.0,D,ROLL*65", kMissing},
      {"roll is no number", "$SDXDR,A,2.0,D,PTCH,A,,D,ROLL*65\r\n", kMissing},
      {"no sentence at all", kSecondEpoch, kMissing},
  };
  for (const auto& each : cases) {
    float pitch_deg = kBefore;
    float roll_deg = kBefore;
    EXPECT_EQ(ParsePitchRoll(each.text, kFirstFamilyNmea, pitch_deg, roll_deg), each.result) << each.what;
    EXPECT_EQ(pitch_deg, each.pitch) << each.what;
    EXPECT_EQ(roll_deg, each.roll) << each.what;
  }
  float pitch_deg = kBefore;
  float roll_deg = kBefore;
  EXPECT_EQ(ParsePitchRoll(kSecondEpoch, kSecondFamilyNmea, pitch_deg, roll_deg), kValue);
  EXPECT_EQ(pitch_deg, 2.0f);
  EXPECT_EQ(roll_deg, -1.0f);
}

TEST(NmeaDepth, TemperatureAndEma) {
  float value = kBefore;
  EXPECT_EQ(ParseWaterTemperature(kFirstEpoch, kFirstFamilyNmea, value), kValue);
  EXPECT_EQ(value, 11.4f);
  value = kBefore;
  EXPECT_EQ(ParseWaterTemperature(kSecondEpoch, kSecondFamilyNmea, value), kValue);
  EXPECT_EQ(value, 11.4f);
  value = kBefore;
  EXPECT_EQ(ParseWaterTemperature(kSecondEpoch, kFirstFamilyNmea, value), kMissing);
  EXPECT_EQ(ParseWaterTemperature("$SDMTW,,*00\r\n", kFirstFamilyNmea, value), kMissing);
  EXPECT_EQ(ParseWaterTemperature("$SDMTW,11.4,C*00\r\n", kFirstFamilyNmea, value), kMissing);
  EXPECT_EQ(ParseEma("$SDXDR,A,2.0,D,PTCH,A,-1.0,D,ROLL*65\r\n", value), kMissing);
  EXPECT_EQ(value, kBefore);
  EXPECT_EQ(ParseEma(kFirstEpoch, value), kValue);
  EXPECT_EQ(value, 1.5f);
}

TEST(NmeaDepth, DeviceTime) {
  DeviceTime time{};
  ASSERT_EQ(ParseDeviceTime(kFirstEpoch, time), kValue);
  EXPECT_EQ(time.unix_s, 1'794'832'496u);
  EXPECT_EQ(time.milliseconds, 780u);
  const CalendarTime& calendar = time.calendar;
  EXPECT_EQ(calendar.year * 10'000 + calendar.month * 100 + calendar.day, 20'261'116);
  EXPECT_EQ(calendar.hour * 10'000 + calendar.minute * 100 + calendar.second, 123'456);

  const Sentence cases[] = {
      {"first moment", "$SDZDA,000000.00,1,1,1970,00,00,*00\r\n", kValue, 0},
      {"leap day", "$SDZDA,000000.00,29,2,2024,00,00,*00\r\n", kValue, 1'709'164'800},
      {"no comma before the star", "$SDZDA,123456.78,16,11,2026,00,00*43\r\n", kMissing},
      {"a zone", "$SDZDA,123456.78,16,11,2026,01,00,*43\r\n", kMissing},
      {"no hundredths", "$SDZDA,123456,16,11,2026,00,00,*43\r\n", kMissing},
      {"hour 24", "$SDZDA,243456.78,16,11,2026,00,00,*43\r\n", kMissing},
      {"minute 60", "$SDZDA,126056.78,16,11,2026,00,00,*43\r\n", kMissing},
      {"month 0", "$SDZDA,123456.78,16,0,2026,00,00,*43\r\n", kMissing},
      {"month 13", "$SDZDA,123456.78,16,13,2026,00,00,*43\r\n", kMissing},
      {"31 June", "$SDZDA,123456.78,31,6,2026,00,00,*43\r\n", kMissing},
      {"29 February 2025", "$SDZDA,123456.78,29,2,2025,00,00,*43\r\n", kMissing},
      {"1969", "$SDZDA,123456.78,16,11,1969,00,00,*43\r\n", kMissing},
      {"beyond 32 bits", "$SDZDA,123456.78,16,11,2106,00,00,*43\r\n", kMissing},
      {"beyond an int", "$SDZDA,123456.78,99999999999,11,2026,00,00,*43\r\n", kMissing},
      {"no line end", "$SDZDA,123456.78,16,11,2026,00,00,*43", kMissing},
  };
  for (const Sentence& each : cases) {
    DeviceTime read{.unix_s = 7, .calendar = {}, .milliseconds = 0};
    EXPECT_EQ(ParseDeviceTime(each.text, read), each.result) << each.what;
    EXPECT_EQ(read.unix_s, each.result == kValue ? static_cast<uint32_t>(each.value) : 7u) << each.what;
  }
}

TEST(NmeaDepth, FrequencyLine) {
  int32_t frequency_hz = 7;
  EXPECT_FALSE(ParseFrequencyLine(kFirstEpoch, frequency_hz));
  EXPECT_FALSE(ParseFrequencyLine("#F Hz\r\n", frequency_hz));
  EXPECT_FALSE(ParseFrequencyLine("#F 99999999999 Hz\r\n", frequency_hz));
  EXPECT_EQ(frequency_hz, 7);
  EXPECT_TRUE(ParseFrequencyLine(kReportingEpoch, frequency_hz));
  EXPECT_EQ(frequency_hz, 200'000);
}

TEST(NmeaDepth, ACutEpochHasNoHalfValues) {
  const std::string_view epoch(kFirstEpoch);
  for (size_t length = 0; length <= epoch.size(); ++length) {
    const std::string_view cut = epoch.substr(0, length);
    float depth_m = kBefore;
    EXPECT_EQ(ParseDepth(cut, kFirstFamilyNmea, depth_m) == kValue, length >= epoch.find("$SDXDR")) << length;
    EXPECT_TRUE(depth_m == kBefore || depth_m == 4.25f) << length;
  }
}

}  // namespace
}  // namespace tw
