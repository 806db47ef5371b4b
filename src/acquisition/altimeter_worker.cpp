#include "acquisition/altimeter_worker.h"

#include <algorithm>

#include "acquisition/altimeter_lines.h"

namespace tw {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

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
constexpr LiveMode LineMode(RecordRule rule) {
  return {MakeReader<form>, ParseLine<parse>, LayOutRecord, EchoSource::pulse, rule};
}

template <const LiveMode& mode>
void Run(void* state) {
  RunLiveWorker(*static_cast<AppState*>(state), mode);
}

}  // namespace

constexpr RecordRule kOneFile = RecordRule::oneFile;
constexpr RecordRule kFileOfChannel = RecordRule::fileOfChannel;

const LiveMode kSimpleAltimeter = LineMode<kSimpleForm, ParseSimple>(kFileOfChannel);
const LiveMode kReportingAltimeter = LineMode<kReportingForm, ParseSimple>(kFileOfChannel);
const LiveMode kDeso25 = LineMode<kDesoForm, ParseDeso>(kOneFile);
const LiveMode kDualAltimeter = LineMode<kDualForm, ParseDual>(kOneFile);
const LiveMode kSonarmiteDfx = LineMode<kPlainForm, ParseSonarmiteDfx>(kOneFile);
const LiveMode kSonarmiteOld = LineMode<kPlainForm, ParseSonarmiteOld>(kFileOfChannel);
const LiveMode kPsa916 = LineMode<kPsaForm, ParsePsa916>(kFileOfChannel);
const LiveMode kAltiPlusTemp = LineMode<kPlainForm, ParseAltiPlusTemp>(kFileOfChannel);

void SimpleWorker(void* state) {
  Run<kSimpleAltimeter>(state);
}
void ReportingSimpleWorker(void* state) {
  Run<kReportingAltimeter>(state);
}
void Deso25Worker(void* state) {
  Run<kDeso25>(state);
}
void DualTextWorker(void* state) {
  Run<kDualAltimeter>(state);
}
void SonarmiteDfxWorker(void* state) {
  Run<kSonarmiteDfx>(state);
}
void SonarmiteOldWorker(void* state) {
  Run<kSonarmiteOld>(state);
}
void Psa916Worker(void* state) {
  Run<kPsa916>(state);
}
void AltiPlusTempWorker(void* state) {
  Run<kAltiPlusTemp>(state);
}

}  // namespace tw
