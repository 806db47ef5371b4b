#include "acquisition/altimeter_lines.h"

#include "base/text_scan.h"

namespace tw {
namespace {

constexpr float kMaxFrequency_hz = 1e9f;

// A line's values until they are known to be a ping: nothing of the last line's flags.
AltimeterValues Fresh(const AltimeterValues& values) {
  return {.altitude_m = values.altitude_m,
          .temperature_c = values.temperature_c,
          .hasAltitudeLow = false,
          .altitudeLow_m = values.altitudeLow_m,
          .secondChannel = false,
          .hasFrequency = false,
          .frequency_hz = values.frequency_hz};
}

// A literal of a form, behind any white space.
bool ScanToken(std::string_view& line, std::string_view token) {
  SkipWhiteSpace(line);
  return ScanLiteral(line, token);
}

// "1 %f", the beginning of both Sonarmite lines.
bool ScanSonarmite(std::string_view& line, float& altitude_m) {
  return ScanLiteral(line, "1 ") && ScanFloat(line, altitude_m);
}

void ReadFrequencyLine(std::string_view line, AltimeterValues& values) {
  float frequency_hz = 0;
  if (!ScanFloat(line, frequency_hz) || !(frequency_hz >= 0 && frequency_hz <= kMaxFrequency_hz)) return;
  values.hasFrequency = true;
  values.frequency_hz = static_cast<int32_t>(frequency_hz + 0.5f);
}

bool ScanAltitudes(std::string_view& line, AltimeterValues& values) {
  if (!ScanFloat(line, values.altitude_m)) return false;
  values.hasAltitudeLow = ScanLiteral(line, ",") && ScanFloat(line, values.altitudeLow_m);
  return true;
}

}  // namespace

bool ParseSimple(std::string_view line, AltimeterValues& values) {
  AltimeterValues read = Fresh(values);
  if (ScanLiteral(line, kHertzMark)) {
    ReadFrequencyLine(line, read);
    const size_t altitude = line.find(kAltMark);
    if (altitude == line.npos) return false;
    line.remove_prefix(altitude);
  }
  if (!ScanLiteral(line, kAltMark) || !ScanFloat(line, read.altitude_m)) return false;
  values = read;
  return true;
}

bool ParseDeso(std::string_view line, AltimeterValues& values) {
  AltimeterValues read = Fresh(values);
  read.secondChannel = line.starts_with(kDesoMarks[1]);
  if (!read.secondChannel && !line.starts_with(kDesoMarks[0])) return false;
  line.remove_prefix(kDesoMarks[0].size());
  if (!ScanFloat(line, read.altitude_m)) return false;
  values = read;
  return true;
}

bool ParseDual(std::string_view line, AltimeterValues& values) {
  AltimeterValues read = Fresh(values);
  int32_t number = 0;
  if (!ScanLiteral(line, kDualMark) || !ScanToken(line, ":") || !ScanInt(line, number) ||
      !ScanLiteral(line, ",") || !ScanAltitudes(line, read)) {
    return false;
  }
  if (read.hasAltitudeLow && ScanLiteral(line, ",")) {
    static_cast<void>(ScanFloat(line, read.temperature_c));  // a line without it keeps the last one
  }
  values = read;
  return true;
}

bool ParseSonarmiteDfx(std::string_view line, AltimeterValues& values) {
  AltimeterValues read = Fresh(values);
  if (!ScanSonarmite(line, read.altitude_m)) return false;
  read.hasAltitudeLow = ScanFloat(line, read.altitudeLow_m);
  values = read;
  return true;
}

bool ParseSonarmiteOld(std::string_view line, AltimeterValues& values) {
  AltimeterValues read = Fresh(values);
  if (!ScanSonarmite(line, read.altitude_m)) return false;
  values = read;
  return true;
}

bool ParsePsa916(std::string_view line, AltimeterValues& values) {
  AltimeterValues read = Fresh(values);
  if (!ScanLiteral(line, kRangeMark) || !ScanFloat(line, read.altitude_m)) return false;
  values = read;
  return true;
}

bool ParseAltiPlusTemp(std::string_view line, AltimeterValues& values) {
  AltimeterValues read = Fresh(values);
  if (!ScanFloat(line, read.altitude_m) || !ScanLiteral(line, ",") || !ScanFloat(line, read.temperature_c)) {
    return false;
  }
  values = read;
  return true;
}

}  // namespace tw
