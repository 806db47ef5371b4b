#include "acquisition/ping_line.h"

#include "base/calendar.h"
#include "base/text_format.h"

namespace tw {
namespace {

constexpr int kSingleDecimals = 3;
constexpr int kDualDecimals = 2;

struct AltitudeText {
  char text[64];  // a float with three decimals takes 44

  AltitudeText(float altitude_m, DepthUnit unit, int decimals) {
    FormatDepth(std::span<char>(text), static_cast<double>(altitude_m), unit, decimals);
  }
};

}  // namespace

void FormatPingLine(std::span<wchar_t> text, const PingLineValues& values, bool attitude) {
  const CalendarTime time = CalendarFromUnixSeconds(values.time_s);
  const unsigned long ping = values.ping;
  const AltitudeText altitude(values.altitude_m, values.unit, kSingleDecimals);
  if (attitude) {
    FormatWide(text, kSingleAttitudeLineFormat, time.day, time.month, time.year, time.hour, time.minute,
               time.second, ping, altitude.text, values.temperature_c, values.pitch_deg, values.roll_deg);
  } else {
    FormatWide(text, kSingleLineFormat, time.day, time.month, time.year, time.hour, time.minute, time.second,
               ping, altitude.text, values.temperature_c);
  }
}

void FormatDualPingLine(std::span<wchar_t> text, const PingLineValues& values, bool attitude) {
  const CalendarTime time = CalendarFromUnixSeconds(values.time_s);
  const unsigned long ping = values.ping;
  const AltitudeText high(values.altitude_m, values.unit, kDualDecimals);
  const AltitudeText low(values.altitudeLow_m, values.unit, kDualDecimals);
  if (attitude) {
    FormatWide(text, kDualAttitudeLineFormat, time.day, time.month, time.year, time.hour, time.minute,
               time.second, ping, high.text, low.text, values.temperature_c, values.pitch_deg,
               values.roll_deg);
  } else {
    FormatWide(text, kDualLineFormat, time.day, time.month, time.year, time.hour, time.minute, time.second,
               ping, high.text, low.text, values.temperature_c);
  }
}

}  // namespace tw
