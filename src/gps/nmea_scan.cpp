#include "gps/nmea_scan.h"

#include <algorithm>

#include "base/text_scan.h"

namespace tw {
namespace {

struct Conversion {
  char kind;
  size_t width;  // of a number; 0 = unlimited
};

// Reads "2d" and the like from `at` on, behind a '%'.
Conversion ReadConversion(std::string_view format, size_t& at) {
  size_t width = 0;
  for (; at < format.size() && format[at] >= '0' && format[at] <= '9'; ++at) {
    width = width * 10 + static_cast<size_t>(format[at] - '0');
  }
  return {at < format.size() ? format[at++] : '\0', width};
}

bool IsFieldEnd(std::string_view text) {
  return text.empty() || text[0] == ',' || text[0] == '*';
}

// No number reaches beyond its field, since none has a ',' or a '*' in it.
bool TakeWhole(std::string_view& text, size_t width, const ScanTarget& target) {
  int32_t* const* whole = std::get_if<int32_t*>(&target);
  if (whole == nullptr) return false;
  if (!IsFieldEnd(text)) return ScanIntWidth(text, width == 0 ? text.size() : width, **whole);
  **whole = 0;
  return true;
}

bool TakeReal(std::string_view& text, const ScanTarget& target) {
  double* const* real = std::get_if<double*>(&target);
  if (real == nullptr) return false;
  if (!IsFieldEnd(text)) return ScanDouble(text, **real);
  **real = 0.0;
  return true;
}

bool TakeLetter(std::string_view& text, const ScanTarget& target) {
  char* const* letter = std::get_if<char*>(&target);
  if (letter == nullptr) return false;
  const bool isEmpty = IsFieldEnd(text);
  **letter = isEmpty ? '\0' : text[0];
  if (!isEmpty) text.remove_prefix(1);
  return true;
}

bool TakeField(std::string_view& text, const ScanTarget& target) {
  std::string_view* const* field = std::get_if<std::string_view*>(&target);
  if (field == nullptr) return false;
  size_t end = 0;
  while (!IsFieldEnd(text.substr(end))) ++end;
  **field = text.substr(0, end);
  text.remove_prefix(end);
  return true;
}

bool Take(std::string_view& text, const Conversion& conversion, const ScanTarget& target) {
  switch (conversion.kind) {
    case 'd':
      return TakeWhole(text, conversion.width, target);
    case 'f':
      return TakeReal(text, target);
    case 'C':
      return TakeLetter(text, target);
    case 's':
      return TakeField(text, target);
    default:
      return false;
  }
}

}  // namespace

int ScanSentence(std::string_view sentence, std::string_view format, std::span<const ScanTarget> targets) {
  int converted = 0;
  bool fieldBegun = false;  // the last conversion took a part of this field
  for (size_t at = 0; at < format.size();) {
    const char next = format[at++];
    if (next == ' ') {
      sentence.remove_prefix(std::min(sentence.find_first_not_of(' '), sentence.size()));
    } else if (next != '%') {
      if (sentence.empty() || sentence[0] != next) break;
      sentence.remove_prefix(1);
      fieldBegun = false;
    } else {
      const Conversion conversion = ReadConversion(format, at);
      if (sentence.empty() || static_cast<size_t>(converted) >= targets.size()) break;
      if (fieldBegun && IsFieldEnd(sentence)) break;
      const size_t before = sentence.size();
      if (!Take(sentence, conversion, targets[static_cast<size_t>(converted)])) break;
      fieldBegun = fieldBegun || before != sentence.size();
      ++converted;
    }
  }
  return converted;
}

}  // namespace tw
