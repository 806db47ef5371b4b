#include "tools/echotool/console.h"

namespace tw::echotool {
namespace {

// Letters of eastern Asia take two columns. Some others count as wide as well: that costs them a column.
size_t ColumnsOf(unsigned char lead, unsigned char second) {
  const bool wide = lead > 0xE1 || (lead == 0xE1 && second >= 0x84);
  return wide ? 2 : 1;
}

bool Continues(char byte) {
  return (static_cast<unsigned char>(byte) & 0xC0) == 0x80;
}

}  // namespace

std::string FitColumns(std::string_view text, size_t columns) {
  std::string out;
  for (size_t at = 0; at < text.size();) {
    size_t end = at + 1;
    while (end < text.size() && Continues(text[end])) ++end;
    const auto lead = static_cast<unsigned char>(text[at]);
    const size_t width = ColumnsOf(lead, end > at + 1 ? static_cast<unsigned char>(text[at + 1]) : 0);
    if (width > columns) break;
    columns -= width;
    if (lead < ' ' || lead == 0x7F) {
      out += '?';
    } else {
      out += text.substr(at, end - at);
    }
    at = end;
  }
  return out;
}

}  // namespace tw::echotool
