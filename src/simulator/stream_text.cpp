// Echo text blocks, one channel of a ping each. First family:
//
//   #DeviceID VIRTUAL-0001
//   #TimeWork 1700000000.250      seconds, a point, milliseconds without leading zeros
//   #NSamples 1000
//   #OutputMode 2
//   #Sampling_Frequency,Hz 25000
//   #Altitude 12.345
//   #Temperature 14.20
//   #Pitch,deg 1.25
//   #Roll,deg -0.50
//   #Ping 17
//   #Tx_Frequency,Hz 450000
//   ##DataStart
//   87                            one sample a line
//   …
//   (two empty lines)
//
// Second and third family, the degree sign one byte, B0; they tell how much water a sample covers instead of
// how often they sample:
//
//   #DeviceID VIRTUAL-0001
//   #TimeWork 1700000000.250
//   #Ping 17
//   #Altitude,m 12.345
//   #Temperature,°C 14.20
//   #Pitch,deg 1.25
//   #Roll,deg -0.50
//   #NSamples 1000
//   #Resolution,mm 30.000
//   #---------------Parameters---------------
//   #OutputMode    2
//   #Tx_Frequency,Hz 450000
//   ##DataStart
//   …
//
// All lines end in CR LF.
#include <array>
#include <cstring>

#include "simulator/stream_forms.h"

namespace tw::sim {
namespace {

constexpr size_t kOversize = 256'001;
constexpr size_t kWidestSample = 8;  // four digits, CR, LF, and room for a copy of eight at once

struct SampleText {
  char text[kWidestSample];
  uint8_t length;
};

// Every sample line there can be: a block is copied together instead of being formatted.
constexpr auto kSampleTexts = [] {
  std::array<SampleText, 4'096> table{};
  for (uint32_t value = 0; value < table.size(); ++value) {
    SampleText& entry = table[value];
    uint32_t power = 1'000;
    while (power > 1 && value < power) power /= 10;
    for (; power > 0; power /= 10) entry.text[entry.length++] = static_cast<char>('0' + value / power % 10);
    entry.text[entry.length++] = '\r';
    entry.text[entry.length++] = '\n';
  }
  return table;
}();

// Appends lines "key value", except the one whose key is to be missing.
class KeyWriter {
 public:
  KeyWriter(const BlockShape& shape, StreamMessage& out) : missing_(shape.missingKey), text_(out) {}

  void Text(std::string_view key, std::string_view value) {
    if (Begins(key)) text_.Text(value).Text("\r\n");
  }
  void Count(std::string_view key, int64_t value) {
    if (Begins(key)) text_.Count(value).Text("\r\n");
  }
  void Decimal(std::string_view key, int64_t value, int decimals) {
    if (Begins(key)) text_.Decimal(value, decimals).Text("\r\n");
  }
  void Time(std::string_view key, uint32_t time_s, uint32_t time_ms) {
    if (Begins(key)) text_.Count(time_s).Text(".").Count(time_ms).Text("\r\n");
  }
  // A line without a value.
  void Line(std::string_view line) {
    if (line != missing_) text_.Text(line).Text("\r\n");
  }

 private:
  bool Begins(std::string_view key) {
    if (key == missing_) return false;
    text_.Text(key).Text(" ");
    return true;
  }

  std::string_view missing_;
  TextWriter text_;
};

void AppendSamples(std::span<const uint16_t> samples, std::vector<uint8_t>& out) {
  const size_t begin = out.size();
  out.resize(begin + samples.size() * kWidestSample);
  uint8_t* at = out.data() + begin;
  for (const uint16_t sample : samples) {
    const SampleText& entry = kSampleTexts[sample & 0xFFF];
    std::memcpy(at, entry.text, kWidestSample);
    at += entry.length;
  }
  out.resize(static_cast<size_t>(at - out.data()));
}

void AppendData(const PingReport& ping, const BlockShape& shape, StreamMessage& out) {
  KeyWriter(shape, out).Line("##DataStart");
  AppendSamples(ping.samples, out.bytes);
  TextWriter text(out);
  while (shape.fault == BlockFault::oversize && text.Size() < kOversize) text.Text("0\r\n");
  if (shape.fault != BlockFault::noEndMark) text.Text("\r\n\r\n");
}

void AppendFirstFamilyText(const PingReport& ping, const BlockShape& shape, StreamMessage& out) {
  KeyWriter keys(shape, out);
  keys.Text("#DeviceID", ping.identity);
  keys.Time("#TimeWork", ping.time_s, ping.time_ms);
  keys.Count("#NSamples", static_cast<int64_t>(ping.samples.size()));
  keys.Count("#OutputMode", ping.outputMode);
  keys.Count("#Sampling_Frequency,Hz", ping.samplingFrequency_hz);
  keys.Decimal("#Altitude", ping.altitude_mm, 3);
  keys.Decimal("#Temperature", ping.temperature_centi, 2);
  keys.Decimal("#Pitch,deg", ping.pitch_centi, 2);
  keys.Decimal("#Roll,deg", ping.roll_centi, 2);
  keys.Count("#Ping", ping.number);
  keys.Count("#Tx_Frequency,Hz", ping.txFrequency_hz);
  AppendData(ping, shape, out);
}

void AppendSecondFamilyText(const PingReport& ping, const BlockShape& shape, StreamMessage& out) {
  KeyWriter keys(shape, out);
  keys.Text("#DeviceID", ping.identity);
  keys.Time("#TimeWork", ping.time_s, ping.time_ms);
  keys.Count("#Ping", ping.number);
  keys.Decimal("#Altitude,m", ping.altitude_mm, 3);
  keys.Decimal(
      "#Temperature,\xB0"
      "C",
      ping.temperature_centi, 2);
  keys.Decimal("#Pitch,deg", ping.pitch_centi, 2);
  keys.Decimal("#Roll,deg", ping.roll_centi, 2);
  keys.Count("#NSamples", static_cast<int64_t>(ping.samples.size()));
  keys.Decimal("#Resolution,mm", ping.resolution_um, 3);
  keys.Line("#---------------Parameters---------------");
  keys.Count("#OutputMode   ", ping.outputMode);
  keys.Count("#Tx_Frequency,Hz", ping.txFrequency_hz);
  AppendData(ping, shape, out);
}

constexpr StreamMode kFirstFamily[] = {
    {2, StreamKind::echoText, AppendFirstFamilyText, 10, 0, true, false},
    {4, StreamKind::echoText, AppendFirstFamilyText, 12, 0, true, false},
};

constexpr StreamMode kOtherFamilies[] = {
    {2, StreamKind::echoText, AppendSecondFamilyText, 10, 0, true, false},
    {4, StreamKind::echoText, AppendSecondFamilyText, 12, 200, true, false},
    {5, StreamKind::echoText, AppendSecondFamilyText, 12, 500, true, false},
    {6, StreamKind::echoText, AppendSecondFamilyText, 12, 1'000, true, false},
};

}  // namespace

const StreamRows kTextRows{kFirstFamily, kOtherFamilies};

}  // namespace tw::sim
