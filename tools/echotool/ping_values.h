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

// Along the great circle.
[[nodiscard]] double Distance_m(const Place_deg& from, const Place_deg& to);

// The depth below the transducer, m, of a channel (0 or 1) of the ping.
[[nodiscard]] float AltitudeOf(const RecordedPing& ping, int32_t channel);

}  // namespace tw::echotool
