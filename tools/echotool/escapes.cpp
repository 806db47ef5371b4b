#include "tools/echotool/escapes.h"

#include "base/text_format.h"

namespace tw::echotool {
namespace {

bool IsControl(char c) {
  return static_cast<unsigned char>(c) < ' ' || c == 0x7F;
}

bool StandsInLinks(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '_' ||
         c == '.' || c == '~' || c == '/';
}

std::string_view EntityOf(char c) {
  switch (c) {
    case '&':
      return "&amp;";
    case '<':
      return "&lt;";
    case '>':
      return "&gt;";
    case '"':
      return "&quot;";
    case '\'':
      return "&#39;";
    default:
      return {};
  }
}

}  // namespace

std::string MarkupText(std::string_view text) {
  std::string out;
  for (const char c : text) {
    const std::string_view entity = EntityOf(c);
    if (!entity.empty()) {
      out += entity;
    } else {
      out += IsControl(c) ? ' ' : c;
    }
  }
  return out;
}

std::string QuotedJson(std::string_view text) {
  std::string out = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') out += '\\';
    out += IsControl(c) ? ' ' : c;
  }
  return out + '"';
}

std::string CsvCell(std::string_view text) {
  constexpr std::string_view kFormula = "=+-@";
  std::string cell;
  if (!text.empty() && kFormula.find(text[0]) != std::string_view::npos) cell += '\'';
  bool quoted = false;
  for (const char c : text) {
    quoted = quoted || c == ',' || c == '"' || c == ';';
    if (c == '"') cell += '"';
    cell += IsControl(c) ? ' ' : c;
  }
  return quoted ? '"' + cell + '"' : cell;
}

std::string LinkText(std::string_view name) {
  std::string out;
  for (const char c : name) {
    char code[8];
    if (StandsInLinks(c)) {
      out += c;
    } else {
      out.append(code, FormatText(code, "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(c))));
    }
  }
  return out;
}

}  // namespace tw::echotool
