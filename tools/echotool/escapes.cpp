#include "tools/echotool/escapes.h"

#include <cinttypes>

#include "base/calendar.h"
#include "base/text_format.h"

namespace tw::echotool {

std::string EscapedXml(std::string_view text) {
  std::string out;
  for (const char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:  // control characters are none of XML
        out += static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
  }
  return out;
}

std::string JsonText(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    char escaped[8];
    if (static_cast<unsigned char>(c) < ' ') {
      out.append(escaped, FormatText(escaped, "\\u%04x", static_cast<unsigned>(c)));
    } else {
      if (c == '"' || c == '\\') out += '\\';
      out += c;
    }
  }
  return out + '"';
}

std::string IsoTime(int64_t time_ms) {
  const CalendarTime t = CalendarFromUnixSeconds(time_ms / 1000);
  const auto milliseconds = static_cast<int32_t>(time_ms % 1000);
  char text[64];
  size_t size =
      FormatText(text, "%04" PRId32 "-%02" PRId32 "-%02" PRId32 "T%02" PRId32 ":%02" PRId32 ":%02" PRId32,
                 t.year, t.month, t.day, t.hour, t.minute, t.second);
  if (milliseconds != 0) size += FormatText(std::span(text).subspan(size), ".%03" PRId32, milliseconds);
  return std::string(text, size) + 'Z';
}

}  // namespace tw::echotool
