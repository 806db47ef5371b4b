#include "acquisition/echo_text.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "base/bytes.h"
#include "base/digit_mask.h"
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

// Plain lines, 1 to 5 digits and CR LF, are read a window at a time: where the lines end stands in one word,
// a bit for each byte, so that no line has to wait for the length of the one before it.
constexpr size_t kWindow = kMaskedBytes;
constexpr size_t kBefore = 8;  // bytes that must be readable ahead of a window
constexpr size_t kMaxPlainDigits = 5;

// The value of the 1 to 5 digits that end at `end`: neighbours are added up to pairs, and those to the
// number.
uint32_t ValueOfDigits(const uint8_t* end, size_t digits) {
  constexpr size_t kAtOnce = 4;
  const size_t unused = digits < kAtOnce ? 8 * (kAtOnce - digits) : 0;
  uint32_t four = (LoadLe<uint32_t>(end - kAtOnce) ^ 0x30303030u) >> unused << unused;
  four = ((four * (1 + (10 << 8))) >> 8) & 0x00FF00FFu;
  four = (four * (1 + (100 << 16))) >> 16;
  return digits <= kAtOnce ? four : four + 10'000u * (end[-5] - uint32_t{'0'});
}

struct Taken {
  size_t bytes;
  size_t lines;
};

// Reads the plain lines at the front of a window, as many as `samples` has room for; stops at the first line
// of another form.
Taken TakePlainLines(const uint8_t* window, std::span<uint16_t> samples) {
  const uint64_t others = NonDigits(window);
  uint64_t ends = others & (others << 1);  // the second of two bytes that are no digits
  const uint64_t seen = ends == 0 ? 0 : ~uint64_t{0} >> std::countl_zero(ends);
  Taken taken{};
  if ((others & seen) != (ends | ends >> 1)) return taken;
  for (; ends != 0 && taken.lines < samples.size(); ends &= ends - 1) {
    const auto end = static_cast<size_t>(std::countr_zero(ends));
    const size_t digits = end - 1 - taken.bytes;
    const uint8_t* lineEnd = window + end - 1;
    if (digits - 1 >= kMaxPlainDigits || LoadLe<uint16_t>(lineEnd) != 0x0A0D) break;
    const uint32_t value = ValueOfDigits(lineEnd, digits);
    if (value <= UINT16_MAX) samples[taken.lines] = static_cast<uint16_t>(value);
    ++taken.lines;
    taken.bytes = end + 1;
  }
  return taken;
}

// Reads a line of any form; returns its length with its line end.
size_t TakeLine(std::string_view text, uint16_t& sample) {
  const size_t end = text.find(kLineEnd);
  std::string_view line = text.substr(0, end);
  int32_t number = 0;
  if (ScanInt(line, number) && number >= 0 && number <= UINT16_MAX) sample = static_cast<uint16_t>(number);
  return end == text.npos ? text.size() : end + kLineEnd.size();
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
  uint8_t aside[kBefore + kWindow] = {};
  while (count < samples.size() && at < dataLines.size()) {
    const std::string_view rest = dataLines.substr(at);
    const std::span<uint16_t> room = samples.subspan(count);
    const auto* window = reinterpret_cast<const uint8_t*>(rest.data());
    if (at < kBefore || rest.size() < kWindow) {
      std::memset(aside, 0, sizeof aside);
      std::memcpy(aside + kBefore, rest.data(), std::min(rest.size(), kWindow));
      window = aside + kBefore;
    }
    const Taken plain = TakePlainLines(window, room);
    at += plain.lines != 0 ? plain.bytes : TakeLine(rest, room.front());
    count += plain.lines != 0 ? plain.lines : 1;
  }
  return count;
}

}  // namespace tw
