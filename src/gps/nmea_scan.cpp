#include "gps/nmea_scan.h"

#include <algorithm>

#include "base/text_scan.h"

namespace tw {
namespace {

struct Conversion {
  char kind;
  size_t width;  // of a number; 0 = unlimited
};

// Takes "%2d" and the like off the front of a format that begins with '%'.
Conversion TakeConversion(std::string_view& format) {
  format.remove_prefix(1);
  size_t width = 0;
  while (!format.empty() && format[0] >= '0' && format[0] <= '9') {
    width = width * 10 + static_cast<size_t>(format[0] - '0');
    format.remove_prefix(1);
  }
  const char kind = format.empty() ? '\0' : format[0];
  if (!format.empty()) format.remove_prefix(1);
  return {kind, width};
}

bool TakeNumber(std::string_view& field, const Conversion& conversion, const ScanTarget& target) {
  if (int32_t* const* whole = std::get_if<int32_t*>(&target)) {
    if (field.empty()) {
      **whole = 0;
      return true;
    }
    return conversion.width == 0 ? ScanInt(field, **whole) : ScanIntWidth(field, conversion.width, **whole);
  }
  double* const* real = std::get_if<double*>(&target);
  if (real == nullptr) return false;
  if (!field.empty()) return ScanDouble(field, **real);
  **real = 0.0;
  return true;
}

bool TakeText(std::string_view& field, const Conversion& conversion, const ScanTarget& target) {
  if (conversion.kind == 's') {
    std::string_view* const* text = std::get_if<std::string_view*>(&target);
    if (text == nullptr) return false;
    **text = field;
    field = {};
    return true;
  }
  char* const* letter = std::get_if<char*>(&target);
  if (letter == nullptr) return false;
  **letter = field.empty() ? '\0' : field[0];
  if (!field.empty()) field.remove_prefix(1);
  return true;
}

}  // namespace

int ScanSentence(std::string_view sentence, std::string_view format, std::span<const ScanTarget> targets) {
  int converted = 0;
  bool fieldBegun = false;  // the last conversion took a part of this field
  while (!format.empty()) {
    if (format[0] == ' ') {
      sentence.remove_prefix(std::min(sentence.find_first_not_of(' '), sentence.size()));
      format.remove_prefix(1);
      continue;
    }
    if (format[0] != '%') {
      if (sentence.empty() || sentence[0] != format[0]) break;
      sentence.remove_prefix(1);
      format.remove_prefix(1);
      fieldBegun = false;
      continue;
    }
    const Conversion conversion = TakeConversion(format);
    if (sentence.empty() || static_cast<size_t>(converted) >= targets.size()) break;
    const auto end =
        std::find_if(sentence.begin(), sentence.end(), [](char c) { return c == ',' || c == '*'; });
    std::string_view field(sentence.begin(), end);
    if (field.empty() && fieldBegun) break;
    const size_t before = field.size();
    const ScanTarget& target = targets[static_cast<size_t>(converted)];
    const bool number = conversion.kind == 'd' || conversion.kind == 'f';
    if (number ? !TakeNumber(field, conversion, target) : !TakeText(field, conversion, target)) break;
    fieldBegun = fieldBegun || before != field.size();
    sentence.remove_prefix(before - field.size());
    ++converted;
  }
  return converted;
}

}  // namespace tw
