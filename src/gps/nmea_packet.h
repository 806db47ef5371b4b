// The sentences that contribute to the fix, as parsed. Pure; any thread.
//
//   $GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,*
//
// A packet is handed out only when each of its numbers is one that a receiver can mean; any other drops the
// sentence.
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
  int32_t second;     // 60 in a leap second
  int32_t hundredth;  // the digits behind the point as they stand, 0 to 999
};

struct GgaPacket {
  TimeOfDay time;
  double latitude;          // ddmm.mmmm, south negative, 9000 at most
  double longitude;         // dddmm.mmmm, west negative, 18000 at most
  int32_t quality;          // 0 to 9
  int32_t satellitesInUse;  // 0 to 99
  double hdop;
  double elevation_m;
  double geoidHeight_m;
  double differentialAge_s;
  int32_t differentialStation;  // 0 to 9999
};

struct GsaPacket {
  int32_t fixType;  // 1 none, 2 2D, 3 3D, 0 not told
  double pdop;
  double hdop;
  double vdop;
};

struct GsvPacket {
  int32_t sentenceIndex;     // 1 to 16
  int32_t satellitesInView;  // 0 to kMaxSatellites
  int32_t count;             // of the entries below; they are satellites 4 * (sentenceIndex - 1) and on
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

// The texts for the error callback; a null `sentence` means success.
struct ParseFailure {
  const char* sentence;  // "GPGGA parse error!"
  const char* detail;    // what led to it, reported first; or null
};

// Parses a sentence of this type (not `other`), '$' to '*' inclusive, whose checksum has been verified. On
// failure `packet` is unchanged.
[[nodiscard]] ParseFailure ParseSentence(SentenceType type, std::string_view sentence, Packet& packet);

}  // namespace tw
