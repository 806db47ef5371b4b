#include "tools/echotool/ping_values.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numbers>

namespace tw::echotool {

double Degrees(double radians) {
  return radians * (180.0 / std::numbers::pi);
}

// Binary recordings have single precision, whose nearest number to 180 degrees lies above. The bounds are not
// kept by what is no number.
std::optional<Place_deg> PlaceOf(const RecordedPing& ping) {
  constexpr double kBeyond_deg = 0.00001;
  const Place_deg place{Degrees(ping.latitude_rad), Degrees(ping.longitude_rad)};
  const bool onEarth =
      std::fabs(place.latitude) <= 90.0 + kBeyond_deg && std::fabs(place.longitude) <= 180.0 + kBeyond_deg;
  if (!ping.hasPosition || !onEarth) return std::nullopt;
  return Place_deg{std::clamp(place.latitude, -90.0, 90.0), std::clamp(place.longitude, -180.0, 180.0)};
}

std::optional<int64_t> TimeOf(const RecordedPing& ping) {
  constexpr int64_t kSecond_ms = 1'000;
  const int64_t computer_ms = ping.header.timeOfWork_s * kSecond_ms;
  const bool agree = std::llabs(ping.time_ms - computer_ms) <= kSecond_ms;
  if (ping.hasMilliseconds && ping.time_ms >= kSecond_ms && (agree || computer_ms == 0)) return ping.time_ms;
  return computer_ms != 0 ? std::optional(computer_ms) : std::nullopt;
}

float AltitudeOf(const RecordedPing& ping, int32_t channel) {
  return channel == 1 && ping.bothChannels ? ping.altitudeLow_m : ping.header.altitude_m;
}

}  // namespace tw::echotool
