// Timing for the benchmarks: each figure is the median of eleven runs, and what counts are ratios of figures
// taken in one run of the program.
#pragma once

#include <algorithm>
#include <array>
#include <chrono>

namespace tw {

inline constexpr int kBenchRuns = 11;

// Milliseconds that one call of `work` takes.
template <typename Work>
[[nodiscard]] double MedianMilliseconds(Work&& work) {
  std::array<double, kBenchRuns> times;
  for (double& time : times) {
    const auto start = std::chrono::steady_clock::now();
    work();
    time = std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
  }
  std::nth_element(times.begin(), times.begin() + kBenchRuns / 2, times.end());
  return times[kBenchRuns / 2];
}

}  // namespace tw
