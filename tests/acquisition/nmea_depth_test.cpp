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

// One reading of an epoch.
using Parser = SentenceResult (*)(std::string_view, float&);
constexpr Parser kDepth = [](std::string_view epoch, float& depth_m) {
  return ParseDepth(epoch, kFirstFamilyNmea, depth_m);
};
constexpr Parser kSecondDepth = [](std::string_view epoch, float& depth_m) {
  return ParseDepth(epoch, kSecondFamilyNmea, depth_m);
};
constexpr Parser kTemperature = [](std::string_view epoch, float& temperature_c) {
  return ParseWaterTemperature(epoch, kFirstFamilyNmea, temperature_c);
};
constexpr Parser kSecondTemperature = [](std::string_view epoch, float& temperature_c) {
  return ParseWaterTemperature(epoch, kSecondFamilyNmea, temperature_c);
};

TEST(NmeaDepth, DepthTemperatureAndEma) {
  const struct {
    const char* what;
    Parser parse;
    std::string text;
    SentenceResult result;
    float value = kBefore;
  } cases[] = {
      {"depth of an epoch", kDepth, kFirstEpoch, kValue, 4.25f},
      {"wrong checksum", kDepth, "$SDDBT,13.94,f,4.250,M,2.32,F*00\r\n", kValue, 4.25f},
      {"no checksum digits", kDepth, "$SDDBT,13.94,f,4.250,M,2.32,F*\r\n", kValue, 4.25f},
      {"three empty fields: no bottom", kDepth, "$SDDBT,,f,,M,,F*21\r\n", kNoBottom, 0},
      {"one empty field", kDepth, "$SDDBT,13.94,f,4.250,M,,F*00\r\n", kNoBottom, 0},
      {"the first field empty", kDepth, "$SDDBT,,f,4.250,M,2.32,F*00\r\n", kNoBottom, 0},
      {"an empty field of the next sentence", kDepth, "$SDDBT,1,f,2,M,3,F*00\r\n$SDMTW,,*00\r\n", kValue, 2},
      {"the other family's depth", kDepth, "$GPDBT,13.94,f,4.250,M,,*62\r\n", kMissing},
      {"no line end", kDepth, "$SDDBT,13.94,f,4.250,M,2.32,F*39", kMissing},
      {"no line end, empty field", kDepth, "$SDDBT,,f,,M,,F*21", kMissing},
      {"a wrong letter", kDepth, "$SDDBT,13.94,f,4.250,m,2.32,F*39\r\n", kMissing},
      {"no star", kDepth, "$SDDBT,13.94,f,4.250,M,2.32,F\r\n", kMissing},
      {"not a number", kDepth, "$SDDBT,13.94,f,nan,M,2.32,F*39\r\n", kMissing},
      {"infinite", kDepth, "$SDDBT,13.94,f,inf,M,2.32,F*39\r\n", kMissing},
      {"beyond a float", kDepth, "$SDDBT,13.94,f,1e39,M,2.32,F*39\r\n", kMissing},
      {"nothing", kDepth, "", kMissing},
      {"second family's depth", kSecondDepth, kSecondEpoch, kValue, 4.25f},
      {"its checksum is not looked at either", kSecondDepth, "$GPDBT,13.94,f,4.250,M,,*00\r\n", kValue,
       4.25f},
      {"it knows no empty-field test", kSecondDepth, "$GPDBT,,f,,M,,*00\r\n", kMissing},
      {"nor fathoms", kSecondDepth, "$GPDBT,13.94,f,4.250,M,2.32,F*00\r\n", kMissing},
      {"temperature", kTemperature, kFirstEpoch, kValue, 11.4f},
      {"second family's temperature", kSecondTemperature, kSecondEpoch, kValue, 11.4f},
      {"the other family's temperature", kTemperature, kSecondEpoch, kMissing},
      {"empty temperature", kTemperature, "$SDMTW,,*00\r\n", kMissing},
      {"temperature with its unit", kTemperature, "$SDMTW,11.4,C*00\r\n", kMissing},
      {"EMA behind pitch and roll", ParseEma, kFirstEpoch, kValue, 1.5f},
      {"no EMA", ParseEma, "$SDXDR,A,2.0,D,PTCH,A,-1.0,D,ROLL*65\r\n", kMissing},
  };
  for (const auto& each : cases) {
    float value = kBefore;
    EXPECT_EQ(each.parse(each.text, value), each.result) << each.what;
    EXPECT_EQ(value, each.value) << each.what;
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
    const NmeaForms& forms = kFirstFamilyNmea;
  } cases[] = {
      {"EMA stands before it", ema + roll, kValue, 2, -1},
      {"the first of two", ema + roll + later, kValue, 2, -1},
      {"the first of two is broken", "$SDXDR,A,x,D,PTCH,A,-1.0,D,ROLL*65\r\n" + later, kMissing},
      {"EMA alone", ema, kMissing},
      {"no line end", ema + "$SDXDR,A,2.0,D,PTCH,A,-1.0,D,ROLL*65", kMissing},
      {"roll is no number", "$SDXDR,A,2.0,D,PTCH,A,,D,ROLL*65\r\n", kMissing},
      {"the other family's", kSecondEpoch, kMissing},
      {"second family", kSecondEpoch, kValue, 2, -1, kSecondFamilyNmea},
  };
  for (const auto& each : cases) {
    float pitch_deg = kBefore;
    float roll_deg = kBefore;
    EXPECT_EQ(ParsePitchRoll(each.text, each.forms, pitch_deg, roll_deg), each.result) << each.what;
    EXPECT_EQ(pitch_deg, each.pitch) << each.what;
    EXPECT_EQ(roll_deg, each.roll) << each.what;
  }
}

TEST(NmeaDepth, DeviceTime) {
  DeviceTime time{};
  ASSERT_EQ(ParseDeviceTime(kFirstEpoch, time), kValue);
  EXPECT_EQ(time.milliseconds, 780u);
  const CalendarTime& calendar = time.calendar;
  EXPECT_EQ(calendar.year * 10'000 + calendar.month * 100 + calendar.day, 20'261'116);
  EXPECT_EQ(calendar.hour * 10'000 + calendar.minute * 100 + calendar.second, 123'456);

  const struct {
    const char* what;
    std::string text;
    SentenceResult result;
    uint32_t unix_s = 7;  // what stood there before
  } cases[] = {
      {"epoch", kFirstEpoch, kValue, 1'794'832'496},
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
  for (const auto& each : cases) {
    DeviceTime read{.unix_s = 7, .calendar = {}, .milliseconds = 0};
    EXPECT_EQ(ParseDeviceTime(each.text, read), each.result) << each.what;
    EXPECT_EQ(read.unix_s, each.unix_s) << each.what;
  }
}

TEST(NmeaDepth, FrequencyLine) {
  int32_t frequency_hz = 7;
  for (const char* none : {kFirstEpoch, "#F Hz\r\n", "#F 99999999999 Hz\r\n"}) {
    EXPECT_FALSE(ParseFrequencyLine(none, frequency_hz)) << none;
  }
  EXPECT_EQ(frequency_hz, 7);
  EXPECT_TRUE(ParseFrequencyLine(kReportingEpoch, frequency_hz));
  EXPECT_EQ(frequency_hz, 200'000);
}

TEST(NmeaDepth, ACutEpochHasNoHalfValues) {
  const std::string_view epoch(kFirstEpoch);
  for (size_t length = 0; length <= epoch.size(); ++length) {
    float depth_m = kBefore;
    const bool whole = length >= epoch.find("$SDXDR");
    EXPECT_EQ(ParseDepth(epoch.substr(0, length), kFirstFamilyNmea, depth_m), whole ? kValue : kMissing)
        << length;
    EXPECT_EQ(depth_m, whole ? 4.25f : kBefore) << length;
  }
}

}  // namespace
}  // namespace tw
