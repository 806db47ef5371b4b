// Whether a fix is still being kept up. Pure; one thread.
#pragma once

#include <cstdint>

#include "app/state/ping_facts.h"

namespace tw {

inline constexpr uint32_t kFixAge_ms = 5'000;

class FixWatch {
 public:
  // To be asked for each ping: whether a sentence of the receiver came in the last five seconds. The first
  // ping tells nothing yet.
  [[nodiscard]] bool IsFresh(const PingFacts& ping) {
    const bool updated = begun_ && ping.fixUpdates != updates_;
    if (updated) updated_ms_ = ping.clock_ms;
    fresh_ = updated || (fresh_ && ping.clock_ms - updated_ms_ <= kFixAge_ms);
    begun_ = true;
    updates_ = ping.fixUpdates;
    return fresh_;
  }

 private:
  bool begun_ = false;
  bool fresh_ = false;
  uint32_t updates_ = 0;
  uint32_t updated_ms_ = 0;
};

}  // namespace tw
