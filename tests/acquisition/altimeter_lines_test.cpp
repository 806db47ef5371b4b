#include "acquisition/altimeter_lines.h"

#include <gtest/gtest.h>

#include <string>

namespace tw {
namespace {

using Parser = bool (*)(std::string_view, AltimeterValues&);

constexpr float kBefore = 99.5f;

AltimeterValues Before() {
  return {.altitude_m = kBefore,
          .temperature_c = kBefore,
          .hasAltitudeLow = true,
          .altitudeLow_m = kBefore,
          .secondChannel = true,
          .hasFrequency = true,
          .frequency_hz = 7};
}

// What a line without any flag says: altitude and, perhaps, temperature.
AltimeterValues Told(float altitude_m, float temperature_c = kBefore) {
  return {.altitude_m = altitude_m,
          .temperature_c = temperature_c,
          .hasAltitudeLow = false,
          .altitudeLow_m = kBefore,
          .secondChannel = false,
          .hasFrequency = false,
          .frequency_hz = 7};
}

AltimeterValues WithLow(AltimeterValues values, float low_m) {
  values.hasAltitudeLow = true;
  values.altitudeLow_m = low_m;
  return values;
}

AltimeterValues OfSecondChannel(float altitude_m) {
  AltimeterValues values = Told(altitude_m);
  values.secondChannel = true;
  return values;
}

AltimeterValues WithFrequency(float altitude_m, int32_t frequency_hz) {
  AltimeterValues values = Told(altitude_m);
  values.hasFrequency = true;
  values.frequency_hz = frequency_hz;
  return values;
}

void ExpectSame(const AltimeterValues& read, const AltimeterValues& told, const char* what) {
  EXPECT_EQ(read.altitude_m, told.altitude_m) << what;
  EXPECT_EQ(read.temperature_c, told.temperature_c) << what;
  EXPECT_EQ(read.hasAltitudeLow, told.hasAltitudeLow) << what;
  EXPECT_EQ(read.altitudeLow_m, told.altitudeLow_m) << what;
  EXPECT_EQ(read.secondChannel, told.secondChannel) << what;
  EXPECT_EQ(read.hasFrequency, told.hasFrequency) << what;
  EXPECT_EQ(read.frequency_hz, told.frequency_hz) << what;
}

TEST(AltimeterLines, SayTheirValues) {
  const struct {
    const char* what;
    Parser parse;
    std::string line;
    AltimeterValues told;
  } cases[] = {
      {"simple", ParseSimple, "Alt : 4.250\r\n", Told(4.25f)},
      {"simple, what follows the number does not matter", ParseSimple, "Alt : -4.25 m?\r\n", Told(-4.25f)},
      {"frequency", ParseSimple, "Hz\r\n 200000.0\r\nAlt : 4.25\r\n", WithFrequency(4.25f, 200'000)},
      {"no frequency", ParseSimple, "Hz\r\n x\r\nAlt : 4.25\r\n", Told(4.25f)},
      {"absurd frequency", ParseSimple, "Hz\r\n 1e30\r\nAlt : 4.25\r\n", Told(4.25f)},
      {"negative frequency", ParseSimple, "Hz\r\n -1\r\nAlt : 4.25\r\n", Told(4.25f)},
      {"DESO first", ParseDeso, "DA 4.25 m*", Told(4.25f)},
      {"DESO first, no blank", ParseDeso, "DA4.25 m*", Told(4.25f)},
      {"DESO second", ParseDeso, "DB  12.31 m*", OfSecondChannel(12.31f)},
      {"dual", ParseDual, "Dual : 17, 4.250, 4.310, 11.40\r\n", WithLow(Told(4.25f, 11.4f), 4.31f)},
      {"dual, short", ParseDual, "Dual : 17, 4.250, 4.310\r\n", WithLow(Told(4.25f), 4.31f)},
      {"dual, shorter", ParseDual, "Dual : 17, 4.250,x 4.310, 11.40\r\n", Told(4.25f)},
      {"DFX", ParseSonarmiteDfx, "1 4.25 4.31 0.00 0.00 0\r\n", WithLow(Told(4.25f), 4.31f)},
      {"DFX, short", ParseSonarmiteDfx, "1 4.25\r\n", Told(4.25f)},
      {"OLD", ParseSonarmiteOld, "1 4.25 0 0 0 12.10 0 0\r\n", Told(4.25f)},
      {"PSA-916", ParsePsa916, "R4.25\r\n", Told(4.25f)},
      {"PSA-916, padded", ParsePsa916, "R 004.25\r\n", Told(4.25f)},
      {"AltiPlusTemp", ParseAltiPlusTemp, "4.250,   11.40\r\n", Told(4.25f, 11.4f)},
      {"AltiPlusTemp, other blanks", ParseAltiPlusTemp, " 4.250,-1.5\r\n", Told(4.25f, -1.5f)},
  };
  for (const auto& each : cases) {
    AltimeterValues values = Before();
    EXPECT_TRUE(each.parse(each.line, values)) << each.what;
    ExpectSame(values, each.told, each.what);
  }
}

TEST(AltimeterLines, ALineWithoutItsMandatoryNumbersIsNoPing) {
  const struct {
    const char* what;
    Parser parse;
    std::string line;
  } cases[] = {
      {"simple, no number", ParseSimple, "Alt : \r\n"},
      {"simple, not a number", ParseSimple, "Alt : nan\r\n"},
      {"simple, infinite", ParseSimple, "Alt : -inf\r\n"},
      {"simple, beyond a float", ParseSimple, "Alt : 1e39\r\n"},
      {"a frequency alone", ParseSimple, "Hz\r\n 200000.0\r\n"},
      {"DESO, no number", ParseDeso, "DA m*"},
      {"DESO, another channel", ParseDeso, "DC 4.25 m*"},
      {"dual, no number of its own", ParseDual, "Dual : x, 4.25, 4.31, 11.4\r\n"},
      {"dual, no altitude", ParseDual, "Dual : 17\r\n"},
      {"DFX, another beginning", ParseSonarmiteDfx, "2 4.25 4.31 0.00 0.00 0\r\n"},
      {"DFX, no altitude", ParseSonarmiteDfx, "1 \r\n"},
      {"OLD, the number runs on", ParseSonarmiteOld, "14.25 0 0 0 12.10 0 0\r\n"},
      {"PSA-916, a sentence with R", ParsePsa916, "RMC,000000.00,V\r\n"},
      {"AltiPlusTemp, no temperature", ParseAltiPlusTemp, "4.250\r\n"},
      {"AltiPlusTemp, another separator", ParseAltiPlusTemp, "4.250;   11.40\r\n"},
      {"AltiPlusTemp, another line", ParseAltiPlusTemp, "$GPGGA,000000.00\r\n"},
  };
  for (const auto& each : cases) {
    AltimeterValues values = Before();
    EXPECT_FALSE(each.parse(each.line, values)) << each.what;
    ExpectSame(values, Before(), each.what);
  }
  for (const Parser parse : {ParseSimple, ParseDeso, ParseDual, ParseSonarmiteDfx, ParseSonarmiteOld,
                             ParsePsa916, ParseAltiPlusTemp}) {
    AltimeterValues values = Before();
    EXPECT_FALSE(parse("", values));
    EXPECT_FALSE(parse("\r\n", values));
    ExpectSame(values, Before(), "empty line");
  }
}

}  // namespace
}  // namespace tw
