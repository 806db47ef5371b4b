#include "gps/nmea_build.h"

#include <cmath>
#include <string_view>

#include "base/checksum.h"
#include "base/text_format.h"

namespace tw {
namespace {

constexpr double kKmhPerKnot = 1.852;

size_t AppendChecksum(std::span<char> text, size_t length) {
  constexpr size_t kEndSize = 6;  // "*", two digits, CR, LF and the zero
  if (length == 0 || length + kEndSize > text.size()) {
    if (!text.empty()) text[0] = '\0';
    return 0;
  }
  const unsigned sum = XorChecksum(std::string_view(text.data() + 1, length - 1));
  return length + FormatText(text.subspan(length), "*%02x\r\n", sum);
}

char NorthSouth(const GpsFix& fix) {
  return fix.latitude > 0 ? 'N' : 'S';
}
char EastWest(const GpsFix& fix) {
  return fix.longitude > 0 ? 'E' : 'W';
}

char ModeLetter(int32_t code) {
  constexpr std::string_view kLetters = "ADEMN";
  return kLetters[code >= 0 && code <= 4 ? static_cast<size_t>(code) : 4];
}

}  // namespace

size_t BuildGga(std::span<char> text, const GpsFix& fix, bool gn) {
  const char* format =
      gn ? "$GNGGA,%02d%02d%02d.%02d,%07.6f,%c,%07.6f,%c,%1d,%02d,%03.1f,%03.3f,%c,%03.3f,%c,%03.1f,%04d"
         : "$GPGGA,%02d%02d%02d.%02d,%07.4f,%c,%07.4f,%c,%1d,%02d,%03.1f,%03.3f,%c,%03.3f,%c,%03.1f,%04d";
  const GpsTime& utc = fix.utc;
  const size_t length = FormatText(
      text, format, utc.hour, utc.minute, utc.second, utc.hundredth, std::fabs(fix.latitude), NorthSouth(fix),
      std::fabs(fix.longitude), EastWest(fix), fix.quality, fix.satellitesInUse, fix.hdop, fix.elevation_m,
      'M', fix.geoidHeight_m, 'M', fix.differentialAge_s, fix.differentialStation);
  return AppendChecksum(text, length);
}

size_t BuildRmc(std::span<char> text, const GpsFix& fix, bool gn) {
  const char* format =
      gn ? "$GNRMC,%02d%02d%02d.%02d,%c,%07.6f,%c,%07.6f,%c,%03.1f,%03.1f,%02d%02d%02d,%03.1f,%c,%c"
         : "$GPRMC,%02d%02d%02d.%02d,%c,%07.4f,%c,%07.4f,%c,%03.1f,%03.1f,%02d%02d%02d,%03.1f,%c,%c";
  const GpsTime& utc = fix.utc;
  const size_t length = FormatText(
      text, format, utc.hour, utc.minute, utc.second, utc.hundredth, fix.quality >= 1 ? 'A' : 'V',
      std::fabs(fix.latitude), NorthSouth(fix), std::fabs(fix.longitude), EastWest(fix),
      fix.speed_kmh / kKmhPerKnot, fix.direction_deg, utc.day, utc.month + 1, utc.year % 100,
      std::fabs(fix.declination_deg), fix.declination_deg > 0 ? 'E' : 'W', ModeLetter(fix.modeCode));
  return AppendChecksum(text, length);
}

}  // namespace tw
