#include "acquisition/echo_text.h"

#include <bit>
#include <cstring>

#include "base/bytes.h"
#include "base/text_scan.h"

namespace tw {
namespace {

constexpr std::string_view kDataStart = "##DataStart";
constexpr std::string_view kLineEnd = "\r\n";

// The text behind a key's trailing blank; false when the key is missing.
bool FindValue(std::string_view text, std::string_view key, std::string_view& value) {
  const size_t at = text.find(key);
  if (at == text.npos) return false;
  value = text.substr(at + key.size());
  return true;
}

template <typename T>
bool ReadValue(std::string_view text, std::string_view key, bool (*scan)(std::string_view&, T&), T& target) {
  std::string_view value;
  return FindValue(text, key, value) && scan(value, target);
}

void ReadTimeWork(std::string_view text, EchoTextHeader& header) {
  std::string_view value;
  uint32_t seconds = 0;
  uint32_t milliseconds = 0;
  if (!FindValue(text, "#TimeWork ", value) || !ScanUint(value, seconds)) return;
  header.deviceSeconds = seconds;
  if (ScanLiteral(value, ".") && ScanUint(value, milliseconds)) header.deviceMilliseconds = milliseconds;
}

void ReadSampleCount(std::string_view text, EchoTextHeader& header) {
  int32_t count = 0;
  if (ReadValue(text, "#NSamples ", ScanInt, count) && count >= 0 && count <= kMaxTextSamples) {
    header.sampleCount = count;
  }
}

// The usual line, 1 to 5 digits and CR LF at the front of 8 readable bytes, without a branch per digit: the
// digits are found by their upper bits, shifted to the top of a word so that leading bytes are zero digits,
// and added up pairwise. Returns the line's length with its line end, 0 for any other form.
size_t TakePlainLine(const char* bytes, uint32_t& value) {
  const auto word = LoadLe<uint64_t>(reinterpret_cast<const uint8_t*>(bytes));
  const uint64_t digits = word ^ 0x3030303030303030u;
  const uint64_t others = (digits | (digits + 0x7676767676767676u)) & 0x8080808080808080u;
  const auto count = static_cast<unsigned>(std::countr_zero(others)) / 8;
  if (count - 1u > 4u || ((word >> (8 * count)) & 0xFFFF) != 0x0A0D) return 0;
  uint64_t sum = digits << (64 - 8 * count);
  sum = sum * 10 + (sum >> 8);
  sum = (((sum & 0x000000FF000000FFu) * 0x000F424000000064u) +
         (((sum >> 16) & 0x000000FF000000FFu) * 0x0000271000000001u)) >>
        32;
  value = static_cast<uint32_t>(sum);
  return count + 2;
}

}  // namespace

ParsedEchoText ParseEchoTextHeader(std::string_view block, int32_t configuredSampling_hz,
                                   int32_t configuredTx_hz, EchoTextHeader& header) {
  const size_t data = block.find(kDataStart);
  const std::string_view keys = block.substr(0, data);
  ReadTimeWork(keys, header);
  ReadSampleCount(keys, header);
  static_cast<void>(ReadValue(keys, "#OutputMode ", ScanInt, header.outputMode));
  if (!ReadValue(keys, "#Sampling_Frequency,Hz ", ScanInt, header.samplingFrequency_hz)) {
    header.samplingFrequency_hz = configuredSampling_hz;
  }
  static_cast<void>(ReadValue(keys, "#Altitude ", ScanFloat, header.altitude_m));
  static_cast<void>(ReadValue(keys, "#Temperature ", ScanFloat, header.temperature_c));
  static_cast<void>(ReadValue(keys, "#Pitch,deg ", ScanFloat, header.pitch_deg));
  static_cast<void>(ReadValue(keys, "#Roll,deg ", ScanFloat, header.roll_deg));
  static_cast<void>(ReadValue(keys, "#Ping ", ScanUint, header.ping));
  ParsedEchoText parsed{};
  parsed.hasTxFrequency = ReadValue(keys, "#Tx_Frequency,Hz ", ScanInt, header.txFrequency_hz);
  if (!parsed.hasTxFrequency) header.txFrequency_hz = configuredTx_hz;
  if (data != block.npos) parsed.dataLines = block.substr(data + kDataStart.size());
  return parsed;
}

size_t ReadSampleLines(std::string_view dataLines, std::span<uint16_t> samples) {
  size_t at = dataLines.find(kLineEnd);
  size_t count = 0;
  if (at == dataLines.npos) return 0;
  at += kLineEnd.size();
  while (count < samples.size() && at < dataLines.size()) {
    uint32_t value = 0;
    const size_t plain = at + 8 <= dataLines.size() ? TakePlainLine(dataLines.data() + at, value) : 0;
    if (plain != 0) {
      if (value <= UINT16_MAX) samples[count] = static_cast<uint16_t>(value);
      at += plain;
      ++count;
      continue;
    }
    const size_t end = dataLines.find(kLineEnd, at);
    std::string_view line = dataLines.substr(at, end == dataLines.npos ? end : end - at);
    int32_t number = 0;
    if (ScanInt(line, number) && number >= 0 && number <= UINT16_MAX) {
      samples[count] = static_cast<uint16_t>(number);
    }
    ++count;
    if (end == dataLines.npos) break;
    at = end + kLineEnd.size();
  }
  return count;
}

}  // namespace tw
