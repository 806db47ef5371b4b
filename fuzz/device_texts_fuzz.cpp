// Texts of the device and of record files' heads: INFO lines, the B64INFO block, its frequency line, replies
// to queries. The first byte chooses the parser.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <string_view>
#include <vector>

#include "device/base64.h"
#include "device/command_link.h"
#include "device/info_line.h"
#include "device/settings_readers.h"

namespace {

void Require(bool condition) {
  if (!condition) std::abort();
}

// Half of the last decimal written, and what a float of this size cannot tell apart.
bool Near(float read, float written, float half) {
  return std::fabs(read - written) <= half * 1.001f + std::fabs(written) * 1e-6f;
}

void RequireSame(const tw::InfoLine& a, const tw::InfoLine& b) {
  Require(a.kind == b.kind && a.frequency_hz == b.frequency_hz && a.range_mm == b.range_mm);
  Require(a.txLength == b.txLength && a.attenuation == b.attenuation && a.deadZone_mm == b.deadZone_mm);
  Require(a.threshold_percent == b.threshold_percent && a.offset_mm == b.offset_mm);
  Require(a.outputMode == b.outputMode);
  Require(Near(a.interval_s, b.interval_s, 0.05f) && Near(a.txPower, b.txPower, 0.05f));
  Require(Near(a.gain, b.gain, 0.5f) && Near(a.tvgSpreading, b.tvgSpreading, 0.5f));
  Require(Near(a.tvgAbsorption, b.tvgAbsorption, 0.005f) && Near(a.soundSpeed_mps, b.soundSpeed_mps, 0.05f));
}

void FuzzInfoLine(std::string_view text) {
  tw::InfoLine info{};
  info.kind = 77;
  if (!tw::ParseInfoLine(text, info)) {
    Require(info.kind == 77);
    return;
  }
  tw::DeviceSettings settings{};
  tw::ApplyInfoLine(info, tw::FieldChannel::high, settings);
  Require(info.kind <= 10 && std::isfinite(settings.soundSpeed_mps));
  Require(settings.pingInterval_ms >= 0 && settings.pingInterval_ms <= 3'600'000);
  // What was read can be written, and then reads as the same to the last decimal. Rounding may lift a number
  // over the largest float.
  char line[tw::kInfoLineSize];
  const size_t length = tw::FormatInfoLine(line, info);
  Require(length < sizeof line && std::string_view(line, length).ends_with("\r\n"));
  tw::InfoLine again{};
  if (tw::ParseInfoLine({line, length}, again)) RequireSame(again, info);
}

void FuzzBlock(std::string_view text) {
  tw::DeviceSettings settings{};
  tw::DecodeB64Info(text, settings);
  Require(settings.pingInterval_ms >= 0 && settings.pingInterval_ms <= 3'600'000);
  Require(settings.gainHigh >= -1000.0f && settings.gainHigh <= 1000.0f);
  Require(settings.soundSpeed_mps >= -32768.0f && settings.soundSpeed_mps <= 32767.0f);
  // A small buffer gets the first bytes of what a large one gets.
  std::vector<uint8_t> large(text.size());
  std::vector<uint8_t> small(text.size() / 3);
  const size_t all = tw::DecodeBase64(text, large);
  const size_t some = tw::DecodeBase64(text, small);
  Require(all % 3 == 0 && all <= text.size() / 4 * 3 && some <= all && some <= small.size());
  Require(std::equal(small.begin(), small.begin() + static_cast<std::ptrdiff_t>(some), large.begin()));
}

void FuzzFrequency(std::string_view line) {
  int32_t frequency_hz = -7'000'000;  // no seven characters read as this
  const bool read = tw::ParseTxFrequency(line, frequency_hz);
  Require(read == (frequency_hz > -1'000'000) && frequency_hz < 10'000'000);
}

// The prompt matcher says the same as a search in the whole text.
void FuzzPrompt(std::string_view reply) {
  tw::PromptMatcher matcher;
  for (size_t i = 0; i < reply.size(); ++i) {
    const bool ends = reply.substr(0, i + 1).ends_with("\r\n>");
    Require(matcher.Take(static_cast<uint8_t>(reply[i])) == ends);
  }
}

void FuzzReply(std::string_view reply) {
  FuzzPrompt(reply);
  std::string_view line;
  if (!tw::FindValueLine(reply, line)) return;
  Require(line.data() > reply.data() && line.data() + line.size() <= reply.data() + reply.size());
  Require(!line.empty() && line.find_first_of("\r\n") == line.npos);
  int32_t whole = 77;
  float real = 77.0f;
  const bool isWhole = tw::ParseIntLine(line, whole);
  const bool isReal = tw::ParseFloatLine(line, real);
  Require((isWhole || whole == 77) && (isReal || real == 77.0f));
  if (isWhole) Require(isReal && std::fabs(real - static_cast<float>(whole)) < 256.0f);
  if (!isReal) return;
  Require(std::isfinite(real) && line.find_first_not_of("+-.0123456789") == line.npos);
  Require(std::count(line.begin(), line.end(), '.') <= 1);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  switch (data[0] % 4) {
    case 0:
      FuzzInfoLine(text);
      break;
    case 1:
      FuzzBlock(text);
      break;
    case 2:
      FuzzFrequency(text);
      break;
    default:
      FuzzReply(text);
      break;
  }
  return 0;
}
