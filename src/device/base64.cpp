#include "device/base64.h"

namespace tw {
namespace {

constexpr uint32_t kNoDigit = 64;

constexpr uint32_t DigitOf(char c) {
  if (c >= 'A' && c <= 'Z') return static_cast<uint32_t>(c - 'A');
  if (c >= 'a' && c <= 'z') return static_cast<uint32_t>(c - 'a' + 26);
  if (c >= '0' && c <= '9') return static_cast<uint32_t>(c - '0' + 52);
  if (c == '+') return 62;
  if (c == '/') return 63;
  return c == '=' ? 0 : kNoDigit;
}

}  // namespace

size_t DecodeBase64(std::string_view text, std::span<uint8_t> out) {
  size_t used = 0;
  for (; text.size() >= 4 && used + 3 <= out.size(); text.remove_prefix(4)) {
    uint32_t bits = 0;
    for (size_t i = 0; i < 4; ++i) {
      const uint32_t digit = DigitOf(text[i]);
      if (digit == kNoDigit) return used;
      bits = bits << 6 | digit;
    }
    out[used++] = static_cast<uint8_t>(bits >> 16);
    out[used++] = static_cast<uint8_t>(bits >> 8);
    out[used++] = static_cast<uint8_t>(bits);
  }
  return used;
}

}  // namespace tw
