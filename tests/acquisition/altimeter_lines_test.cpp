#include "acquisition/altimeter_lines.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace tw {
namespace {

using Parser = bool (*)(std::string_view, AltimeterValues&);

constexpr float kBefore = 99.5f;
constexpr AltimeterValues kPrevious = {.altitude_m = kBefore,
                                       .temperature_c = kBefore,
                                       .hasAltitudeLow = true,
                                       .altitudeLow_m = kBefore,
                                       .secondChannel = true,
                                       .hasFrequency = true,
                                       .frequency_hz = 7};

auto ValuesOf(const AltimeterValues& values) {
  const auto& [altitude, temperature, hasLow, low, second, hasFrequency, frequency] = values;
  return std::tuple(altitude, temperature, hasLow, low, second, hasFrequency, frequency);
}

TEST(AltimeterLines, SayTheirValues) {
  const struct {
    const char* what;
    Parser parse;
    std::string line;
    float altitude_m;
    float temperature_c = kBefore;
    float low_m = kBefore;     // else the line has one
    int32_t frequency_hz = 7;  // else the line has one
    bool second = false;
  } cases[] = {
      {"simple", ParseSimple, "Alt : 4.250\r\n", 4.25f},
      {"simple, what follows the number does not matter", ParseSimple, "Alt : -4.25 m?\r\n", -4.25f},
      {"frequency", ParseSimple, "Hz\r\n 200000.0\r\nAlt : 4.25\r\n", 4.25f, kBefore, kBefore, 200'000},
      {"no frequency", ParseSimple, "Hz\r\n x\r\nAlt : 4.25\r\n", 4.25f},
      {"absurd frequency", ParseSimple, "Hz\r\n 1e30\r\nAlt : 4.25\r\n", 4.25f},
      {"negative frequency", ParseSimple, "Hz\r\n -1\r\nAlt : 4.25\r\n", 4.25f},
      {"DESO first", ParseDeso, "DA 4.25 m*", 4.25f},
      {"DESO first, no blank", ParseDeso, "DA4.25 m*", 4.25f},
      {"DESO second", ParseDeso, "DB  12.31 m*", 12.31f, kBefore, kBefore, 7, true},
      {"dual", ParseDual, "Dual : 17, 4.250, 4.310, 11.40\r\n", 4.25f, 11.4f, 4.31f},
      {"dual, short", ParseDual, "Dual : 17, 4.250, 4.310\r\n", 4.25f, kBefore, 4.31f},
      {"dual, shorter", ParseDual, "Dual : 17, 4.250,x 4.310, 11.40\r\n", 4.25f},
      {"DFX", ParseSonarmiteDfx, "1 4.25 4.31 0.00 0.00 0\r\n", 4.25f, kBefore, 4.31f},
      {"DFX, short", ParseSonarmiteDfx, "1 4.25\r\n", 4.25f},
      {"OLD", ParseSonarmiteOld, "1 4.25 0 0 0 12.10 0 0\r\n", 4.25f},
      {"PSA-916", ParsePsa916, "R4.25\r\n", 4.25f},
      {"PSA-916, padded", ParsePsa916, "R 004.25\r\n", 4.25f},
      {"AltiPlusTemp", ParseAltiPlusTemp, "4.250,   11.40\r\n", 4.25f, 11.4f},
      {"AltiPlusTemp, other blanks", ParseAltiPlusTemp, " 4.250,-1.5\r\n", 4.25f, -1.5f},
  };
  for (const auto& each : cases) {
    AltimeterValues values = kPrevious;
    EXPECT_TRUE(each.parse(each.line, values)) << each.what;
    EXPECT_EQ(ValuesOf(values),
              std::tuple(each.altitude_m, each.temperature_c, each.low_m != kBefore, each.low_m, each.second,
                         each.frequency_hz != 7, each.frequency_hz))
        << each.what;
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
      {"simple, nothing", ParseSimple, ""},
      {"DESO, no number", ParseDeso, "DA m*"},
      {"DESO, another channel", ParseDeso, "DC 4.25 m*"},
      {"DESO, nothing", ParseDeso, ""},
      {"dual, no number of its own", ParseDual, "Dual : x, 4.25, 4.31, 11.4\r\n"},
      {"dual, no altitude", ParseDual, "Dual : 17\r\n"},
      {"dual, nothing", ParseDual, ""},
      {"DFX, another beginning", ParseSonarmiteDfx, "2 4.25 4.31 0.00 0.00 0\r\n"},
      {"DFX, no altitude", ParseSonarmiteDfx, "1 \r\n"},
      {"OLD, the number runs on", ParseSonarmiteOld, "14.25 0 0 0 12.10 0 0\r\n"},
      {"OLD, an empty line", ParseSonarmiteOld, "\r\n"},
      {"PSA-916, a sentence with R", ParsePsa916, "RMC,000000.00,V\r\n"},
      {"PSA-916, nothing", ParsePsa916, ""},
      {"AltiPlusTemp, no temperature", ParseAltiPlusTemp, "4.250\r\n"},
      {"AltiPlusTemp, another separator", ParseAltiPlusTemp, "4.250;   11.40\r\n"},
      {"AltiPlusTemp, another line", ParseAltiPlusTemp, "$GPGGA,000000.00\r\n"},
      {"AltiPlusTemp, an empty line", ParseAltiPlusTemp, "\r\n"},
  };
  for (const auto& each : cases) {
    AltimeterValues values = kPrevious;
    EXPECT_FALSE(each.parse(each.line, values)) << each.what;
    EXPECT_EQ(ValuesOf(values), ValuesOf(kPrevious)) << each.what;
  }
}

}  // namespace
}  // namespace tw
