#include "display/status_line.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace tw {
namespace {

// 2024-02-29 13:04:05 UTC
constexpr ShownPing kPing{1'709'211'845, 12.3456f, 18.25f, -1.5f, 2.75f};

std::string Single(const ShownPing& ping, uint32_t number, bool withAttitude) {
  char text[160];
  FormatSingleStatus(text, ping, number, withAttitude);
  return text;
}

TEST(StatusLine, Single) {
  EXPECT_EQ(Single(kPing, 17, false),
            "Time:29.02.2024 13:04:05 UTC Ping:17, Altitude:12.346m, Temperature:18.2\u00B0C");
  EXPECT_EQ(Single(kPing, 4'294'967'295u, true),
            "Time:29.02.2024 13:04:05 UTC Ping:4294967295, Altitude:12.346m, Temperature:18.2\u00B0C, "
            "Pitch:-1.5\u00B0, Roll:2.8\u00B0");
}

TEST(StatusLine, Dual) {
  char text[160];
  FormatDualStatus(text, kPing, 17, 12.5f, 11.996f, false);
  EXPECT_STREQ(text,
               "Time:29.02.2024 13:04:05, Ping:17, AltitudeH:12.50m, AltitudeL:12.00m, "
               "Temperature:18.2\u00B0C");
  FormatDualStatus(text, kPing, 17, 12.5f, 11.996f, true);
  EXPECT_STREQ(text,
               "Time:29.02.2024 13:04:05, Ping:17, AltitudeH:12.50m, AltitudeL:12.00m, "
               "Temperature:18.2\u00B0C, Pitch:-1.5\u00B0, Roll:2.8\u00B0");
}

TEST(StatusLine, HostileValuesAreCutToTheBuffer) {
  const ShownPing hostile{0xFFFFFFFFu, 3.4e38f, -3.4e38f, 3.4e38f, 3.4e38f};
  EXPECT_EQ(Single(hostile, 0, true).size(), 159u);
  EXPECT_EQ(Single(hostile, 0, true).substr(0, 24), "Time:07.02.2106 06:28:15");
}

TEST(StatusLine, ModesWithAttitudeInADualRun) {
  std::string first;
  std::string second;
  for (int32_t mode = -1; mode < 200; ++mode) {
    if (DualModeHasAttitude(1, mode)) first += std::to_string(mode) + " ";
    if (DualModeHasAttitude(2, mode)) second += std::to_string(mode) + " ";
    EXPECT_EQ(DualModeHasAttitude(0, mode), DualModeHasAttitude(2, mode));
  }
  EXPECT_EQ(first, "2 3 4 9 100 101 ");
  EXPECT_EQ(second, "2 3 4 5 6 10 100 101 ");
}

}  // namespace
}  // namespace tw
