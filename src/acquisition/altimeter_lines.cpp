#include "acquisition/altimeter_lines.h"

#include <algorithm>

#include "base/text_scan.h"

namespace tw {
namespace {

constexpr float kMaxFrequency_hz = 1e9f;
constexpr std::string_view kLineEnd = "\r\n";

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

template <const LineForm& form>
std::unique_ptr<StreamReader> MakeReader() {
  return NewReader<LineReader>(form);
}

// Which channel a line belongs to: what it says itself, else its frequency. A single run has one channel.
bool IsSecondChannel(const AltimeterValues& values, const LiveContext& context) {
  if (values.hasFrequency) return context.IsSecondChannel(values.frequency_hz);
  return context.dual && values.secondChannel;
}

template <bool (*parse)(std::string_view, AltimeterValues&)>
bool ParseLine(std::string_view line, const LiveContext& context, LivePing& ping) {
  AltimeterValues values{};
  values.temperature_c = ping.header.temperature_c;
  if (!parse(line, values)) return false;
  ping.secondChannel = IsSecondChannel(values, context);
  ping.bothChannels = context.dual && values.hasAltitudeLow;
  ping.altitudeLow_m = values.altitudeLow_m;
  PingHeader& header = ping.header;
  header.altitude_m = values.altitude_m;
  header.temperature_c = values.temperature_c;
  header.txFrequency_hz =
      values.hasFrequency ? values.frequency_hz : context.ChannelFrequency_hz(ping.secondChannel);
  return true;
}

// The line as it came and its position. A form that ends before its line does (DESO-25) gets the line end, so
// that the sentences begin a line of their own.
size_t LayOutRecord(std::string_view line, const LivePing&, std::string_view sentences,
                    std::span<char, kMaxRecordSize> record) {
  auto out = std::copy(line.begin(), line.end(), record.begin());
  if (!line.ends_with(kLineEnd)) out = std::copy(kLineEnd.begin(), kLineEnd.end(), out);
  out = std::copy(sentences.begin(), sentences.end(), out);
  return static_cast<size_t>(out - record.begin());
}

template <const LineForm& form, bool (*parse)(std::string_view, AltimeterValues&)>
constexpr StreamForm LineStream(const char* name, RecordRule rule = RecordRule::fileOfChannel,
                                bool dualAttitude = false) {
  return {.name = name,
          .makeReader = MakeReader<form>,
          .parse = ParseLine<parse>,
          .layOutRecord = LayOutRecord,
          .echo = EchoSource::pulse,
          .dualAttitude = dualAttitude,
          .recordRule = rule};
}

constexpr RecordRule kOneFile = RecordRule::oneFile;
constexpr char kSimpleName[] = "simple altimeter lines";

}  // namespace

const StreamForm kSimpleStream = LineStream<kSimpleForm, ParseSimple>(kSimpleName);
const StreamForm kReportingStream = LineStream<kReportingForm, ParseSimple>(kSimpleName);
const StreamForm kDesoStream = LineStream<kDesoForm, ParseDeso>("DESO-25 lines", kOneFile);
const StreamForm kDualStream = LineStream<kDualForm, ParseDual>("dual altimeter lines", kOneFile);
const StreamForm kDfxStream = LineStream<kPlainForm, ParseSonarmiteDfx>("Sonarmite DFX lines", kOneFile);
const StreamForm kOldStream =
    LineStream<kPlainForm, ParseSonarmiteOld>("Sonarmite OLD lines", RecordRule::fileOfChannel, true);
const StreamForm kPsaStream = LineStream<kPsaForm, ParsePsa916>("PSA-916 lines");
const StreamForm kAltiTempStream =
    LineStream<kPlainForm, ParseAltiPlusTemp>("altitude and temperature lines");

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
