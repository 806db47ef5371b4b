// The bytes of a GPS receiver, cut into pushes by the input itself, through parser, fix, builders and
// position text. The first byte chooses the buffer, the second the size of the pushes. With an odd first byte
// each line of the input gets the right checksum, since a changed sentence would hardly ever have it.
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "base/checksum.h"
#include "gps/nmea_build.h"
#include "gps/nmea_parser.h"
#include "gps/position_text.h"

namespace {

// An assertion that stays in every build.
void Check(bool holds, const char* what) {
  if (holds) return;
  std::fprintf(stderr, "does not hold: %s\n", what);
  std::abort();
}

std::string WithChecksums(std::string_view lines) {
  std::string sentences;
  while (!lines.empty()) {
    const std::string_view line = lines.substr(0, lines.find('\n'));
    lines.remove_prefix(line.size() < lines.size() ? line.size() + 1 : line.size());
    char end[8];
    std::snprintf(end, sizeof end, "*%02x\r\n", unsigned{tw::XorChecksum(line)});
    sentences.append("$").append(line).append(end);
  }
  return sentences;
}

void CheckFix(const tw::GpsFix& fix) {
  Check(std::fabs(fix.latitude) <= 9000 && std::fabs(fix.longitude) <= 18000, "a position on the globe");
  Check(fix.utc.month >= 0 && fix.utc.month <= 11 && fix.utc.year >= 0 && fix.utc.year <= 199, "a date");
  Check(fix.utc.hour >= 0 && fix.utc.hour <= 23 && fix.utc.minute >= 0 && fix.utc.minute <= 59, "a time");
  Check(fix.quality >= 0 && fix.quality <= 9 && fix.fixType >= 0 && fix.fixType <= 3, "quality and type");
  Check(std::isfinite(fix.hdop) && std::isfinite(fix.vdop) && std::isfinite(fix.speed_kmh), "finite figures");
}

// What the builders write is a sentence for the parser. (A fix without a date gives one that it refuses.)
void CheckBuilt(tw::NmeaParser& parser, const tw::GpsFix& fix) {
  for (const bool gn : {false, true}) {
    char text[256];
    const size_t gga = tw::BuildGga(text, fix, gn);
    Check(gga > 0 && gga < sizeof text && std::string_view(text, gga).ends_with("\r\n"), "GGA fits");
    Check(tw::ParserPush(parser, reinterpret_cast<const uint8_t*>(text), gga) == 1, "GGA is read again");
    const size_t rmc = tw::BuildRmc(text, fix, gn);
    Check(rmc > 0 && rmc < sizeof text && std::string_view(text, rmc).ends_with("\r\n"), "RMC fits");
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 2) return 0;
  tw::NmeaParser parser{};
  if (!tw::MakeParser(parser, data[0] * size_t{16})) return 0;
  std::string bytes(reinterpret_cast<const char*>(data) + 2, size - 2);
  if (data[0] % 2 == 1) bytes = WithChecksums(bytes);
  const size_t step = data[1] + size_t{1};
  tw::GpsFix fix{};
  for (size_t at = 0; at < bytes.size(); at += step) {
    const std::string_view piece = std::string_view(bytes).substr(at, step);
    const int parsed = tw::ParserPush(parser, reinterpret_cast<const uint8_t*>(piece.data()), piece.size());
    Check(parser.length <= parser.capacity, "the buffer's bound");
    Check(tw::ApplyPackets(parser, fix) == parsed, "each parsed sentence is applied");
  }
  CheckFix(fix);

  wchar_t text[256];
  tw::FormatPosition(text, {.fixType = fix.fixType,
                            .latitude_rad = static_cast<float>(tw::RadiansFromDegreesMinutes(fix.latitude)),
                            .longitude_rad = static_cast<float>(tw::RadiansFromDegreesMinutes(fix.longitude)),
                            .pdop = static_cast<float>(fix.hdop)});
  parser.length = 0;
  CheckBuilt(parser, fix);
  return 0;
}
