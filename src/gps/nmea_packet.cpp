#include "gps/nmea_packet.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <iterator>

#include "gps/nmea_scan.h"

namespace tw {
namespace {

constexpr double kMaxLatitude = 9000;    // ddmm.mmmm
constexpr double kMaxLongitude = 18000;  // dddmm.mmmm
constexpr double kMaxFigure = 1e6;       // metres, seconds, knots, degrees, dilution
constexpr double kKmhPerKnot = 1.852;
constexpr int32_t kMaxGsvSentences = kMaxSatellites / 4;

enum class ReadResult : uint8_t {
  complete,
  parseError,
  secondError,      // the row's second text
  timeFormatError,  // the time has a wrong length
};

struct SentenceRow {
  SentenceType type;
  std::string_view word;
  ReadResult (*read)(std::string_view sentence, const SentenceRow& row, Packet& packet);
  std::string_view format;
  int least;  // conversions
  int most;
  const char* parseError;
  const char* secondError;

  [[nodiscard]] bool Accepts(int converted) const { return converted >= least && converted <= most; }
};

template <typename... Targets>
int Scan(std::string_view sentence, std::string_view format, Targets&... targets) {
  const ScanTarget list[] = {&targets...};
  return ScanSentence(sentence, format, list);
}

bool AreFigures(std::initializer_list<double> figures) {
  return std::all_of(figures.begin(), figures.end(), [](double f) { return std::fabs(f) <= kMaxFigure; });
}

bool IsBetween(int32_t value, int32_t low, int32_t high) {
  return value >= low && value <= high;
}

// Makes `value` negative on the southern or western side. False when it is none of a globe.
bool ApplySide(double& value, char side, char negativeSide, double most) {
  if (!(value >= 0 && value <= most)) return false;
  if (side == negativeSide) value = -value;
  return true;
}

// kept: the digits after the point are a number of their own, so ".5" is 5 hundredths and ".123" is 123.
ReadResult ReadTime(std::string_view field, TimeOfDay& time) {
  TimeOfDay read{};
  int missing = 0;
  if (field.size() == 6) {
    missing = 3 - Scan(field, "%2d%2d%2d", read.hour, read.minute, read.second);
  } else if (field.size() >= 8 && field.size() <= 10) {
    missing = 4 - Scan(field, "%2d%2d%2d.%d", read.hour, read.minute, read.second, read.hundredth);
  } else {
    return ReadResult::timeFormatError;
  }
  const bool valid = missing == 0 && IsBetween(read.hour, 0, 23) && IsBetween(read.minute, 0, 59) &&
                     IsBetween(read.second, 0, 60) && IsBetween(read.hundredth, 0, 999);
  if (!valid) return ReadResult::secondError;
  time = read;
  return ReadResult::complete;
}

ReadResult ReadGga(std::string_view sentence, const SentenceRow& row, Packet& packet) {
  GgaPacket gga{};
  std::string_view time;
  char northSouth = 0, eastWest = 0, unit = 0, geoidUnit = 0;
  const int converted = Scan(sentence, row.format, time, gga.latitude, northSouth, gga.longitude, eastWest,
                             gga.quality, gga.satellitesInUse, gga.hdop, gga.elevation_m, unit,
                             gga.geoidHeight_m, geoidUnit, gga.differentialAge_s, gga.differentialStation);
  if (!row.Accepts(converted)) return ReadResult::parseError;
  const bool valid = ApplySide(gga.latitude, northSouth, 'S', kMaxLatitude) &&
                     ApplySide(gga.longitude, eastWest, 'W', kMaxLongitude) && IsBetween(gga.quality, 0, 9) &&
                     IsBetween(gga.satellitesInUse, 0, 99) && IsBetween(gga.differentialStation, 0, 9999) &&
                     AreFigures({gga.hdop, gga.elevation_m, gga.geoidHeight_m, gga.differentialAge_s});
  if (!valid) return ReadResult::parseError;
  const ReadResult result = ReadTime(time, gga.time);
  if (result == ReadResult::complete) packet = gga;
  return result;
}

ReadResult ReadGsa(std::string_view sentence, const SentenceRow& row, Packet& packet) {
  GsaPacket gsa{};
  char selection = 0;
  int32_t used[12] = {};
  const int converted =
      Scan(sentence, row.format, selection, gsa.fixType, used[0], used[1], used[2], used[3], used[4], used[5],
           used[6], used[7], used[8], used[9], used[10], used[11], gsa.pdop, gsa.hdop, gsa.vdop);
  if (!row.Accepts(converted)) return ReadResult::parseError;
  if (!IsBetween(gsa.fixType, 0, 3) || !AreFigures({gsa.pdop, gsa.hdop, gsa.vdop})) {
    return ReadResult::parseError;
  }
  packet = gsa;
  return ReadResult::complete;
}

ReadResult ReadGsv(std::string_view sentence, const SentenceRow& row, Packet& packet) {
  GsvPacket gsv{};
  int32_t sentences = 0;
  auto& s = gsv.satellites;
  const int converted = Scan(sentence, row.format, sentences, gsv.sentenceIndex, gsv.satellitesInView,
                             s[0].id, s[0].elevation_deg, s[0].azimuth_deg, s[0].signal_db,  //
                             s[1].id, s[1].elevation_deg, s[1].azimuth_deg, s[1].signal_db,  //
                             s[2].id, s[2].elevation_deg, s[2].azimuth_deg, s[2].signal_db,  //
                             s[3].id, s[3].elevation_deg, s[3].azimuth_deg, s[3].signal_db);
  if (!row.Accepts(converted)) return ReadResult::parseError;
  if (!IsBetween(sentences, 1, kMaxGsvSentences) || !IsBetween(gsv.sentenceIndex, 1, sentences) ||
      !IsBetween(gsv.satellitesInView, 0, kMaxSatellites)) {
    return ReadResult::parseError;
  }
  gsv.count = std::clamp(gsv.satellitesInView - 4 * (gsv.sentenceIndex - 1), 0, 4);
  if (converted < row.least + 4 * gsv.count) return ReadResult::parseError;
  packet = gsv;
  return ReadResult::complete;
}

int32_t ModeCode(char mode) {
  const size_t place = std::string_view("ADEM").find(mode);
  return place == std::string_view::npos ? 4 : static_cast<int32_t>(place);
}

// Day, month and two-digit year as sent. An empty date, or one of zeros alone, is none.
bool ReadDate(int32_t day, int32_t month, int32_t year, RmcPacket& rmc) {
  if (day == 0 && month == 0 && year == 0) return true;
  if (!IsBetween(day, 1, 31) || !IsBetween(month, 1, 12) || !IsBetween(year, 0, 99)) return false;
  rmc.hasDate = true;
  rmc.day = day;
  rmc.month = month - 1;
  rmc.year = year >= 90 ? year : year + 100;
  return true;
}

ReadResult ReadRmc(std::string_view sentence, const SentenceRow& row, Packet& packet) {
  RmcPacket rmc{};
  std::string_view time;
  char status = 0, northSouth = 0, eastWest = 0, declinationSide = 0, mode = 0;
  int32_t day = 0, month = 0, year = 0;
  double speed_kn = 0;
  const int converted =
      Scan(sentence, row.format, time, status, rmc.latitude, northSouth, rmc.longitude, eastWest, speed_kn,
           rmc.direction_deg, day, month, year, rmc.declination_deg, declinationSide, mode);
  if (!row.Accepts(converted)) return ReadResult::parseError;
  const bool valid = ApplySide(rmc.latitude, northSouth, 'S', kMaxLatitude) &&
                     ApplySide(rmc.longitude, eastWest, 'W', kMaxLongitude) &&
                     ReadDate(day, month, year, rmc) &&
                     AreFigures({speed_kn, rmc.direction_deg, rmc.declination_deg});
  if (!valid) return ReadResult::parseError;
  rmc.speed_kmh = speed_kn * kKmhPerKnot;
  if (declinationSide == 'W') rmc.declination_deg = -rmc.declination_deg;
  rmc.modeCode = ModeCode(mode);
  const ReadResult result = ReadTime(time, rmc.time);
  if (result == ReadResult::complete) packet = rmc;
  return result;
}

ReadResult ReadVtg(std::string_view sentence, const SentenceRow& row, Packet& packet) {
  VtgPacket vtg{};
  double magnetic_deg = 0;
  double speed_kn = 0;
  char units[4] = {};
  const int converted = Scan(sentence, row.format, vtg.direction_deg, units[0], magnetic_deg, units[1],
                             speed_kn, units[2], vtg.speed_kmh, units[3]);
  if (!row.Accepts(converted)) return ReadResult::parseError;
  if (std::string_view(units, 4) != "TMNK") return ReadResult::secondError;
  if (!AreFigures({vtg.direction_deg, vtg.speed_kmh})) return ReadResult::parseError;
  packet = vtg;
  return ReadResult::complete;
}

// kept: the format holds seven conversions and the row asks for 14, so each GLL is rejected; the position
// comes from GGA and RMC alone.
ReadResult ReadGll(std::string_view sentence, const SentenceRow& row, Packet&) {
  double latitude = 0, longitude = 0;
  char northSouth = 0, eastWest = 0, status = 0, mode = 0;
  std::string_view time;
  TimeOfDay timeOfDay{};
  const int converted =
      Scan(sentence, row.format, latitude, northSouth, longitude, eastWest, time, status, mode);
  return row.Accepts(converted) ? ReadTime(time, timeOfDay) : ReadResult::parseError;
}

// In the order of the type codes.
constexpr SentenceRow kRows[] = {
    {SentenceType::gpgga, "GPGGA", ReadGga, "$GPGGA,%s,%f,%C,%f,%C,%d,%d,%f,%f,%C,%f,%C,%f,%d*", 14, 14,
     "GPGGA parse error!", "GPGGA time parse error!"},
    {SentenceType::gpgsa, "GPGSA", ReadGsa, "$GPGSA,%C,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%f,%f,%f*", 17,
     17, "GPGSA parse error!", nullptr},
    {SentenceType::gpgsv, "GPGSV", ReadGsv,
     "$GPGSV,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d,%d*", 3, 19, "GPGSV parse error!",
     nullptr},
    {SentenceType::gprmc, "GPRMC", ReadRmc, "$GPRMC,%s,%C,%f,%C,%f,%C,%f,%f,%2d%2d%2d,%f,%C,%C*", 13, 14,
     "GPRMC parse error!", "GPRMC time parse error!"},
    {SentenceType::gpvtg, "GPVTG", ReadVtg, "$GPVTG,%f,%C,%f,%C,%f,%C,%f,%C*", 8, 8, "GPVTG parse error!",
     "GPVTG parse error (format error)!"},
    {SentenceType::gngga, "GNGGA", ReadGga, "$GNGGA,%s,%f,%C,%f,%C,%d,%d,%f,%f,%C,%f,%C,%f,%d*", 14, 14,
     "GNGGA parse error!", "GNGGA time parse error!"},
    {SentenceType::gnrmc, "GNRMC", ReadRmc, "$GNRMC,%s,%C,%f,%C,%f,%C,%f,%f,%2d%2d%2d,%f,%C,%C*", 13, 14,
     "GNRMC parse error!", "GNRMC time parse error!"},
    {SentenceType::gpgll, "GPGLL", ReadGll, "$GPGLL,%f,%C,%f,%C,%s, %C, %C*", 14, 14, "GPGLL parse error!",
     "GPGLL time parse error!"},
    {SentenceType::gngll, "GNGLL", ReadGll, "$GNGLL,%f,%C,%f,%C,%s, %C, %C*", 14, 14, "GNGLL parse error!",
     "GNGLL time parse error!"},
};

constexpr bool TypesRise() {
  for (size_t i = 1; i < std::size(kRows); ++i) {
    if (kRows[i - 1].type >= kRows[i].type) return false;
  }
  return true;
}
static_assert(std::size(kRows) == 9 && TypesRise());

}  // namespace

SentenceType TypeOfSentence(std::string_view sentence) {
  if (sentence.size() < 6) return SentenceType::other;
  for (const SentenceRow& row : kRows) {
    if (sentence.substr(1, 5) == row.word) return row.type;
  }
  return SentenceType::other;
}

ParseFailure ParseSentence(SentenceType type, std::string_view sentence, Packet& packet) {
  const auto row = std::find_if(std::begin(kRows), std::end(kRows),
                                [&](const SentenceRow& candidate) { return candidate.type == type; });
  if (row == std::end(kRows)) return {"", nullptr};
  switch (row->read(sentence, *row, packet)) {
    case ReadResult::complete:
      break;
    case ReadResult::parseError:
      return {row->parseError, nullptr};
    case ReadResult::secondError:
      return {row->secondError, nullptr};
    case ReadResult::timeFormatError:
      return {row->secondError, "Parse of time error (format error)!"};
  }
  return {nullptr, nullptr};
}

}  // namespace tw
