// What a ping costs in the modes without samples: reader and parser on half a million pings, handed over in
// pieces as a port gives them, against a parser of getline and istringstream that reads the same values.
#include <algorithm>
#include <cstdio>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "acquisition/altimeter_lines.h"
#include "acquisition/nmea_depth.h"
#include "app/state/posts.h"
#include "bench/measure.h"

namespace tw {

void PostStatusText(AppState&, StatusPart, const wchar_t*) {}

namespace {

constexpr size_t kPings = 500'000;
constexpr size_t kPiece = 1'024;

struct Result {
  size_t pings = 0;
  double sum = 0;  // of all altitudes
};

Result ReadAll(const StreamForm& mode, const std::string& stream, LivePing& ping) {
  const LiveContext context{};
  const std::unique_ptr<StreamReader> reader = mode.makeReader();
  Result result;
  for (size_t at = 0; at < stream.size(); at += kPiece) {
    std::span<const uint8_t> piece(reinterpret_cast<const uint8_t*>(stream.data()) + at,
                                   std::min(kPiece, stream.size() - at));
    while (reader->Feed(piece)) {
      if (!mode.parse(reader->Block(), context, ping)) continue;
      ++result.pings;
      result.sum += static_cast<double>(ping.header.altitude_m);
    }
  }
  return result;
}

// One ping of a mode, and what a plain parser does with one of its lines: true when the line holds the
// altitude.
struct Mode {
  const char* name;
  const StreamForm& mode;
  const char* format;  // of altitude and twice the altitude
  bool (*readLine)(const std::string& line, float& altitude_m);
};

bool ReadFields(const std::string& line, const char* start, float& altitude_m) {
  const std::string_view mark(start);
  if (line.compare(0, mark.size(), mark) != 0) return false;
  std::istringstream fields(line.substr(mark.size()));
  char separator = 0;
  float more = 0;
  if (!(fields >> altitude_m)) return false;
  while (fields >> separator) {
    if (separator != ',') fields.putback(separator);
    if (!(fields >> more)) break;
  }
  return true;
}

bool ReadSentence(const std::string& line, float& altitude_m) {
  std::istringstream fields(line);
  std::string address;
  std::string field;
  std::getline(fields, address, ',');
  std::vector<float> numbers;
  while (std::getline(fields, field, ',')) {
    std::istringstream number(field);
    float value = 0;
    if (number >> value) numbers.push_back(value);
  }
  if (address != "$SDDBT" && address != "$GPDBT") return false;
  if (numbers.size() < 2) return false;
  altitude_m = numbers[1];
  return true;
}

const Mode kModes[] = {
    {"simple", kSimpleStream, "Alt : %.3f\r\n",
     [](const std::string& line, float& altitude_m) { return ReadFields(line, "Alt : ", altitude_m); }},
    {"DESO-25(M)", kDesoStream, "DA %.2f m*\r\n",
     [](const std::string& line, float& altitude_m) { return ReadFields(line, "DA", altitude_m); }},
    {"dual", kDualStream, "Dual : 7, %.3f, %.3f, 11.40\r\n",
     [](const std::string& line, float& altitude_m) { return ReadFields(line, "Dual : 7,", altitude_m); }},
    {"Sonarmite DFX", kDfxStream, "1 %.2f %.2f 0.00 0.00 0\r\n",
     [](const std::string& line, float& altitude_m) { return ReadFields(line, "1 ", altitude_m); }},
    {"Sonarmite OLD", kOldStream, "1 %.2f 0 0 0 %.2f 0 0\r\n",
     [](const std::string& line, float& altitude_m) { return ReadFields(line, "1 ", altitude_m); }},
    {"PSA-916", kPsaStream, "R%.2f\r\n",
     [](const std::string& line, float& altitude_m) { return ReadFields(line, "R", altitude_m); }},
    {"AltiPlusTemp.", kAltiTempStream, "%.3f,   %.2f\r\n",
     [](const std::string& line, float& altitude_m) { return ReadFields(line, "", altitude_m); }},
    {"NMEA, first family", kFirstNmeaStream,
     "$SDZDA,123456.78,16,11,2026,00,00,*43\r\n$SDDBT,13.94,f,%.3f,M,%.2f,F*39\r\n"
     "$SDXDR,A,2.0,D,PTCH,A,-1.0,D,ROLL*65\r\n$SDMTW,11.40,*73\r\n$SDXDR,A,1.5,P,EMA*2B\r\n",
     ReadSentence},
    {"NMEA, second family", kSecondNmeaStream,
     "$GPDBT,13.94,f,%.3f,M,,*62\r\n$YXXDR,A,2.0,D,PTCH,A,%.1f,D,ROLL*73\r\n$GPMTW,11.40,*73\r\n"
     "$GPEMA,1.5*58\r\n",
     ReadSentence},
};

std::string MakeStream(const char* format) {
  std::string stream;
  char text[256];
  for (size_t ping = 0; ping < kPings; ++ping) {
    const double altitude_m = 1.0 + static_cast<double>(ping % 20'000) / 100.0;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-nonliteral"
    std::snprintf(text, sizeof text, format, altitude_m, 2 * altitude_m);
#pragma GCC diagnostic pop
    stream += text;
  }
  return stream;
}

Result ReadPlainly(const Mode& mode, const std::string& stream) {
  std::istringstream lines(stream);
  std::string line;
  Result result;
  float altitude_m = 0;
  while (std::getline(lines, line)) {
    if (!mode.readLine(line, altitude_m)) continue;
    ++result.pings;
    result.sum += static_cast<double>(altitude_m);
  }
  return result;
}

bool Measure(const Mode& mode, LivePing& ping) {
  const std::string stream = MakeStream(mode.format);
  Result plainly;
  Result result;
  const double plain = MedianMilliseconds([&] { plainly = ReadPlainly(mode, stream); });
  const double reading = MedianMilliseconds([&] { result = ReadAll(mode.mode, stream, ping); });
  if (result.pings != kPings || plainly.pings != kPings || result.sum != plainly.sum) {
    std::printf("%s: the two parsers read different pings.\n", mode.name);
    return false;
  }
  std::printf("%-20s %6.3f us a ping, 1/%.1f of istringstream\n", mode.name, reading * 1'000.0 / kPings,
              plain / reading);
  return true;
}

}  // namespace
}  // namespace tw

int main() {
  const auto ping = std::make_unique<tw::LivePing>();
  bool same = true;
  for (const tw::Mode& mode : tw::kModes) same = tw::Measure(mode, *ping) && same;
  return same ? 0 : 1;
}
