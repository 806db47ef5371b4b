// The line that describes a ping, in the status bar and below the echogram. Pure; any thread.
#pragma once

#include <cstdint>
#include <span>

#include "app/state/depth_text.h"

namespace tw {

// The texts of the string table, but that altitudes come with their unit; UTF-8, formatted by FormatPingLine
// and FormatDualPingLine alone.
inline constexpr char kSingleLineFormat[] =
    "Time:%02d.%02d.%02d %02d:%02d:%02d UTC Ping:%lu, Altitude:%s, Temperature:%.1f°C";
inline constexpr char kSingleAttitudeLineFormat[] =
    "Time:%02d.%02d.%02d %02d:%02d:%02d UTC Ping:%lu, Altitude:%s, Temperature:%.1f°C, Pitch:%.1f°, "
    "Roll:%.1f°";
inline constexpr char kDualLineFormat[] =
    "Time:%02d.%02d.%02d %02d:%02d:%02d, Ping:%lu, AltitudeH:%s, AltitudeL:%s, Temperature:%.1f°C";
inline constexpr char kDualAttitudeLineFormat[] =
    "Time:%02d.%02d.%02d %02d:%02d:%02d, Ping:%lu, AltitudeH:%s, AltitudeL:%s, Temperature:%.1f°C, "
    "Pitch:%.1f°, Roll:%.1f°";

struct PingLineValues {
  uint32_t time_s;  // since 1970, UTC; shown as day, month, year, hour, minute, second
  uint32_t ping;
  float altitude_m;     // in a dual line that of the high channel
  float altitudeLow_m;  // dual line only
  float temperature_c;
  float pitch_deg;
  float roll_deg;
  DepthUnit unit = kMetres;
};

// Without attitude the line ends behind the temperature.
void FormatPingLine(std::span<wchar_t> text, const PingLineValues& values, bool attitude);
void FormatDualPingLine(std::span<wchar_t> text, const PingLineValues& values, bool attitude);

}  // namespace tw
