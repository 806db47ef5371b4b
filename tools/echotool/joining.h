// Which recordings can be made one, and in which order: the same device, output mode and channel, one behind
// the other in time. Pure; one thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "playback/ping_source.h"
#include "tools/echotool/ping_clock.h"

namespace tw::echotool {

// A recording of a call, as far as joining goes by it.
struct Part {
  std::string file;
  RecordingKind kind;
  std::optional<InfoLine> info;
  std::optional<InfoLine> low;
  std::optional<int64_t> first_ms;  // times of its pings, the earliest and the latest
  std::optional<int64_t> last_ms;
  PingClock clock = {};

  Part(std::string name, const PingSource& recording);
  void Add(const RecordedPing& ping);
};

// Brings the parts into the order of their times. False with a sentence when they cannot be one recording.
[[nodiscard]] bool PutInOrder(std::vector<Part>& parts, std::string& error);

}  // namespace tw::echotool
