#include "gps/nmea_build.h"

#include <gtest/gtest.h>

#include <string>

namespace tw {
namespace {

using Builder = size_t (*)(std::span<char> text, const GpsFix& fix, bool gn);

std::string Build(Builder builder, const GpsFix& fix, bool gn, size_t size = 256) {
  std::string text(size, '#');
  const size_t length = builder(text, fix, gn);
  if (size > 0) {
    EXPECT_EQ(text[length], '\0');
  }
  return text.substr(0, length);
}

GpsFix NorthWest() {
  GpsFix fix{};
  fix.utc = {.year = 94, .month = 2, .day = 23, .hour = 12, .minute = 35, .second = 19, .hundredth = 7};
  fix.quality = 1;
  fix.hdop = 0.9;
  fix.latitude = 4807.038;
  fix.longitude = -1131.0;
  fix.elevation_m = 545.4;
  fix.geoidHeight_m = 46.9;
  fix.speed_kmh = 41.4848;  // 22.4 kn
  fix.direction_deg = 84.4;
  fix.declination_deg = -3.1;
  fix.satellitesInUse = 8;
  return fix;
}

GpsFix SouthWest() {
  GpsFix fix{};
  fix.utc = {.year = 99, .month = 0, .day = 1, .hour = 23, .minute = 59, .second = 59, .hundredth = 99};
  fix.quality = 4;
  fix.hdop = 12.3;
  fix.latitude = -3351.123456;
  fix.longitude = -5812.4321;
  fix.elevation_m = -3.25;
  fix.geoidHeight_m = -10.125;
  fix.differentialAge_s = 1.5;
  fix.differentialStation = 42;
  fix.speed_kmh = 18.52;
  fix.direction_deg = 359.9;
  fix.declination_deg = 20.3;
  fix.modeCode = 4;
  fix.satellitesInUse = 17;
  return fix;
}

// Put together, and their checksums counted, by hand (a shell and another language).
TEST(NmeaBuild, WholeSentences) {
  GpsFix lost = SouthWest();
  lost.quality = 0;
  lost.longitude = 5812.4321;
  const struct {
    const char* what;
    Builder builder;
    GpsFix fix;
    bool gn;
    const char* text;
  } rows[] = {
      {"GPGGA", BuildGga, NorthWest(), false,
       "$GPGGA,123519.07,4807.0380,N,1131.0000,W,1,08,0.9,545.400,M,46.900,M,0.0,0000*62\r\n"},
      {"GPRMC", BuildRmc, NorthWest(), false,
       "$GPRMC,123519.07,A,4807.0380,N,1131.0000,W,22.4,84.4,230394,3.1,W,A*0c\r\n"},
      {"GNGGA", BuildGga, SouthWest(), true,
       "$GNGGA,235959.99,3351.123456,S,5812.432100,W,4,17,12.3,-3.250,M,-10.125,M,1.5,0042*59\r\n"},
      {"GNRMC without quality", BuildRmc, lost, true,
       "$GNRMC,235959.99,V,3351.123456,S,5812.432100,E,10.0,359.9,010199,20.3,E,N*10\r\n"},
      {"an empty fix is south and west", BuildGga, GpsFix{}, false,
       "$GPGGA,000000.00,00.0000,S,00.0000,W,0,00,0.0,0.000,M,0.000,M,0.0,0000*4c\r\n"},
  };
  for (const auto& row : rows) EXPECT_EQ(Build(row.builder, row.fix, row.gn), row.text) << row.what;
}

TEST(NmeaBuild, YearsOfBothCenturiesAndModeLetters) {
  GpsFix fix = NorthWest();
  for (const auto& [year, end] :
       {std::pair{99, "230399,3.1,W,A"}, {100, "230300,3.1,W,A"}, {125, "230325,3.1,W,A"}}) {
    fix.utc.year = year;
    EXPECT_NE(Build(BuildRmc, fix, false).find(end), std::string::npos) << year;
  }
  for (const auto& [code, letter] :
       {std::pair{0, 'A'}, {1, 'D'}, {2, 'E'}, {3, 'M'}, {4, 'N'}, {5, 'N'}, {-1, 'N'}}) {
    fix.modeCode = code;
    const std::string text = Build(BuildRmc, fix, false);
    EXPECT_EQ(text[text.find('*') - 1], letter) << code;
  }
}

TEST(NmeaBuild, WhatDoesNotFitIsNoSentence) {
  const std::string whole = Build(BuildGga, NorthWest(), false);
  EXPECT_EQ(Build(BuildGga, NorthWest(), false, whole.size() + 1), whole);
  for (size_t size = 0; size <= whole.size(); ++size) {
    EXPECT_EQ(Build(BuildGga, NorthWest(), false, size), "") << size;
  }
  GpsFix huge = NorthWest();
  huge.latitude = huge.longitude = huge.hdop = huge.elevation_m = huge.speed_kmh = huge.direction_deg = 1e300;
  for (const Builder builder : {BuildGga, BuildRmc}) EXPECT_EQ(Build(builder, huge, true), "");
}

}  // namespace
}  // namespace tw
