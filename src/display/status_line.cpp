#include "display/status_line.h"

#include <algorithm>
#include <cinttypes>

#include "base/calendar.h"
#include "base/text_format.h"

namespace tw {

namespace {

// The date is day, month, four-digit year. The same texts stand in the program's string table.
constexpr char kSingle[] =
    "Time:%02d.%02d.%02d %02d:%02d:%02d UTC Ping:%" PRIu32 ", Altitude:%.3fm, Temperature:%.1f\u00B0C";
constexpr char kSingleAttitude[] =
    "Time:%02d.%02d.%02d %02d:%02d:%02d UTC Ping:%" PRIu32
    ", Altitude:%.3fm, Temperature:%.1f\u00B0C, Pitch:%.1f\u00B0, Roll:%.1f\u00B0";
constexpr char kDual[] = "Time:%02d.%02d.%02d %02d:%02d:%02d, Ping:%" PRIu32
                         ", AltitudeH:%.2fm, AltitudeL:%.2fm, Temperature:%.1f\u00B0C";
constexpr char kDualAttitude[] =
    "Time:%02d.%02d.%02d %02d:%02d:%02d, Ping:%" PRIu32
    ", AltitudeH:%.2fm, AltitudeL:%.2fm, Temperature:%.1f\u00B0C, Pitch:%.1f\u00B0, Roll:%.1f\u00B0";

}  // namespace

void FormatSingleStatus(std::span<char> out, const ShownPing& ping, uint32_t pingNumber, bool withAttitude) {
  const CalendarTime t = CalendarFromUnixSeconds(ping.time_s);
  if (withAttitude) {
    FormatText(out, kSingleAttitude, t.day, t.month, t.year, t.hour, t.minute, t.second, pingNumber,
               ping.altitude_m, ping.temperature_c, ping.pitch_deg, ping.roll_deg);
  } else {
    FormatText(out, kSingle, t.day, t.month, t.year, t.hour, t.minute, t.second, pingNumber, ping.altitude_m,
               ping.temperature_c);
  }
}

void FormatDualStatus(std::span<char> out, const ShownPing& ping, uint32_t pingNumber, float altitudeHigh_m,
                      float altitudeLow_m, bool withAttitude) {
  const CalendarTime t = CalendarFromUnixSeconds(ping.time_s);
  if (withAttitude) {
    FormatText(out, kDualAttitude, t.day, t.month, t.year, t.hour, t.minute, t.second, pingNumber,
               altitudeHigh_m, altitudeLow_m, ping.temperature_c, ping.pitch_deg, ping.roll_deg);
  } else {
    FormatText(out, kDual, t.day, t.month, t.year, t.hour, t.minute, t.second, pingNumber, altitudeHigh_m,
               altitudeLow_m, ping.temperature_c);
  }
}

bool DualModeHasAttitude(int32_t deviceFamily, int32_t outputMode) {
  static constexpr int32_t kFirstFamily[] = {2, 3, 4, 9, 100, 101};
  static constexpr int32_t kOtherFamilies[] = {2, 3, 4, 5, 6, 10, 100, 101};
  const std::span<const int32_t> modes =
      deviceFamily == 1 ? std::span<const int32_t>(kFirstFamily) : std::span<const int32_t>(kOtherFamilies);
  return std::find(modes.begin(), modes.end(), outputMode) != modes.end();
}

}  // namespace tw
