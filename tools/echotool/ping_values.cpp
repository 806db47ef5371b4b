#include "tools/echotool/ping_values.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace tw::echotool {
namespace {

double Radians(double degrees) {
  return degrees * (std::numbers::pi / 180.0);
}

double HalfVersine(double degrees) {
  const double sine = std::sin(Radians(degrees) / 2);
  return sine * sine;
}

}  // namespace

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

double Distance_m(const Place_deg& from, const Place_deg& to) {
  constexpr double kEarth_m = 6'371'008.8;  // its mean radius
  const double h = HalfVersine(to.latitude - from.latitude) + std::cos(Radians(from.latitude)) *
                                                                  std::cos(Radians(to.latitude)) *
                                                                  HalfVersine(to.longitude - from.longitude);
  return 2 * kEarth_m * std::asin(std::sqrt(std::min(1.0, h)));
}

float AltitudeOf(const RecordedPing& ping, int32_t channel) {
  return channel == 1 && ping.bothChannels ? ping.altitudeLow_m : ping.header.altitude_m;
}

}  // namespace tw::echotool
