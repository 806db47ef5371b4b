#include "playback/text_sampling.h"

#include <algorithm>
#include <cmath>

namespace tw {
namespace {

constexpr double kGrid_hz = 100'000.0;
constexpr double kNearness = 0.02;
constexpr double kMillimetresThereAndBack = 500.0;  // sound passes a sample's water twice

bool IsTold(float value) {
  return std::isfinite(value) && value > 0.0f;
}

// The frequency of the grid that is nearest; `sampling_hz` is from 1 to that of the grid itself.
double NearestOfGrid(double sampling_hz) {
  const double below = std::floor(kGrid_hz / sampling_hz);
  const double higher_hz = kGrid_hz / below;
  const double lower_hz = kGrid_hz / (below + 1.0);
  return higher_hz - sampling_hz < sampling_hz - lower_hz ? higher_hz : lower_hz;
}

}  // namespace

int32_t SamplingOfResolution(float soundSpeed_mps, float resolution_mm) {
  if (!IsTold(soundSpeed_mps) || !IsTold(resolution_mm)) return 0;
  const double told_hz = std::min(
      kMillimetresThereAndBack * static_cast<double>(soundSpeed_mps) / static_cast<double>(resolution_mm),
      kGrid_hz);
  if (told_hz < 1.0) return 0;
  const double grid_hz = NearestOfGrid(told_hz);
  const bool near = std::fabs(told_hz - grid_hz) <= kNearness * grid_hz;
  return static_cast<int32_t>(near ? grid_hz : std::round(told_hz));
}

}  // namespace tw
