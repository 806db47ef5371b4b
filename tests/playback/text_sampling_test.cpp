#include "playback/text_sampling.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <limits>

namespace tw {
namespace {

// As a figure comes back that was written with so many decimals.
float Written(double value, int decimals) {
  char text[64];
  std::snprintf(text, sizeof text, "%.*f", decimals, value);
  return std::strtof(text, nullptr);
}

// A device computes with two decimals of the speed; a settings line keeps one, a block one to three of what a
// sample covers.
TEST(TextSampling, ComesBackFromRoundedFigures) {
  for (int speed_cmps = 140'000; speed_cmps <= 160'000; ++speed_cmps) {
    const double speed_mps = speed_cmps / 100.0;
    for (const int32_t sampling_hz : {20'000, 25'000, 50'000, 100'000}) {
      for (const int decimals : {1, 2, 3}) {
        const float resolution_mm = Written(speed_mps * 500.0 / sampling_hz, decimals);
        ASSERT_EQ(SamplingOfResolution(Written(speed_mps, 1), resolution_mm), sampling_hz)
            << speed_mps << " m/s, " << resolution_mm << " mm";
      }
    }
  }
}

TEST(TextSampling, KeepsItsBounds) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const struct {
    const char* what;
    float soundSpeed_mps;
    float resolution_mm;
    int32_t sampling_hz;
  } rows[] = {
      {"a third of the grid", 1500.0f, 22.5f, 33'333},
      {"a sixth: 16,667 Hz would repeat samples five times", 1500.0f, 45.0f, 16'666},
      {"just within 2 % of a fourth", 1500.0f, 29.42f, 25'000},
      {"just beyond", 1500.0f, 29.40f, 25'510},
      {"2 % below it", 1500.0f, 30.61f, 25'000},
      {"and beyond", 1500.0f, 30.63f, 24'486},
      {"nowhere near", 1500.0f, 25.0f, 30'000},
      {"no nearer than the nearest whole number", 1500.0f, 18.75f, 40'000},
      {"above the grid", 1500.0f, 3.75f, 100'000},
      {"far above it", 1500.0f, 1e-30f, 100'000},
      {"one a second", 1500.0f, 750'000.0f, 1},
      {"less than that", 1500.0f, 750'001.0f, 0},
      {"no resolution", 1500.0f, 0.0f, 0},
      {"a negative one", 1500.0f, -30.0f, 0},
      {"an infinite one", 1500.0f, kInfinity, 0},
      {"no number", 1500.0f, std::numeric_limits<float>::quiet_NaN(), 0},
      {"no speed", 0.0f, 30.0f, 0},
      {"an infinite speed", kInfinity, 30.0f, 0},
  };
  for (const auto& row : rows)
    EXPECT_EQ(SamplingOfResolution(row.soundSpeed_mps, row.resolution_mm), row.sampling_hz) << row.what;
}

}  // namespace
}  // namespace tw
