// Chance by seed: the same seed gives the same numbers on every machine, because only whole-number
// arithmetic and the four exact operations of IEEE-754 are used, no library distribution and no sine.
#pragma once

#include <cstdint>

namespace tw::sim {

// A well-mixed 64-bit value of its argument.
[[nodiscard]] constexpr uint64_t Mix(uint64_t value) {
  value += 0x9E3779B97F4A7C15u;
  value = (value ^ (value >> 30)) * 0xBF58476D1CE4E5B9u;
  value = (value ^ (value >> 27)) * 0x94D049BB133111EBu;
  return value ^ (value >> 31);
}

// A stream of random bits.
class Dice {
 public:
  explicit constexpr Dice(uint64_t seed) : state_(Mix(seed)) {}

  [[nodiscard]] constexpr uint64_t Next() {
    state_ += 0x9E3779B97F4A7C15u;
    return Mix(state_);
  }

  // From 0 to `limit` - 1; `limit` from 1 to 2^32.
  [[nodiscard]] constexpr uint32_t Below(uint64_t limit) {
    return static_cast<uint32_t>(((Next() >> 32) * limit) >> 32);
  }

 private:
  uint64_t state_;
};

// From 0 to just below 1, the same for the same pair.
[[nodiscard]] constexpr double UnitAt(uint64_t seed, int64_t place) {
  return static_cast<double>(Mix(seed ^ Mix(static_cast<uint64_t>(place))) >> 11) * 0x1p-53;
}

// A smooth curve from -1 to 1 that takes a new random height at each whole number. `at` within 2^52.
[[nodiscard]] constexpr double SmoothNoise(uint64_t seed, double at) {
  int64_t place = static_cast<int64_t>(at);
  if (at < static_cast<double>(place)) --place;
  const double part = at - static_cast<double>(place);
  const double blend = part * part * (3.0 - 2.0 * part);
  const double left = UnitAt(seed, place);
  const double right = UnitAt(seed, place + 1);
  return 2.0 * (left + (right - left) * blend) - 1.0;
}

}  // namespace tw::sim
