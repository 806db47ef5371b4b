#include "outputs/position_sentences.h"

#include <cmath>

#include "base/text_format.h"
#include "outputs/sentence_fields.h"

namespace tw {
namespace {

constexpr double kKmhPerKnot = 1.852;
constexpr int32_t kMaxQuality = 8;
constexpr int kLeastDecimals = 2;

// "ddmm.mmmm" of a place in that form, as so many digits of degrees; minutes are rounded before degrees are
// told. Empty when there is no such place.
[[nodiscard]] Field PlaceField(double ddmm, int degreeDigits, int32_t mostDegrees, int decimals) {
  Field field;
  const double place = std::fabs(ddmm);
  if (!(place <= mostDegrees * 100.0)) return field;
  auto degrees = static_cast<int32_t>(place / 100.0);
  const double minutes = place - degrees * 100.0;
  if (minutes >= 60.0) return field;
  const int64_t minute = std::llround(std::pow(10.0, decimals));
  int64_t parts = std::llround(minutes * static_cast<double>(minute));
  if (parts >= 60 * minute) {
    parts = 0;
    ++degrees;
  }
  FormatText(field.text, "%0*d%02d.%0*lld", degreeDigits, degrees, static_cast<int>(parts / minute), decimals,
             static_cast<long long>(parts % minute));
  return field;
}

struct Place {
  Field latitude;
  Field longitude;
  char northSouth;
  char eastWest;

  [[nodiscard]] bool IsNone() const { return latitude.IsEmpty() || longitude.IsEmpty(); }
};

[[nodiscard]] Place PlaceOf(const GpsFix& fix, int decimals) {
  return {PlaceField(fix.latitude, 2, 90, decimals), PlaceField(fix.longitude, 3, 180, decimals),
          fix.latitude < 0 ? 'S' : 'N', fix.longitude < 0 ? 'W' : 'E'};
}

[[nodiscard]] Field TimeField(const GpsTime& utc) {
  const Field hour = IntegerField(utc.hour, 2, 0, 23);
  const Field minute = IntegerField(utc.minute, 2, 0, 59);
  const Field second = IntegerField(utc.second, 2, 0, 60);
  const Field hundredth = IntegerField(utc.hundredth, 2, 0, 99);
  Field field;
  if (hour.IsEmpty() || minute.IsEmpty() || second.IsEmpty() || hundredth.IsEmpty()) return field;
  FormatText(field.text, "%s%s%s.%s", hour.text, minute.text, second.text, hundredth.text);
  return field;
}

[[nodiscard]] Field DateField(const GpsTime& utc) {
  const Field day = IntegerField(utc.day, 2, 1, 31);
  const Field year = IntegerField(utc.year, 1, 0, 999);
  Field field;
  if (day.IsEmpty() || year.IsEmpty() || utc.month < 0 || utc.month > 11) return field;
  FormatText(field.text, "%s%02d%02d", day.text, utc.month + 1, utc.year % 100);
  return field;
}

[[nodiscard]] bool HasQuality(const GpsFix& fix) {
  return fix.quality > 0 && fix.quality <= kMaxQuality;
}

// A full circle is 0.
[[nodiscard]] Field CourseField(double direction_deg) {
  return NumberField(direction_deg >= 359.95 && direction_deg <= 360.0 ? 0.0 : direction_deg, 1, 0.0, 360.0);
}

// An age and a station there are with corrections alone.
struct Correction {
  Field age;
  Field station;
};

[[nodiscard]] Correction CorrectionOf(const GpsFix& fix) {
  if (fix.quality == 1 || !(fix.differentialAge_s > 0)) return {};
  return {NumberField(fix.differentialAge_s, 1, 0.0, 999.9),
          IntegerField(fix.differentialStation, 4, 0, 4095)};
}

[[nodiscard]] char ModeLetter(const GpsFix& fix) {
  constexpr char kModes[] = "ADEM";
  constexpr char kOfQuality[] = "NADARFEMS";
  static_assert(sizeof(kOfQuality) == kMaxQuality + 2);
  return fix.modeCode >= 0 && fix.modeCode < 4 ? kModes[fix.modeCode] : kOfQuality[fix.quality];
}

size_t Gga(SentenceText text, const GpsFix& fix, bool gn, int decimals) {
  const Place place = PlaceOf(fix, decimals);
  const Field time = TimeField(fix.utc);
  if (place.IsNone() || time.IsEmpty()) return NoSentence(text);
  const Correction correction = CorrectionOf(fix);
  return EndSentence(
      text,
      FormatText(text, "$%sGGA,%s,%s,%c,%s,%c,%d,%s,%s,%s,M,%s,M,%s,%s", gn ? "GN" : "GP", time.text,
                 place.latitude.text, place.northSouth, place.longitude.text, place.eastWest, fix.quality,
                 IntegerField(fix.satellitesInUse, 2, 0, 99).text, NumberField(fix.hdop, 1, 0.0, 99.9).text,
                 NumberField(fix.elevation_m, 1, -9'999.0, 99'999.0).text,
                 NumberField(fix.geoidHeight_m, 1, -999.0, 999.0).text, correction.age.text,
                 correction.station.text));
}

size_t Rmc(SentenceText text, const GpsFix& fix, bool gn, int decimals) {
  const Place place = PlaceOf(fix, decimals);
  const Field time = TimeField(fix.utc);
  const Field date = DateField(fix.utc);
  if (place.IsNone() || time.IsEmpty() || date.IsEmpty()) return NoSentence(text);
  const double declination = std::fabs(fix.declination_deg);
  const Field variation = NumberField(declination, 1, 0.05, 180.0);
  const char* const eastWest = variation.IsEmpty() ? "" : fix.declination_deg < 0 ? "W" : "E";
  return EndSentence(
      text,
      FormatText(text, "$%sRMC,%s,A,%s,%c,%s,%c,%s,%s,%s,%s,%s,%c", gn ? "GN" : "GP", time.text,
                 place.latitude.text, place.northSouth, place.longitude.text, place.eastWest,
                 NumberField(fix.speed_kmh / kKmhPerKnot, 1, 0.0, 999.9).text,
                 CourseField(fix.direction_deg).text, date.text, variation.text, eastWest, ModeLetter(fix)));
}

using Build = size_t (*)(SentenceText text, const GpsFix& fix, bool gn, int decimals);

// With the most decimals with which it is no longer than a sentence may be.
size_t BuildLongest(Build build, SentenceText text, const GpsFix& fix, bool gn) {
  if (!HasQuality(fix)) return NoSentence(text);
  size_t length = 0;
  for (int decimals = gn ? 6 : 4; length == 0 && decimals >= kLeastDecimals; --decimals) {
    length = build(text, fix, gn, decimals);
  }
  return length;
}

}  // namespace

size_t BuildOutputGga(SentenceText text, const GpsFix& fix, bool gn) {
  return (fix.presence & kHasGga) != 0 ? BuildLongest(Gga, text, fix, gn) : NoSentence(text);
}

size_t BuildOutputRmc(SentenceText text, const GpsFix& fix, bool gn) {
  const bool said = (fix.presence & kHasGga) != 0 && (fix.presence & kHasRmc) != 0;
  return said ? BuildLongest(Rmc, text, fix, gn) : NoSentence(text);
}

}  // namespace tw
