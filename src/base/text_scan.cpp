#include "base/text_scan.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>

namespace tw {
namespace {

constexpr bool IsWhiteSpace(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}
constexpr bool IsDigit(char c) {
  return c >= '0' && c <= '9';
}

// from_chars reads a minus sign but no plus sign; "+-5" must not slip through when the plus is taken off.
bool TakePlus(std::string_view& text) {
  if (text.empty() || text.front() != '+') return true;
  text.remove_prefix(1);
  return text.empty() || text.front() != '-';
}

// Of an unsigned number that is out of range: true when it is too small, not too large. The exponent's sign
// tells; without an exponent, a number below 1 is the small one.
bool IsTiny(std::string_view magnitude) {
  const size_t exponent = magnitude.find_first_of("eE");
  if (exponent != magnitude.npos) return magnitude.substr(exponent + 1).starts_with('-');
  return magnitude.substr(0, magnitude.find('.')).find_first_not_of('0') == magnitude.npos;
}

// Plain decimals of up to 15 digits, which nearly all numbers of devices and receivers are: a whole number
// below 2^53 over a power of ten that a double holds exactly, so one division gives the nearest double. The
// number of characters taken; 0 when the number is of another form.
size_t TakePlainDecimal(std::string_view magnitude, double& value) {
  constexpr double kTens[] = {1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  constexpr size_t kMostDigits = std::size(kTens) - 1;
  uint64_t digits = 0;
  size_t count = 0;
  size_t decimals = 0;
  bool behindPoint = false;
  size_t at = 0;
  for (; at < magnitude.size(); ++at) {
    const char c = magnitude[at];
    if (IsDigit(c)) {
      if (++count > kMostDigits) return 0;
      digits = digits * 10 + static_cast<uint64_t>(c - '0');
      decimals += behindPoint ? 1 : 0;
    } else if (c == '.' && !behindPoint) {
      behindPoint = true;
    } else {
      break;
    }
  }
  if (count == 0 || (at < magnitude.size() && (magnitude[at] == 'e' || magnitude[at] == 'E'))) return 0;
  value = static_cast<double>(digits) / kTens[decimals];
  return at;
}

// Whole numbers of up to nine digits without a sign, which nearly all are. False when the number is of
// another form.
bool TakePlainWhole(std::string_view field, size_t& taken, uint32_t& value) {
  constexpr size_t kMostDigits = 9;
  size_t at = 0;
  uint32_t result = 0;
  for (; at < field.size() && IsDigit(field[at]); ++at) {
    if (at == kMostDigits) return false;
    result = result * 10 + static_cast<uint32_t>(field[at] - '0');
  }
  taken = at;
  value = result;
  return at != 0;
}

template <typename T>
bool ScanWhole(std::string_view& text, size_t width, T& value) {
  std::string_view rest = text;
  SkipWhiteSpace(rest);
  const size_t available = std::min(width, rest.size());
  const std::string_view field = rest.substr(0, available);
  size_t taken = 0;
  if (uint32_t plain = 0; TakePlainWhole(field, taken, plain)) {
    text = rest.substr(taken);
    value = static_cast<T>(plain);
    return true;
  }
  std::string_view digits = field;
  T result = 0;
  if (!TakePlus(digits)) return false;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), result);
  if (error != std::errc()) return false;
  rest.remove_prefix(static_cast<size_t>(end - field.data()));
  text = rest;
  value = result;
  return true;
}

}  // namespace

bool ScanInt(std::string_view& text, int32_t& value) {
  return ScanWhole(text, text.size(), value);
}

bool ScanUint(std::string_view& text, uint32_t& value) {
  return ScanWhole(text, text.size(), value);
}

bool ScanIntWidth(std::string_view& text, size_t width, int32_t& value) {
  return ScanWhole(text, width, value);
}

bool ScanDouble(std::string_view& text, double& value) {
  std::string_view rest = text;
  SkipWhiteSpace(rest);
  std::string_view number = rest;
  if (!TakePlus(number)) return false;
  const std::string_view magnitude = !number.empty() && number.front() == '-' ? number.substr(1) : number;
  const bool startsWithDigit =
      !magnitude.empty() &&
      (IsDigit(magnitude[0]) || (magnitude[0] == '.' && magnitude.size() > 1 && IsDigit(magnitude[1])));
  if (!startsWithDigit) return false;
  double wide = 0;
  if (const size_t taken = TakePlainDecimal(magnitude, wide); taken != 0) {
    text.remove_prefix(static_cast<size_t>(magnitude.data() - text.data()) + taken);
    value = number.front() == '-' ? -wide : wide;
    return true;
  }
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), wide);
  if (error == std::errc::invalid_argument) return false;
  // Out of range: from_chars does not tell too large from too small.
  if (error == std::errc::result_out_of_range) {
    if (!IsTiny({magnitude.data(), static_cast<size_t>(end - magnitude.data())})) return false;
    wide = 0;
  }
  rest.remove_prefix(static_cast<size_t>(end - rest.data()));
  text = rest;
  value = wide;
  return true;
}

bool ScanFloat(std::string_view& text, float& value) {
  std::string_view rest = text;
  double wide = 0;
  if (!ScanDouble(rest, wide)) return false;
  if (!(std::fabs(wide) <= static_cast<double>(std::numeric_limits<float>::max()))) return false;
  text = rest;
  value = static_cast<float>(wide);
  return true;
}

bool ScanHex(std::string_view& text, size_t width, uint32_t& value) {
  const size_t available = std::min({width, text.size(), size_t{8}});
  uint32_t result = 0;
  if (available == 0 || text.front() == '-') return false;
  const auto [end, error] = std::from_chars(text.data(), text.data() + available, result, 16);
  if (error != std::errc()) return false;
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  value = result;
  return true;
}

bool ScanLiteral(std::string_view& text, std::string_view literal) {
  if (!text.starts_with(literal)) return false;
  text.remove_prefix(literal.size());
  return true;
}

void SkipWhiteSpace(std::string_view& text) {
  while (!text.empty() && IsWhiteSpace(text.front())) text.remove_prefix(1);
}

}  // namespace tw
