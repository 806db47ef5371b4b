// The sentences that contribute to the fix, as parsed. Pure; any thread.
#pragma once

#include <cstdint>
#include <string_view>
#include <variant>

#include "gps/gps_fix.h"

namespace tw {

enum class SentenceType : int8_t {
  other = -1,
  gpgga = 0,
  gpgsa = 1,
  gpgsv = 3,
  gprmc = 7,
  gpvtg = 15,
  gngga = 17,
  gnrmc = 19,
  gpgll = 23,
  gngll = 31,
};

struct TimeOfDay {
  int32_t hour;
  int32_t minute;
  int32_t second;
  int32_t hundredth;  // the digits behind the point as they stand, at most three
};

struct GgaPacket {
  TimeOfDay time;
  double latitude;  // ddmm.mmmm, south negative
  double longitude;
  int32_t quality;
  int32_t satellitesInUse;
  double hdop;
  double elevation_m;
  double geoidHeight_m;
  double differentialAge_s;
  int32_t differentialStation;
};

struct GsaPacket {
  int32_t fixType;
  double pdop;
  double hdop;
  double vdop;
};

struct GsvPacket {
  int32_t sentenceIndex;  // from 1
  int32_t satellitesInView;
  int32_t count;  // of the entries below
  GpsSatellite satellites[4];
};

struct RmcPacket {
  TimeOfDay time;
  double latitude;
  double longitude;
  double speed_kmh;
  double direction_deg;
  bool hasDate;
  int32_t year;   // since 1900
  int32_t month;  // 0 to 11
  int32_t day;
  double declination_deg;  // east positive
  int32_t modeCode;
};

struct VtgPacket {
  double direction_deg;
  double speed_kmh;
};

using Packet = std::variant<GgaPacket, GsaPacket, GsvPacket, RmcPacket, VtgPacket>;

// The type by the five characters behind '$'.
[[nodiscard]] SentenceType TypeOfSentence(std::string_view sentence);

// Parses a sentence, '$' to '*' inclusive, whose checksum has been verified. On failure the texts for the
// error callback are returned (the second may be null) and `packet` is unchanged; null means success.
struct ParseFailure {
  const char* sentence;  // "GPGGA parse error!"
  const char* detail;    // what led to it, reported first; or null
};
[[nodiscard]] ParseFailure ParseSentence(SentenceType type, std::string_view sentence, Packet& packet);

// Reads a time field: 6 characters, or 8 to 10 with a point. False for any other.
[[nodiscard]] bool ParseTimeOfDay(std::string_view field, TimeOfDay& time);

}  // namespace tw
