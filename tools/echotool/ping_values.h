// What several outputs tell of a ping in the same way. Pure; any thread.
#pragma once

#include <cstdint>
#include <optional>

#include "playback/ping_source.h"

namespace tw::echotool {

[[nodiscard]] double Degrees(double radians);

struct Place_deg {
  double latitude;
  double longitude;
};

// Where the ping was; nothing without a position on earth.
[[nodiscard]] std::optional<Place_deg> PlaceOf(const RecordedPing& ping);

// When it was, UTC, in milliseconds since 1970; nothing when the recording tells none. The computer's time,
// which has seconds; the device's own, which is finer, where the two agree to a second.
[[nodiscard]] std::optional<int64_t> TimeOf(const RecordedPing& ping);

// The depth below the transducer, m, of a channel (0 or 1) of the ping.
[[nodiscard]] float AltitudeOf(const RecordedPing& ping, int32_t channel);

}  // namespace tw::echotool
