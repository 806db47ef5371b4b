// When the pings of a recording were. One thread.
#pragma once

#include <cstdint>
#include <optional>

#include "playback/ping_source.h"

namespace tw::echotool {

// UTC of each ping, in milliseconds since 1970. The computer's time is right, but has seconds; the device's
// own is finer, but may never have been set: it counts from where it is taken to be right, and anew once the
// two have come apart, so that a clock which is slightly wrong does not go to and fro between them. One for
// each pass over a recording, asked in the order of its pings.
class PingClock {
 public:
  // Nothing when the recording tells none.
  [[nodiscard]] std::optional<int64_t> TimeOf(const RecordedPing& ping);

 private:
  std::optional<int64_t> behind_ms_;  // what the device's time lacks
};

}  // namespace tw::echotool
