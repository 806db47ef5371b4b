// Which pings are sent when there are more than are wanted. Pure; one thread.
#pragma once

#include <algorithm>
#include <cstdint>

namespace tw {

// Lets at most so many pings a second through, evenly. Pings that come at just this rate, up to half a period
// early or late, all get through; so a second can have one more.
class SendRate {
 public:
  explicit SendRate(int32_t pingsPerSecond) : perSecond_(static_cast<uint32_t>(pingsPerSecond)) {}

  [[nodiscard]] bool Takes(uint32_t clock_ms) {
    const uint32_t elapsed_ms = begun_ ? std::min(clock_ms - last_ms_, 2 * kSecond_ms) : 0;
    begun_ = true;
    last_ms_ = clock_ms;
    saved_ = std::min(saved_ + elapsed_ms * perSecond_, kMostSaved);
    if (saved_ < kPrice) return false;
    saved_ -= kPrice;
    return true;
  }

 private:
  static constexpr uint32_t kSecond_ms = 1'000;
  static constexpr uint32_t kPrice = kSecond_ms;  // of a ping, in milliseconds times pings a second
  static constexpr uint32_t kMostSaved = kPrice + kPrice / 2;

  const uint32_t perSecond_;
  uint32_t saved_ = kMostSaved;
  uint32_t last_ms_ = 0;
  bool begun_ = false;
};

}  // namespace tw
