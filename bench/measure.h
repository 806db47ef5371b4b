// Timing for the benchmarks: each figure is the median of eleven runs, and what counts are ratios of figures
// taken in one run of the program.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>
#include <ctime>

namespace tw {

inline constexpr int kBenchRuns = 11;

[[nodiscard]] inline double WallClock_ms() {
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch())
      .count();
}

// Of this process; what others do to the machine counts less. (On Windows it is the wall clock.)
[[nodiscard]] inline double ProcessorClock_ms() {
  return 1e3 * static_cast<double>(std::clock()) / CLOCKS_PER_SEC;
}

// Milliseconds that one call of `work` takes.
template <typename Work>
[[nodiscard]] double MedianMilliseconds(Work&& work, double (*clock_ms)() = WallClock_ms) {
  std::array<double, kBenchRuns> times;
  for (double& time : times) {
    const double start_ms = clock_ms();
    work();
    time = clock_ms() - start_ms;
  }
  std::nth_element(times.begin(), times.begin() + kBenchRuns / 2, times.end());
  return times[kBenchRuns / 2];
}

}  // namespace tw
