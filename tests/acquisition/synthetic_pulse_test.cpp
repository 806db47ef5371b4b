#include "acquisition/synthetic_pulse.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <vector>

namespace tw {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The words from the one before the first sample on, of a ping at this altitude, in an image that held
// another ping before.
std::vector<uint16_t> WordsOf(double altitude_m, double soundSpeed_mps) {
  const auto image = std::make_unique<SlotImage>();
  PingHeader header{};
  header.samplingFrequency_hz = 100'000;
  image->Build(header, std::vector<uint16_t>(kMaxSlotSamples, 0xFFFF), 1);
  image->Build(header, {}, 1);
  DrawPulse(*image, altitude_m, soundSpeed_mps);
  EXPECT_LE(image->reach, kSlotSize);
  std::vector<uint16_t> words;
  for (size_t at = kSlotSamples - 2; at + 2 <= kSlotSize; at += 2) {
    const bool used = at + 2 <= image->reach;
    words.push_back(used ? static_cast<uint16_t>(image->bytes[at] | image->bytes[at + 1] << 8) : uint16_t{0});
  }
  return words;
}

TEST(SyntheticPulse, StandsWhereTheFormulaSays) {
  constexpr size_t kNone = 29'637;  // behind the last word
  // Worked out with another program in double precision: with 7.5, 15 and 30 m the division falls just short
  // of the whole number.
  const struct {
    double altitude_m;
    double soundSpeed_mps;
    size_t index;
  } rows[] = {{0, 1500, 0},
              {7.5, 1500, 999},
              {15, 1500, 1999},
              {30, 1500, 3999},
              {4.25, 1500, 566},
              {1, 1500, 133},
              {7.5, 1480, 1013},
              {100, 1500, 13'333},
              {0.01f, 1500, 1},
              {0.0075f, 1500, 0},
              {1e-30, 1500, 0},
              {4.25, 1e9, 0},
              {222.1875, 1500, 29'625},
              // Cut at the slot's end, and behind it.
              {222.255f, 1500, 29'634},
              {222.27f, 1500, kNone},
              // No sane altitude, or no sane speed.
              {-0.001, 1500, kNone},
              {-1e300, 1500, kNone},
              {kNan, 1500, kNone},
              {kInfinity, 1500, kNone},
              {-kInfinity, 1500, kNone},
              {1e300, 1500, kNone},
              {4, 0, kNone},
              {4, -1500, kNone},
              {4, kNan, kNone},
              {0, 0, kNone},
              {0, kNan, kNone},
              {1e308, 1, kNone},
              {4, 1e-320, kNone}};
  for (const auto& row : rows) {
    std::vector<uint16_t> expected(29'637);
    constexpr uint16_t kWords[] = {0, 921, 1842, 2764, 3685, 3685, 3685, 3685, 2764, 1842, 921, 0};
    for (size_t i = 0; i < 12 && row.index + i < expected.size(); ++i) expected[row.index + i] = kWords[i];
    EXPECT_TRUE(WordsOf(row.altitude_m, row.soundSpeed_mps) == expected)
        << row.altitude_m << " m, " << row.soundSpeed_mps << " m/s";
  }
}

}  // namespace
}  // namespace tw
