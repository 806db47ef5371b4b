// Finding a place in a recording. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "playback/ping_source.h"

namespace tw {

// Puts a recording whose times rise at or shortly before its first ping of this time or later; the last such
// place when it has none. A few dozen pings are read, however long the recording is. False, and the recording
// stands anywhere, when its pings tell no time or it cannot be positioned.
[[nodiscard]] bool SeekToTime(PingSource& recording, int64_t time_ms);

// Where the ping begins that stands `count` pings (1 to kMostBefore) ahead of the one that begins at a place
// of the file. Nothing when there are fewer, or none that many within the 64 MiB ahead of it; an interruption
// ends the search with the place itself. The recording stands anywhere afterwards.
inline constexpr size_t kMostBefore = 100;
[[nodiscard]] std::optional<uint64_t> PlaceBefore(PingSource& recording, uint64_t position, size_t count);

}  // namespace tw
