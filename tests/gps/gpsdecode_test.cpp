// The sentences that stand in record files, read by an independent decoder (gpsdecode of Debian's
// gpsd-clients).
#include <gtest/gtest.h>
#include <unistd.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "gps/gps_fix.h"
#include "gps/nmea_build.h"

namespace tw {
namespace {

std::string Decoded(const std::string& sentences) {
  char path[] = "gpsdecode_test_XXXXXX";
  const int file = mkstemp(path);
  EXPECT_GE(file, 0);
  EXPECT_EQ(write(file, sentences.data(), sentences.size()), static_cast<ssize_t>(sentences.size()));
  close(file);
  std::string text;
  FILE* const decoder = popen((std::string("gpsdecode <") + path).c_str(), "r");
  EXPECT_NE(decoder, nullptr);
  char piece[4096];
  for (size_t got = 0; (got = fread(piece, 1, sizeof piece, decoder)) > 0;) text.append(piece, got);
  EXPECT_EQ(pclose(decoder), 0);
  EXPECT_EQ(unlink(path), 0);
  return text;
}

// The value of a key in the last report, as it stands.
std::string Value(const std::string& reports, const std::string& key) {
  const size_t at = reports.rfind("\"" + key + "\":");
  if (at == std::string::npos) return "";
  const size_t begin = at + key.size() + 3;
  return reports.substr(begin, reports.find_first_of(",}", begin) - begin);
}

double Degrees(double ddmm) {
  const double whole = std::trunc(ddmm / 100.0);
  return whole + (ddmm - whole * 100.0) / 60.0;
}

// Four seconds of a fix, since the decoder has to learn where a cycle ends.
std::string Sentences(GpsFix fix, bool gn) {
  std::string sentences;
  for (fix.utc.second = 0; fix.utc.second < 4; ++fix.utc.second) {
    char text[256];
    sentences.append(text, BuildGga(text, fix, gn));
    sentences.append(text, BuildRmc(text, fix, gn));
  }
  return sentences;
}

GpsFix FixAt(double latitude, double longitude) {
  GpsFix fix{};
  fix.utc = {125, 5, 17, 23, 59, 0, 25};
  fix.latitude = latitude;
  fix.longitude = longitude;
  fix.geoidHeight_m = 46.9;
  return fix;
}

class RecordedPosition : public testing::TestWithParam<bool> {};

TEST_P(RecordedPosition, IsUnderstoodByAnIndependentDecoder) {
  const struct {
    const char* what;
    double latitude, longitude;
    double elevation_m, speed_kmh, direction_deg;
  } rows[] = {
      {"north-east", 4807.0380, 1131.0000, 545.4, 41.5, 84.4},
      {"north-west", 4042.7712, -7400.3561, 10.0, 0.5, 359.9},
      {"south-east", -3352.1230, 15112.4567, -2.5, 18.52, 180.0},
      {"south-west", -5447.9990, -6818.0001, 0.0, 0.0, 0.0},
      {"degrees that are not padded", 507.5000, -3.2500, 1.0, 3.7, 5.5},
      {"near the pole and the date line", 8959.9000, -17959.9000, 9999.9, 99.9, 270.0},
  };
  const double half = (GetParam() ? 1e-6 : 1e-4) / 60.0;  // of the last decimal
  for (const auto& row : rows) {
    GpsFix fix = FixAt(row.latitude, row.longitude);
    fix.quality = 1;
    fix.hdop = 0.9;
    fix.satellitesInUse = 8;
    fix.elevation_m = row.elevation_m;
    fix.speed_kmh = row.speed_kmh;
    fix.direction_deg = row.direction_deg;
    const std::string reports = Decoded(Sentences(fix, GetParam()));
    EXPECT_EQ(Value(reports, "mode"), "3") << row.what << reports;
    EXPECT_EQ(Value(reports, "time"), "\"2025-06-17T23:59:03.250Z\"") << row.what;
    EXPECT_NEAR(atof(Value(reports, "lat").c_str()), Degrees(row.latitude), half) << row.what;
    EXPECT_NEAR(atof(Value(reports, "lon").c_str()), Degrees(row.longitude), half) << row.what;
    EXPECT_NEAR(atof(Value(reports, "altMSL").c_str()), row.elevation_m, 0.001) << row.what;
    EXPECT_NEAR(atof(Value(reports, "speed").c_str()), row.speed_kmh / 3.6, 0.03) << row.what;
    if (row.speed_kmh > 1.0) {
      EXPECT_NEAR(atof(Value(reports, "track").c_str()), row.direction_deg, 0.06) << row.what;
    }
  }
}

// A position that is not valid must not look like one.
TEST_P(RecordedPosition, WithoutQualityIsNone) {
  EXPECT_EQ(Value(Decoded(Sentences(FixAt(4807.038, 1131.0), GetParam())), "lat"), "");
}

INSTANTIATE_TEST_SUITE_P(Talkers, RecordedPosition, testing::Values(false, true),
                         [](const auto& talker) { return talker.param ? "Gn" : "Gp"; });

}  // namespace
}  // namespace tw
