#include "simulator/gps_sentences.h"

#include <cmath>

#include "base/checksum.h"
#include "base/text_format.h"

namespace tw::sim {
namespace {

constexpr double kKilometresPerMile = 1.852;
constexpr double kDeclination_deg = 7.9;  // west

struct Satellite {
  int number, elevation_deg, azimuth_deg, strength_db;
};

constexpr Satellite kSky[4 * kGsvSentences] = {
    {2, 71, 312, 46},  {5, 58, 41, 45},   {7, 12, 187, 31},  {12, 44, 96, 43},
    {13, 39, 229, 41}, {15, 23, 158, 37}, {18, 17, 64, 35},  {20, 66, 141, 47},
    {21, 9, 278, 29},  {25, 31, 350, 39}, {29, 50, 265, 44}, {30, 14, 21, 33},
};
constexpr size_t kChannels = std::size(kSky);
constexpr size_t kTracked = 8;  // of a receiver that shows empty fields

std::string Closed(std::string_view body) {
  char tail[8];
  const size_t length = FormatText(tail, "*%02X\r\n", XorChecksum(body));
  return "$" + std::string(body) + std::string(tail, length);
}

template <typename... Arguments>
std::string Format(const char* format, Arguments... arguments) {
  char text[128];
  const size_t length = FormatText(text, format, arguments...);
  return {text, length};
}

std::string TimeField(const CalendarTime& utc) {
  return Format("%02d%02d%02d.%02d", utc.hour, utc.minute, utc.second, utc.millisecond / 10);
}

// Degrees and minutes, in ten-thousandths of a minute, so that 59.99996 minutes become the next degree.
std::string AngleField(double angle_deg, int degreeDigits) {
  const int64_t tenThousandths = std::llround(std::fabs(angle_deg) * 600'000.0);
  const auto degrees = static_cast<int>(tenThousandths / 600'000);
  const auto minutes = static_cast<int>(tenThousandths % 600'000);
  return Format("%0*d%02d.%04d", degreeDigits, degrees, minutes / 10'000, minutes % 10'000);
}

// Latitude, its letter, longitude, its letter; four empty fields without a fix.
std::string PositionFields(const GpsMoment& moment) {
  if (!moment.fix) return ",,,";
  return AngleField(moment.latitude_deg, 2) + (moment.latitude_deg < 0 ? ",S," : ",N,") +
         AngleField(moment.longitude_deg, 3) + (moment.longitude_deg < 0 ? ",W" : ",E");
}

char ModeLetter(const GpsMoment& moment) {
  return !moment.fix ? 'N' : moment.differential ? 'D' : 'A';
}

std::string Head(std::string_view talker, std::string_view type) {
  return std::string(talker) + std::string(type);
}

}  // namespace

std::string GgaSentence(std::string_view talker, const GpsMoment& moment) {
  std::string body = Head(talker, "GGA,") + TimeField(moment.utc) + "," + PositionFields(moment);
  if (!moment.fix) return Closed(body + ",0,00,99.9,,M,,M,,");
  const size_t used = moment.emptyFields ? kTracked : kChannels;
  body += Format(",%d,%02zu,0.9,4.2,M,", moment.differential ? 2 : 1, used);
  body += moment.emptyFields ? ",M," : "28.6,M,";
  body += moment.differential ? "1.0,0120" : ",";
  return Closed(body);
}

std::string GsaSentence(std::string_view talker, const GpsMoment& moment) {
  const size_t used = !moment.fix ? 0 : moment.emptyFields ? kTracked : kChannels;
  std::string body = Head(talker, moment.fix ? "GSA,A,3," : "GSA,A,1,");
  for (size_t i = 0; i < kChannels; ++i) body += i < used ? Format("%02d,", kSky[i].number) : ",";
  body += moment.fix ? "1.6,0.9,1.3" : "99.9,99.9,99.9";
  if (moment.laterFields) body += ",1";
  return Closed(body);
}

std::string GsvSentence(int index, const GpsMoment& moment) {
  const auto inView = static_cast<int>(moment.emptyFields ? kTracked + 2 : kChannels);
  std::string body = Format("GPGSV,%d,%d,%02d", kGsvSentences, index, inView);
  for (int i = 4 * (index - 1); i < 4 * index && i < inView; ++i) {
    const Satellite& seen = kSky[i];
    body += Format(",%02d,%02d,%03d,", seen.number, seen.elevation_deg, seen.azimuth_deg);
    const bool heard = !moment.emptyFields || i < static_cast<int>(kTracked);
    if (heard) body += Format("%02d", seen.strength_db);
  }
  if (moment.laterFields) body += ",1";
  return Closed(body);
}

std::string RmcSentence(std::string_view talker, const GpsMoment& moment) {
  std::string body = Head(talker, "RMC,") + TimeField(moment.utc) + (moment.fix ? ",A," : ",V,");
  body += PositionFields(moment);
  body += moment.fix ? Format(",%.1f,%.1f,", moment.speed_kn, moment.course_deg) : ",,,";
  body += Format("%02d%02d%02d,", moment.utc.day, moment.utc.month, moment.utc.year % 100);
  body += moment.emptyFields ? "," : Format("%.1f,W", kDeclination_deg);
  body += Format(",%c", ModeLetter(moment));
  if (moment.laterFields) body += ",V";
  return Closed(body);
}

std::string VtgSentence(std::string_view talker, const GpsMoment& moment) {
  std::string body = Head(talker, "VTG,");
  if (moment.fix) {
    body += Format("%.1f,T,", moment.course_deg);
    body += moment.emptyFields ? ",M,"
                               : Format("%.1f,M,", std::fmod(moment.course_deg + kDeclination_deg, 360.0));
    body += Format("%.1f,N,%.1f,K", moment.speed_kn, moment.speed_kn * kKilometresPerMile);
  } else {
    body += ",T,,M,,N,,K";
  }
  if (moment.laterFields) body += Format(",%c", ModeLetter(moment));
  return Closed(body);
}

std::string GllSentence(std::string_view talker, const GpsMoment& moment) {
  return Closed(Head(talker, "GLL,") + PositionFields(moment) + "," + TimeField(moment.utc) +
                (moment.fix ? ",A" : ",V") + Format(",%c", ModeLetter(moment)));
}

}  // namespace tw::sim
