#include "gps/nmea_packet.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "gps/nmea_scan.h"

namespace tw {
namespace {

constexpr ParseFailure kParsed{nullptr, nullptr};
constexpr char kTimeFormatError[] = "Parse of time error (format error)!";
constexpr double kKmhPerKnot = 1.852;

// Bounds that no receiver's values reach; a sentence beyond them is damaged.
constexpr double kMaxDegreesMinutes = 36'000.0;
constexpr double kMaxMetres = 1'000'000.0;
constexpr double kMaxSpeed = 100'000.0;
constexpr double kMaxDop = 10'000.0;
constexpr double kMaxAge_s = 1'000'000.0;
constexpr int32_t kMaxCount = 9'999;

bool Within(double value, double bound) {
  return std::fabs(value) <= bound;
}
bool IsCount(int32_t value) {
  return value >= 0 && value <= kMaxCount;
}
double Signed(double value, char letter, char negative) {
  return letter == negative ? -std::fabs(value) : std::fabs(value);
}

// The texts of one sentence type, so that GP and GN share their parsers.
struct Texts {
  const char* parse;
  const char* time;
};

template <size_t N>
int Scan(std::string_view sentence, std::string_view format, const ScanTarget (&targets)[N]) {
  return ScanSentence(sentence, format, targets);
}

ParseFailure ParseGga(std::string_view sentence, std::string_view format, const Texts& texts,
                      Packet& packet) {
  GgaPacket gga{};
  std::string_view time;
  char ns = 0;
  char ew = 0;
  char elevationUnit = 0;
  char geoidUnit = 0;
  const ScanTarget targets[] = {&time,
                                &gga.latitude,
                                &ns,
                                &gga.longitude,
                                &ew,
                                &gga.quality,
                                &gga.satellitesInUse,
                                &gga.hdop,
                                &gga.elevation_m,
                                &elevationUnit,
                                &gga.geoidHeight_m,
                                &geoidUnit,
                                &gga.differentialAge_s,
                                &gga.differentialStation};
  if (Scan(sentence, format, targets) != 14) return {texts.parse, nullptr};
  if (!ParseTimeOfDay(time, gga.time)) return {texts.time, kTimeFormatError};
  const bool sane = Within(gga.latitude, kMaxDegreesMinutes) && Within(gga.longitude, kMaxDegreesMinutes) &&
                    IsCount(gga.quality) && IsCount(gga.satellitesInUse) && Within(gga.hdop, kMaxDop) &&
                    Within(gga.elevation_m, kMaxMetres) && Within(gga.geoidHeight_m, kMaxMetres) &&
                    Within(gga.differentialAge_s, kMaxAge_s) && IsCount(gga.differentialStation);
  if (!sane) return {texts.parse, nullptr};
  gga.latitude = Signed(gga.latitude, ns, 'S');
  gga.longitude = Signed(gga.longitude, ew, 'W');
  packet = gga;
  return kParsed;
}

ParseFailure ParseGsa(std::string_view sentence, Packet& packet) {
  constexpr ParseFailure kFailed{"GPGSA parse error!", nullptr};
  GsaPacket gsa{};
  char mode = 0;
  int32_t used[12] = {};
  const ScanTarget targets[] = {&mode,     &gsa.fixType, &used[0],  &used[1],  &used[2], &used[3],
                                &used[4],  &used[5],     &used[6],  &used[7],  &used[8], &used[9],
                                &used[10], &used[11],    &gsa.pdop, &gsa.hdop, &gsa.vdop};
  if (Scan(sentence, "$GPGSA,%C,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%f,%f,%f*", targets) != 17)
    return kFailed;
  if (!IsCount(gsa.fixType) || !Within(gsa.pdop, kMaxDop) || !Within(gsa.hdop, kMaxDop) ||
      !Within(gsa.vdop, kMaxDop)) {
    return kFailed;
  }
  packet = gsa;
  return kParsed;
}

ParseFailure ParseGsv(std::string_view sentence, Packet& packet) {
  constexpr ParseFailure kFailed{"GPGSV parse error!", nullptr};
  GsvPacket gsv{};
  int32_t sentences = 0;
  GpsSatellite* s = gsv.satellites;
  const ScanTarget targets[] = {&sentences,          &gsv.sentenceIndex, &gsv.satellitesInView, &s[0].id,
                                &s[0].elevation_deg, &s[0].azimuth_deg,  &s[0].signal_db,       &s[1].id,
                                &s[1].elevation_deg, &s[1].azimuth_deg,  &s[1].signal_db,       &s[2].id,
                                &s[2].elevation_deg, &s[2].azimuth_deg,  &s[2].signal_db,       &s[3].id,
                                &s[3].elevation_deg, &s[3].azimuth_deg,  &s[3].signal_db};
  const int converted =
      Scan(sentence, "$GPGSV,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d*", targets);
  if (converted < 3 || gsv.sentenceIndex < 1 || !IsCount(gsv.sentenceIndex) ||
      !IsCount(gsv.satellitesInView)) {
    return kFailed;
  }
  gsv.count = std::clamp(gsv.satellitesInView - 4 * (gsv.sentenceIndex - 1), 0, 4);
  if (converted < 3 + 4 * gsv.count) return kFailed;
  packet = gsv;
  return kParsed;
}

int32_t ModeCode(char letter) {
  constexpr std::string_view kLetters = "ADEM";
  const size_t at = letter == '\0' ? kLetters.npos : kLetters.find(letter);
  return at == kLetters.npos ? 4 : static_cast<int32_t>(at);
}

ParseFailure ParseRmc(std::string_view sentence, std::string_view format, const Texts& texts,
                      Packet& packet) {
  RmcPacket rmc{};
  std::string_view time;
  char status = 0;
  char ns = 0;
  char ew = 0;
  char declinationSide = 0;
  char mode = 0;
  double speed_knots = 0;
  int32_t month = 0;
  int32_t year = 0;
  const ScanTarget targets[] = {&time,
                                &status,
                                &rmc.latitude,
                                &ns,
                                &rmc.longitude,
                                &ew,
                                &speed_knots,
                                &rmc.direction_deg,
                                &rmc.day,
                                &month,
                                &year,
                                &rmc.declination_deg,
                                &declinationSide,
                                &mode};
  if (Scan(sentence, format, targets) < 13) return {texts.parse, nullptr};
  if (!ParseTimeOfDay(time, rmc.time)) return {texts.time, kTimeFormatError};
  if (!Within(rmc.latitude, kMaxDegreesMinutes) || !Within(rmc.longitude, kMaxDegreesMinutes) ||
      !Within(speed_knots, kMaxSpeed) || !Within(rmc.direction_deg, kMaxSpeed) ||
      !Within(rmc.declination_deg, kMaxSpeed)) {
    return {texts.parse, nullptr};
  }
  rmc.latitude = Signed(rmc.latitude, ns, 'S');
  rmc.longitude = Signed(rmc.longitude, ew, 'W');
  rmc.declination_deg = Signed(rmc.declination_deg, declinationSide, 'W');
  rmc.speed_kmh = speed_knots * kKmhPerKnot;
  rmc.hasDate = month >= 1 && month <= 12 && rmc.day >= 1 && rmc.day <= 31 && year >= 0 && year <= 99;
  rmc.month = month - 1;
  rmc.year = year >= 90 ? year : year + 100;
  rmc.modeCode = ModeCode(mode);
  packet = rmc;
  return kParsed;
}

ParseFailure ParseVtg(std::string_view sentence, Packet& packet) {
  constexpr ParseFailure kFailed{"GPVTG parse error!", nullptr};
  VtgPacket vtg{};
  double magnetic = 0;
  double knots = 0;
  char units[4] = {};
  const ScanTarget targets[] = {&vtg.direction_deg, &units[0],      &magnetic, &units[1], &knots,
                                &units[2],          &vtg.speed_kmh, &units[3]};
  if (Scan(sentence, "$GPVTG,%f,%C,%f,%C,%f,%C,%f,%C*", targets) != 8) return kFailed;
  if (std::string_view(units, 4) != "TMNK") return {"GPVTG parse error (format error)!", nullptr};
  if (!Within(vtg.direction_deg, kMaxSpeed) || !Within(vtg.speed_kmh, kMaxSpeed)) return kFailed;
  packet = vtg;
  return kParsed;
}

}  // namespace

SentenceType TypeOfSentence(std::string_view sentence) {
  constexpr struct {
    std::string_view name;
    SentenceType type;
  } kTypes[] = {
      {"GPGGA", SentenceType::gpgga}, {"GPGSA", SentenceType::gpgsa}, {"GPGSV", SentenceType::gpgsv},
      {"GPRMC", SentenceType::gprmc}, {"GPVTG", SentenceType::gpvtg}, {"GNGGA", SentenceType::gngga},
      {"GNRMC", SentenceType::gnrmc}, {"GPGLL", SentenceType::gpgll}, {"GNGLL", SentenceType::gngll},
  };
  if (sentence.size() < 6) return SentenceType::other;
  for (const auto& row : kTypes) {
    if (sentence.substr(1, 5) == row.name) return row.type;
  }
  return SentenceType::other;
}

bool ParseTimeOfDay(std::string_view field, TimeOfDay& time) {
  TimeOfDay read{};
  const ScanTarget targets[] = {&read.hour, &read.minute, &read.second, &read.hundredth};
  const bool whole = field.size() == 6;
  if (!whole && (field.size() < 8 || field.size() > 10)) return false;
  const int wanted = whole ? 3 : 4;
  const int converted =
      ScanSentence(field, whole ? "%2d%2d%2d" : "%2d%2d%2d.%d", {targets, static_cast<size_t>(wanted)});
  if (converted != wanted || std::min({read.hour, read.minute, read.second, read.hundredth}) < 0)
    return false;
  time = read;
  return true;
}

ParseFailure ParseSentence(SentenceType type, std::string_view sentence, Packet& packet) {
  switch (type) {
    case SentenceType::gpgga:
      return ParseGga(sentence, "$GPGGA,%s,%f,%C,%f,%C,%d,%d,%f,%f,%C,%f,%C,%f,%d*",
                      {"GPGGA parse error!", "GPGGA time parse error!"}, packet);
    case SentenceType::gngga:
      return ParseGga(sentence, "$GNGGA,%s,%f,%C,%f,%C,%d,%d,%f,%f,%C,%f,%C,%f,%d*",
                      {"GNGGA parse error!", "GNGGA time parse error!"}, packet);
    case SentenceType::gpgsa:
      return ParseGsa(sentence, packet);
    case SentenceType::gpgsv:
      return ParseGsv(sentence, packet);
    case SentenceType::gprmc:
      return ParseRmc(sentence, "$GPRMC,%s,%C,%f,%C,%f,%C,%f,%f,%2d%2d%2d,%f,%C,%C*",
                      {"GPRMC parse error!", "GPRMC time parse error!"}, packet);
    case SentenceType::gnrmc:
      return ParseRmc(sentence, "$GNRMC,%s,%C,%f,%C,%f,%C,%f,%f,%2d%2d%2d,%f,%C,%C*",
                      {"GNRMC parse error!", "GNRMC time parse error!"}, packet);
    case SentenceType::gpvtg:
      return ParseVtg(sentence, packet);
    // kept: the form of a GLL sentence holds seven conversions while fourteen are asked for, so a GLL
    // sentence never contributes to the fix.
    case SentenceType::gpgll:
      return {"GPGLL parse error!", nullptr};
    case SentenceType::gngll:
      return {"GNGLL parse error!", nullptr};
    case SentenceType::other:
      break;
  }
  return {"", nullptr};
}

}  // namespace tw
