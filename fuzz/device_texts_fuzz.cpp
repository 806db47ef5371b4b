// Texts of the device and of record files' heads: INFO lines, the B64INFO block, its frequency line, replies
// to queries. The first byte chooses the parser.
#include <cmath>
#include <cstdlib>

#include "device/base64.h"
#include "device/command_link.h"
#include "device/info_line.h"
#include "device/settings_readers.h"

namespace {

void Require(bool condition) {
  if (!condition) std::abort();
}

void FuzzInfoLine(std::string_view text) {
  tw::InfoLine info{};
  if (!tw::ParseInfoLine(text, info)) return;
  tw::DeviceSettings settings{};
  tw::ApplyInfoLine(info, settings);
  Require(std::isfinite(settings.soundSpeed_mps) && settings.pingInterval_ms >= 0);
  // What was read can be written, and then reads as the same kind and frequency.
  char line[tw::kInfoLineSize];
  const size_t length = tw::FormatInfoLine(line, info);
  tw::InfoLine again{};
  if (info.frequency_hz > 10 && info.kind <= 10 && tw::ParseInfoLine({line, length}, again)) {
    Require(again.kind == info.kind && again.frequency_hz == info.frequency_hz);
  }
}

void FuzzBlock(std::string_view text) {
  tw::DeviceSettings settings{};
  tw::DecodeB64Info(text, settings);
  Require(std::isfinite(settings.gainHigh) && settings.pingInterval_ms >= 0);
  uint8_t decoded[100];
  Require(tw::DecodeBase64(text, decoded) <= sizeof decoded);
}

void FuzzReply(std::string_view reply) {
  std::string_view line;
  if (!tw::FindValueLine(reply, line)) return;
  Require(line.data() >= reply.data() && line.data() + line.size() <= reply.data() + reply.size());
  int32_t whole = 0;
  float real = 0.0f;
  static_cast<void>(tw::ParseIntLine(line, whole));
  if (tw::ParseFloatLine(line, real)) Require(std::isfinite(real));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;
  const std::string_view text(reinterpret_cast<const char*>(data) + 1, size - 1);
  int32_t frequency_hz = 0;
  switch (data[0] % 4) {
    case 0:
      FuzzInfoLine(text);
      break;
    case 1:
      FuzzBlock(text);
      break;
    case 2:
      static_cast<void>(tw::ParseTxFrequency(text, frequency_hz));
      break;
    default:
      FuzzReply(text);
      break;
  }
  return 0;
}
