#include "tools/echotool/nmea_output.h"

#include <cmath>
#include <limits>

#include "base/calendar.h"
#include "base/text_format.h"
#include "outputs/depth_sentences.h"
#include "outputs/position_sentences.h"
#include "outputs/sentence_fields.h"

namespace tw::echotool {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();

size_t BuildZda(SentenceText text, const CalendarTime& time, int hundredth) {
  return EndSentence(text, FormatText(text, "$GNZDA,%02d%02d%02d.%02d,%02d,%02d,%04d,00,00", time.hour,
                                      time.minute, time.second, hundredth, time.day, time.month, time.year));
}

double DegreesMinutes(double degrees) {
  const double whole = std::trunc(degrees);
  return whole * 100.0 + (degrees - whole) * 60.0;
}

// What a recording does not tell lies out of all bounds, so that its field is empty.
GpsFix FixOf(const RecordedPing& ping, const Place_deg& place, int64_t time_ms) {
  const CalendarTime time = CalendarFromUnixSeconds(time_ms / 1000);
  GpsFix fix{};
  fix.presence = kHasGga | kHasRmc;
  fix.utc = {time.year - 1900,
             time.month - 1,
             time.day,
             time.hour,
             time.minute,
             time.second,
             static_cast<int32_t>(time_ms % 1000 / 10)};
  fix.quality = ping.gpsQuality;
  fix.latitude = DegreesMinutes(place.latitude);
  fix.longitude = DegreesMinutes(place.longitude);
  fix.elevation_m = static_cast<double>(ping.header.gpsAltitude_m);
  fix.hdop = fix.geoidHeight_m = fix.speed_kmh = fix.direction_deg = fix.declination_deg = kNone;
  fix.satellitesInUse = -1;
  fix.modeCode = -1;
  return fix;
}

}  // namespace

bool NmeaWriter::AppendPosition(const RecordedPing& ping, const Place_deg& place, int64_t time_ms) {
  char text[kSentenceText];
  const GpsFix fix = FixOf(ping, place, time_ms);
  return AppendText(output_, {text, BuildOutputGga(text, fix, true)}) &&
         AppendText(output_, {text, BuildOutputRmc(text, fix, true)});
}

bool NmeaWriter::Append(const RecordedPing& ping) {
  char text[kSentenceText];
  const PingHeader& header = ping.header;
  const auto time_ms = clock_.TimeOf(ping);
  if (time_ms && !AppendText(output_, {text, BuildZda(text, CalendarFromUnixSeconds(*time_ms / 1000),
                                                      static_cast<int>(*time_ms % 1000 / 10))}))
    return false;
  const auto point = track_.Next(ping);
  if (point && time_ms && !AppendPosition(ping, point->place, *time_ms)) return false;
  const float altitude_m = AltitudeOf(ping, ping.channel);
  const bool hasAttitude = header.pitch_deg < kNoAttitude;
  const bool hasTemperature = header.temperature_c != 0.0f;  // what a mode without one gives
  return AppendText(output_, {text, BuildDbt(text, altitude_m)}) &&
         AppendText(output_, {text, BuildDpt(text, altitude_m, 0.0f, header.range_m)}) &&
         (!hasTemperature || AppendText(output_, {text, BuildMtw(text, header.temperature_c)})) &&
         (!hasAttitude || AppendText(output_, {text, BuildXdr(text, header.pitch_deg, header.roll_deg)}));
}

std::string NmeaWriter::Emptiness() const {
  return output_.Size() != 0 ? "" : "holds neither times, depths nor positions";
}

}  // namespace tw::echotool
