#include "tools/echotool/ping_clock.h"

#include <cstdlib>

namespace tw::echotool {

std::optional<int64_t> PingClock::TimeOf(const RecordedPing& ping) {
  constexpr int64_t kSecond_ms = 1'000;
  constexpr int64_t kApart_ms = 2 * kSecond_ms;
  const int64_t computer_ms = ping.header.timeOfWork_s * kSecond_ms;
  const bool isFine = ping.hasMilliseconds && ping.time_ms > 0;
  if (computer_ms == 0) return isFine ? std::optional(ping.time_ms) : std::nullopt;
  if (!isFine) return computer_ms;
  const int64_t lacks_ms = computer_ms - ping.time_ms;
  if (!behind_ms_ || std::llabs(lacks_ms - *behind_ms_) > kApart_ms)
    behind_ms_ = std::llabs(lacks_ms) <= kSecond_ms ? 0 : lacks_ms;
  return ping.time_ms + *behind_ms_;
}

}  // namespace tw::echotool
