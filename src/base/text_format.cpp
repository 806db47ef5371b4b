#include "base/text_format.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstdint>
#include <cstdio>

namespace tw {
namespace {

constexpr uint32_t kReplacement = 0xFFFD;

size_t FormatList(std::span<char> out, const char* format, va_list arguments) {
  if (out.empty()) return 0;
  const int wanted = std::vsnprintf(out.data(), out.size(), format, arguments);
  if (wanted < 0) {
    out[0] = '\0';
    return 0;
  }
  return std::min(static_cast<size_t>(wanted), out.size() - 1);
}

// Takes one code point off the front. A byte that starts no valid sequence is one replacement character.
uint32_t TakeUtf8(std::string_view& text) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(text[i]); };
  const uint8_t first = byte(0);
  const size_t length = first < 0x80   ? 1
                        : first < 0xC2 ? 0
                        : first < 0xE0 ? 2
                        : first < 0xF0 ? 3
                        : first < 0xF5 ? 4
                                       : 0;
  uint32_t point = length == 1 ? first : first & (0x7Fu >> length);
  bool valid = length != 0 && length <= text.size();
  for (size_t i = 1; valid && i < length; ++i) {
    valid = (byte(i) & 0xC0) == 0x80;
    point = point << 6 | (byte(i) & 0x3Fu);
  }
  constexpr uint32_t kLeast[] = {0, 0, 0x80, 0x800, 0x10000};
  valid = valid && point >= kLeast[length] && point <= 0x10FFFF && (point < 0xD800 || point > 0xDFFF);
  text.remove_prefix(valid ? length : 1);
  return valid ? point : kReplacement;
}

uint32_t TakeWide(std::wstring_view& text) {
  // As wide as the number or without a sign: nothing is extended.
  const auto unit = static_cast<uint32_t>(text[0]);  // NOLINT(bugprone-signed-char-misuse)
  text.remove_prefix(1);
  if constexpr (sizeof(wchar_t) == 2) {
    if (unit >= 0xD800 && unit <= 0xDBFF && !text.empty()) {
      const auto low = static_cast<uint32_t>(text[0]);  // NOLINT(bugprone-signed-char-misuse)
      if (low >= 0xDC00 && low <= 0xDFFF) {
        text.remove_prefix(1);
        return 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
      }
    }
  }
  return unit > 0x10FFFF || (unit >= 0xD800 && unit <= 0xDFFF) ? kReplacement : unit;
}

size_t PutWide(wchar_t (&units)[2], uint32_t point) {
  if (sizeof(wchar_t) == 2 && point > 0xFFFF) {
    units[0] = static_cast<wchar_t>(0xD800 + ((point - 0x10000) >> 10));
    units[1] = static_cast<wchar_t>(0xDC00 + ((point - 0x10000) & 0x3FF));
    return 2;
  }
  units[0] = static_cast<wchar_t>(point);
  return 1;
}

size_t PutUtf8(char (&bytes)[4], uint32_t point) {
  if (point < 0x80) {
    bytes[0] = static_cast<char>(point);
    return 1;
  }
  const size_t length = point < 0x800 ? 2 : point < 0x10000 ? 3 : 4;
  for (size_t i = length - 1; i > 0; --i, point >>= 6) bytes[i] = static_cast<char>(0x80 | (point & 0x3F));
  bytes[0] = static_cast<char>((0xF00u >> length & 0xF0) | point);
  return length;
}

}  // namespace

size_t FormatText(std::span<char> out, const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  const size_t length = FormatList(out, format, arguments);
  va_end(arguments);
  return length;
}

size_t FormatFixed(std::span<char> out, double value, int decimals) {
  const auto end =
      std::to_chars(out.data(), out.data() + out.size(), value, std::chars_format::fixed, decimals);
  return end.ec == std::errc{} ? static_cast<size_t>(end.ptr - out.data()) : 0;
}

size_t FormatWide(std::span<wchar_t> out, const char* format, ...) {
  char narrow[1024];
  va_list arguments;
  va_start(arguments, format);
  const size_t length = FormatList(narrow, format, arguments);
  va_end(arguments);
  return WidenText(out, std::string_view(narrow, length));
}

size_t WidenText(std::span<wchar_t> out, std::string_view text) {
  if (out.empty()) return 0;
  size_t used = 0;
  while (!text.empty()) {
    wchar_t units[2];
    const size_t count = PutWide(units, TakeUtf8(text));
    if (used + count >= out.size()) break;
    used = static_cast<size_t>(std::copy_n(units, count, out.begin() + static_cast<ptrdiff_t>(used)) -
                               out.begin());
  }
  out[used] = L'\0';
  return used;
}

size_t NarrowText(std::span<char> out, std::wstring_view text) {
  if (out.empty()) return 0;
  size_t used = 0;
  while (!text.empty()) {
    char bytes[4];
    const size_t count = PutUtf8(bytes, TakeWide(text));
    if (used + count >= out.size()) break;
    used = static_cast<size_t>(std::copy_n(bytes, count, out.begin() + static_cast<ptrdiff_t>(used)) -
                               out.begin());
  }
  out[used] = '\0';
  return used;
}

size_t CopyWide(std::span<wchar_t> out, std::wstring_view text) {
  if (out.empty()) return 0;
  const size_t count = std::min(text.size(), out.size() - 1);
  std::copy_n(text.begin(), count, out.begin());
  out[count] = L'\0';
  return count;
}

}  // namespace tw
