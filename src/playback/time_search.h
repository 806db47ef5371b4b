// Finding a time in a recording. One thread.
#pragma once

#include <cstdint>

#include "playback/ping_source.h"

namespace tw {

// Puts a recording whose times rise at or shortly before its first ping of this time or later; the last such
// place when it has none. A few dozen pings are read, however long the recording is. False, and the recording
// stands anywhere, when its pings tell no time or it cannot be positioned.
[[nodiscard]] bool SeekToTime(PingSource& recording, int64_t time_ms);

}  // namespace tw
