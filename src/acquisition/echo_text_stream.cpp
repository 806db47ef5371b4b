#include "acquisition/echo_text_stream.h"

#include <algorithm>

#include "acquisition/block_reader.h"
#include "acquisition/echo_text.h"

namespace tw {
namespace {

constexpr int32_t kTenBitMode = 2;
constexpr uint16_t kTenBitFactor = 4;
constexpr std::string_view kRecordEnd = "\r\n\r\n";
constexpr size_t kMaxSentences = 512;

// The values of the last block of this mode stand in the ping's header; those that the header has no place
// for do not outlive a block.
EchoTextHeader PreviousValues(const LivePing& ping) {
  const PingHeader& header = ping.header;
  EchoTextHeader values{};
  values.deviceSeconds = ping.deviceSeconds;
  values.deviceMilliseconds = ping.deviceMilliseconds;
  values.resolution_mm = ping.resolution_mm;
  values.sampleCount = static_cast<int32_t>(header.sampleCount);
  values.samplingFrequency_hz = static_cast<int32_t>(header.samplingFrequency_hz);
  values.altitude_m = header.altitude_m;
  values.temperature_c = header.temperature_c;
  values.pitch_deg = header.pitch_deg;
  values.roll_deg = header.roll_deg;
  values.ping = header.ping;
  values.txFrequency_hz = header.txFrequency_hz;
  return values;
}

void TakeValues(const EchoTextHeader& values, PingHeader& header) {
  header.sampleCount = static_cast<uint32_t>(values.sampleCount);
  header.samplingFrequency_hz = static_cast<uint32_t>(std::max(values.samplingFrequency_hz, 0));
  header.altitude_m = values.altitude_m;
  header.temperature_c = values.temperature_c;
  header.pitch_deg = values.pitch_deg;
  header.roll_deg = values.roll_deg;
  header.ping = values.ping;
  header.txFrequency_hz = values.txFrequency_hz;
}

template <EchoTextKeys keys>
bool ParseBlock(std::string_view block, const LiveContext& context, LivePing& ping) {
  EchoTextHeader values = PreviousValues(ping);
  values.outputMode = context.outputMode;
  const ParsedEchoText parsed =
      ParseEchoTextHeader(keys, block, context.configuredSampling_hz, context.configuredTx_hz, values);
  if (context.dual && !parsed.hasTxFrequency) return false;
  ping.secondChannel = context.IsSecondChannel(values.txFrequency_hz);
  TakeValues(values, ping.header);
  ping.hasDeviceTime = true;
  ping.deviceSeconds = values.deviceSeconds;
  ping.deviceMilliseconds = values.deviceMilliseconds;
  ping.outputMode = values.outputMode;
  ping.resolution_mm = values.resolution_mm;
  ping.hasSampling = parsed.hasSampling;

  const std::span<uint16_t> samples(ping.buffers[ping.secondChannel ? 1 : 0], ping.header.sampleCount);
  std::fill(samples.begin(), samples.end(), uint16_t{0});
  static_cast<void>(ReadSampleLines(parsed.dataLines, samples));
  ping.samples = samples;
  const int32_t outputMode = context.blocksTellMode ? values.outputMode : context.outputMode;
  ping.factor = outputMode == kTenBitMode ? kTenBitFactor : 1;
  return true;
}

std::unique_ptr<StreamReader> MakeReader() {
  return NewReader<BlockReader>(kEchoTextMarks);
}

// The block as it came, its position, and an empty line.
size_t LayOutRecord(std::string_view block, const LivePing&, std::string_view sentences,
                    std::span<char, kMaxRecordSize> record) {
  auto out = std::copy(block.begin(), block.end(), record.begin());
  out = std::copy(sentences.begin(), sentences.end(), out);
  out = std::copy(kRecordEnd.begin(), kRecordEnd.end(), out);
  return static_cast<size_t>(out - record.begin());
}

template <EchoTextKeys keys>
constexpr StreamForm TextStream(const char* name) {
  return {.name = name,
          .makeReader = MakeReader,
          .parse = ParseBlock<keys>,
          .layOutRecord = LayOutRecord,
          .dualAttitude = true};
}

}  // namespace

static_assert(kMaxPingSamples == kMaxTextSamples);
static_assert(kBlockBufferSize + kMaxSentences + kRecordEnd.size() <= kMaxRecordSize);

const StreamForm kFirstTextStream = TextStream<EchoTextKeys::firstFamily>("echo text, first family");
const StreamForm kSecondTextStream = TextStream<EchoTextKeys::otherFamilies>("echo text, second family");

}  // namespace tw
