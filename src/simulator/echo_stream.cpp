// The echo text block of the first family, one ping:
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
// All lines end in CR LF.
#include "simulator/echo_stream.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include "base/text_format.h"

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

void AppendText(std::string_view text, std::vector<uint8_t>& out) {
  out.insert(out.end(), text.begin(), text.end());
}

// Appends lines "key value", except the one whose key is to be missing.
class KeyWriter {
 public:
  KeyWriter(std::string_view missing, std::vector<uint8_t>& out) : missing_(missing), out_(out) {}

  void Text(std::string_view key, std::string_view value) {
    if (key == missing_) return;
    AppendText(key, out_);
    if (!value.empty()) out_.push_back(' ');
    AppendText(value, out_);
    AppendText("\r\n", out_);
  }
  void Number(std::string_view key, int64_t value) {
    char text[24];
    Text(key, {text, FormatText(text, "%lld", static_cast<long long>(value))});
  }
  void Decimal(std::string_view key, int32_t value, int32_t scale, int decimals) {
    char text[24];
    const int32_t size = value < 0 ? -value : value;
    Text(key,
         {text, FormatText(text, "%s%d.%0*d", value < 0 ? "-" : "", size / scale, decimals, size % scale)});
  }

 private:
  std::string_view missing_;
  std::vector<uint8_t>& out_;
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

void AppendEchoText(const PingReport& ping, const BlockShape& shape, std::vector<uint8_t>& out) {
  const size_t begin = out.size();
  KeyWriter keys(shape.missingKey, out);
  char time[32];
  keys.Text("#DeviceID", ping.identity);
  keys.Text("#TimeWork", {time, FormatText(time, "%u.%u", ping.time_s, ping.time_ms)});
  keys.Number("#NSamples", static_cast<int64_t>(ping.samples.size()));
  keys.Number("#OutputMode", ping.outputMode);
  keys.Number("#Sampling_Frequency,Hz", ping.samplingFrequency_hz);
  keys.Decimal("#Altitude", ping.altitude_mm, 1'000, 3);
  keys.Decimal("#Temperature", ping.temperature_centi, 100, 2);
  keys.Decimal("#Pitch,deg", ping.pitch_centi, 100, 2);
  keys.Decimal("#Roll,deg", ping.roll_centi, 100, 2);
  keys.Number("#Ping", ping.number);
  keys.Number("#Tx_Frequency,Hz", ping.txFrequency_hz);
  keys.Text("##DataStart", {});
  AppendSamples(ping.samples, out);
  while (shape.fault == BlockFault::oversize && out.size() - begin < kOversize) {
    AppendText("0\r\n", out);
  }
  if (shape.fault != BlockFault::noEndMark) AppendText("\r\n\r\n", out);
}

constexpr StreamMode kModes[] = {
    {DeviceFamily::first, 2, 10, AppendEchoText},
    {DeviceFamily::first, 4, 12, AppendEchoText},
};

}  // namespace

const StreamMode* FindStreamMode(DeviceFamily family, int32_t outputMode) {
  const auto* at = std::find_if(std::begin(kModes), std::end(kModes), [&](const StreamMode& mode) {
    return mode.family == family && mode.outputMode == outputMode;
  });
  return at == std::end(kModes) ? nullptr : at;
}

}  // namespace tw::sim
