#include "outputs/output_options.h"

#include <algorithm>
#include <span>

#include "base/text_format.h"

namespace tw {
namespace {

template <typename T>
[[nodiscard]] bool Lies(T value, T low, T high) {
  return value >= low && value <= high;
}

[[nodiscard]] bool HasEnd(std::span<const wchar_t> text) {
  return std::find(text.begin(), text.end(), L'\0') != text.end();
}

[[nodiscard]] bool IsAddress(std::span<const wchar_t> text) {
  uint32_t unused = 0;
  return HasEnd(text) && ParseAddress(text.data(), unused);
}

// Puts what a field starts with into its place.
void Restore(std::span<wchar_t> text, const wchar_t* start) {
  CopyWide(text, start);
}
template <typename T>
void Restore(T& value, T start) {
  value = start;
}

// Each field with its rule, once: `judge(field, its start, whether it may be used)`.
template <typename Options, typename Judge>
void JudgeFields(Options& options, const Judge& judge) {
  const OutputOptions start;
  judge(options.sentences, start.sentences, options.sentences <= kAllSentences);
  judge(options.pingsPerSecond, start.pingsPerSecond, Lies(options.pingsPerSecond, 1, kMaxPingsPerSecond));
  judge(options.transducerOffset_m, start.transducerOffset_m,
        Lies(options.transducerOffset_m, -kMaxTransducerOffset_m, kMaxTransducerOffset_m));
  judge(options.line, start.line, HasEnd(options.line));
  judge(options.speed, start.speed, Lies(options.speed, kMinOutputSpeed, kMaxOutputSpeed));
  judge(options.udpAddress, start.udpAddress, IsAddress(options.udpAddress));
  judge(options.udpPort, start.udpPort, Lies(options.udpPort, 1, UINT16_MAX));
  judge(options.tcpAddress, start.tcpAddress, IsAddress(options.tcpAddress));
  judge(options.tcpPort, start.tcpPort, Lies(options.tcpPort, 1, UINT16_MAX));
}

// One of the four numbers off the front.
[[nodiscard]] bool TakeNumber(std::wstring_view& text, uint32_t& number) {
  number = 0;
  size_t digits = 0;
  for (; digits < text.size() && text[digits] >= L'0' && text[digits] <= L'9'; ++digits) {
    if (digits == 3) return false;
    number = number * 10 + static_cast<uint32_t>(text[digits] - L'0');
  }
  text.remove_prefix(digits);
  return digits > 0 && number <= 255;
}

}  // namespace

bool IsBounded(const OutputOptions& options) {
  bool bounded = true;
  JudgeFields(options, [&](const auto&, const auto&, bool usable) { bounded = bounded && usable; });
  return bounded;
}

OutputOptions Bound(const OutputOptions& options) {
  OutputOptions bounded = options;
  JudgeFields(bounded, [](auto& field, const auto& start, bool usable) {
    if (!usable) Restore(field, start);
  });
  return bounded;
}

bool ParseAddress(std::wstring_view text, uint32_t& ip) {
  uint32_t address = 0;
  for (int i = 0; i < 4; ++i) {
    uint32_t number = 0;
    if (i > 0 && !text.starts_with(L'.')) return false;
    if (i > 0) text.remove_prefix(1);
    if (!TakeNumber(text, number)) return false;
    address = address << 8 | number;
  }
  if (!text.empty()) return false;
  ip = address;
  return true;
}

}  // namespace tw
