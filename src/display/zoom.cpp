#include "display/zoom.h"

#include <algorithm>
#include <cstdlib>
#include <span>

namespace tw {

namespace {

// The step nearest to the value and nearer than `bound`, the first of equals; the last step when none is.
size_t NearestStep(std::span<const int32_t> steps, int32_t value, int64_t bound) {
  size_t nearest = steps.size() - 1;
  for (size_t i = 0; i < steps.size(); ++i) {
    const int64_t distance = std::abs(int64_t{steps[i]} - value);
    if (distance >= bound) continue;
    bound = distance;
    nearest = i;
  }
  return nearest;
}

int32_t NextStep(std::span<const int32_t> steps, size_t from, WheelTurn turn) {
  if (turn == WheelTurn::forward) return steps[from == 0 ? 0 : from - 1];
  return steps[std::min(from + 1, steps.size() - 1)];
}

}  // namespace

int32_t ZoomedRange(int32_t range_mm, int32_t deviceRange_mm, WheelTurn turn) {
  const std::span<const int32_t> all(DisplayRangeSteps);
  const auto limit = std::find(all.begin(), all.end(), deviceRange_mm);
  if (limit == all.end()) return DisplayRangeSteps[0];
  const auto allowed = all.first(static_cast<size_t>(limit - all.begin()) + 1);
  return NextStep(allowed, NearestStep(allowed, range_mm, deviceRange_mm), turn);
}

int32_t ZoomedTimeScale(int32_t timeScale_s, WheelTurn turn) {
  const std::span<const int32_t> steps(TimeScaleSteps);
  return NextStep(steps, NearestStep(steps, timeScale_s, steps.back()), turn);
}

}  // namespace tw
