#include "acquisition/ping_line.h"

#include "base/calendar.h"
#include "base/text_format.h"

namespace tw {

void FormatPingLine(std::span<wchar_t> text, const PingLineValues& values, bool attitude) {
  const CalendarTime time = CalendarFromUnixSeconds(values.time_s);
  const unsigned long ping = values.ping;
  if (attitude) {
    FormatWide(text, kSingleAttitudeLineFormat, time.day, time.month, time.year, time.hour, time.minute,
               time.second, ping, values.altitude_m, values.temperature_c, values.pitch_deg, values.roll_deg);
  } else {
    FormatWide(text, kSingleLineFormat, time.day, time.month, time.year, time.hour, time.minute, time.second,
               ping, values.altitude_m, values.temperature_c);
  }
}

void FormatDualPingLine(std::span<wchar_t> text, const PingLineValues& values, bool attitude) {
  const CalendarTime time = CalendarFromUnixSeconds(values.time_s);
  const unsigned long ping = values.ping;
  if (attitude) {
    FormatWide(text, kDualAttitudeLineFormat, time.day, time.month, time.year, time.hour, time.minute,
               time.second, ping, values.altitude_m, values.altitudeLow_m, values.temperature_c,
               values.pitch_deg, values.roll_deg);
  } else {
    FormatWide(text, kDualLineFormat, time.day, time.month, time.year, time.hour, time.minute, time.second,
               ping, values.altitude_m, values.altitudeLow_m, values.temperature_c);
  }
}

}  // namespace tw
