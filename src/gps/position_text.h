// The position as the status bar shows it, and the conversions behind it. Pure; any thread.
#pragma once

#include <cstdint>
#include <span>

#include "gps/gps_fix.h"

namespace tw {

inline constexpr double kRadiansPerDegree = 0.017453292519943295;

// ddmm.mmmm (or dddmm.mmmm), signed, to radians.
[[nodiscard]] double RadiansFromDegreesMinutes(double ddmm);

// The quality word: "N/A" for exactly 0, "Ideal" below 1 … "Poor" from 20 on.
[[nodiscard]] const char* PdopWord(float pdop);

// What a GGA's quality means: "none", "GPS", "DGPS", "RTK fixed" …
[[nodiscard]] const char* GgaQualityWord(int32_t quality);

struct PositionValues {
  int32_t fixType;  // 1 gives "N/A", 2 "2D", everything else "3D"
  float latitude_rad;
  float longitude_rad;
  float pdop;
};

// "Position(3D):  52° 30.5000′ N,  13° 12.0000′ E, PDOP:  1.9 (Excellent)". kept: a latitude of exactly 0 is
// S, a longitude of 0 is W, a fix type of 0 is 3D. Played files may hold anything: what is no number, or no
// angle, is shown as 0.
void FormatPosition(std::span<wchar_t> text, const PositionValues& values);

}  // namespace tw
