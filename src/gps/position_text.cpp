#include "gps/position_text.h"

#include <cmath>
#include <iterator>
#include <numbers>

#include "base/text_format.h"

namespace tw {
namespace {

struct DegreesMinutes {
  int degrees;
  double minutes;
};

DegreesMinutes Split(float radians) {
  const double angle_deg = std::fabs(static_cast<double>(radians)) * 180.0 / std::numbers::pi;
  if (!(angle_deg <= 360.0)) return {0, 0.0};
  const int degrees = static_cast<int>(angle_deg);
  return {degrees, (angle_deg - degrees) * 60.0};
}

const char* FixWord(int32_t fixType) {
  return fixType == 1 ? "N/A" : fixType == 2 ? "2D" : "3D";
}

}  // namespace

double RadiansFromDegreesMinutes(double ddmm) {
  const double degrees = std::trunc(ddmm / 100.0);
  return (degrees + (ddmm - degrees * 100.0) / 60.0) * kRadiansPerDegree;
}

const char* PdopWord(float pdop) {
  if (pdop == 0.0f) return "N/A";
  if (pdop < 1.0f) return "Ideal";
  if (pdop < 2.0f) return "Excellent";
  if (pdop < 5.0f) return "Good";
  if (pdop < 10.0f) return "Moderate";
  if (pdop < 20.0f) return "Fair";
  return "Poor";
}

const char* GgaQualityWord(int32_t quality) {
  constexpr const char* kWords[] = {"none",      "GPS",       "DGPS",   "PPS",      "RTK fixed",
                                    "RTK float", "estimated", "manual", "simulated"};
  const bool known = quality >= 0 && quality < static_cast<int32_t>(std::size(kWords));
  return known ? kWords[quality] : "unknown";
}

void FormatPosition(std::span<wchar_t> text, const PositionValues& values) {
  const DegreesMinutes latitude = Split(values.latitude_rad);
  const DegreesMinutes longitude = Split(values.longitude_rad);
  const float pdop = std::isfinite(values.pdop) ? values.pdop : 0.0f;
  FormatWide(text, "Position(%s): %3d° %07.4f′ %s, %3d° %07.4f′ %s, PDOP: %4.1f (%s)",
             FixWord(values.fixType), latitude.degrees, latitude.minutes, values.latitude_rad > 0 ? "N" : "S",
             longitude.degrees, longitude.minutes, values.longitude_rad > 0 ? "E" : "W",
             static_cast<double>(pdop), PdopWord(pdop));
}

}  // namespace tw
