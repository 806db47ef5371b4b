// The registry is a settings file, "tidewriter/settings" in the user's configuration folder: a line for each
// value, in the order of writing, with tabs between key, name, kind and value:
//
//   Software\Tidewriter\Settings  LowSpeed  n  115200
//
// The kinds are n (number), t (text, UTF-8) and b (bytes, two hexadecimal digits each). A control character
// and the percent sign stand as % and two hexadecimal digits. A write puts a new file in the place of the old
// one in one step; a file that is too long is neither read nor replaced.
#include "platform/registry.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "base/text_format.h"
#include "base/text_scan.h"
#include "platform/posix/last_error.h"
#include "platform/posix/open_file.h"
#include "platform/posix/registry_text.h"
#include "platform/system_error.h"

namespace tw {
namespace {

constexpr size_t kLongestFile = size_t{1} << 20;

// Where the file is, without a name; its folders are made. Empty when the user has none.
[[nodiscard]] std::string Folder() {
  const char* const set = std::getenv("XDG_CONFIG_HOME");  // NOLINT(concurrency-mt-unsafe): nobody sets it
  const char* const home = std::getenv("HOME");            // NOLINT(concurrency-mt-unsafe): nobody sets it
  std::string folder;
  if (set != nullptr && set[0] == '/') {
    folder = set;
  } else if (home != nullptr) {
    folder = std::string(home) + "/.config";
  } else {
    SetSystemError(ENOENT);
    return {};
  }
  mkdir(folder.c_str(), 0700);  // whether they are there now shows when the file is opened
  folder += "/tidewriter";
  mkdir(folder.c_str(), 0700);
  return folder + '/';
}

[[nodiscard]] std::string Escaped(std::wstring_view text) {
  std::string bytes(4 * text.size() + 1, '\0');
  bytes.resize(NarrowText(bytes, text));
  std::string escaped;
  for (const char byte : bytes) {
    char code[4] = {byte};
    const auto value = static_cast<uint8_t>(byte);
    if (value < 0x20 || byte == '%') FormatText(code, "%%%02X", value);
    escaped += code;
  }
  return escaped;
}

[[nodiscard]] std::wstring Unescaped(std::string_view escaped) {
  std::string bytes;
  while (!escaped.empty()) {
    uint32_t value = static_cast<uint8_t>(escaped[0]);
    escaped.remove_prefix(1);
    if (value == '%' && !ScanHex(escaped, 2, value)) value = '%';
    bytes += static_cast<char>(value);
  }
  std::wstring text(bytes.size() + 1, L'\0');
  text.resize(WidenText(text, bytes));
  return text;
}

// What a value's line begins with.
[[nodiscard]] std::string Head(const wchar_t* key, const wchar_t* name) {
  return Escaped(key) + '\t' + Escaped(name) + '\t';
}

// The file's content, empty when there is none yet.
[[nodiscard]] bool ReadSettings(const std::string& path, std::string& content) {
  content.clear();
  posix::OpenFile file;
  if (!file.Open(path.c_str(), O_RDONLY, true)) return LastSystemError() == ENOENT;
  char piece[4096];
  uint32_t got = 0;
  while (file.Read(piece, sizeof(piece), got)) {
    if (got == 0) return true;
    if (content.size() + got > kLongestFile) return FailWith(EFBIG);
    content.append(piece, got);
  }
  return false;
}

// Takes the next line off the front, without its end.
[[nodiscard]] std::string_view TakeLine(std::string_view& rest) {
  const size_t end = std::min(rest.find('\n'), rest.size());
  const std::string_view line = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return line;
}

[[nodiscard]] bool Read(const wchar_t* key, const wchar_t* name, std::string_view kind, std::string& value) {
  const std::string folder = Folder();
  std::string content;
  if (folder.empty() || !ReadSettings(folder + "settings", content)) return false;
  std::string head = Head(key, name);
  head.append(kind) += '\t';
  std::string_view rest = content;
  while (!rest.empty()) {
    const std::string_view line = TakeLine(rest);
    if (!line.starts_with(head)) continue;
    value = line.substr(head.size());
    return true;
  }
  return FailWith(ENOENT);
}

[[nodiscard]] bool ReplaceFile(const std::string& path, const std::string& content) {
  if (content.size() > kLongestFile) return FailWith(EFBIG);
  const std::string fresh = path + ".new";
  uint32_t written = 0;
  {
    posix::OpenFile file;
    if (!file.Open(fresh.c_str(), O_WRONLY | O_CREAT | O_TRUNC, false)) return false;
    if (!file.Write(content.data(), static_cast<uint32_t>(content.size()), written)) return false;
    if (!file.Flush()) return false;
  }
  return std::rename(fresh.c_str(), path.c_str()) == 0 || FailWithErrno();
}

[[nodiscard]] bool Write(const wchar_t* key, const wchar_t* name, std::string_view kind,
                         std::string_view value) {
  const std::string folder = Folder();
  std::string content;
  if (folder.empty() || !ReadSettings(folder + "settings", content)) return false;
  const std::string head = Head(key, name);
  std::string fresh;
  std::string_view rest = content;
  while (!rest.empty()) {
    const std::string_view line = TakeLine(rest);
    if (!line.starts_with(head)) fresh.append(line) += '\n';
  }
  fresh.append(head).append(kind).append("\t").append(value) += '\n';
  return ReplaceFile(folder + "settings", fresh);
}

}  // namespace

bool ReadRegistryNumber(const wchar_t* key, const wchar_t* name, uint32_t& value) {
  std::string stored;
  if (!Read(key, name, "n", stored)) return false;
  std::string_view rest = stored;
  uint32_t number = 0;
  if (!ScanUint(rest, number) || !rest.empty()) return FailWith(EINVAL);
  value = number;
  return true;
}

bool WriteRegistryNumber(const wchar_t* key, const wchar_t* name, uint32_t value) {
  return Write(key, name, "n", std::to_string(value));
}

bool ReadRegistryText(const wchar_t* key, const wchar_t* name, std::span<wchar_t> out, uint32_t size_bytes) {
  std::string stored;
  return Read(key, name, "t", stored) && posix::GiveRegistryText(Unescaped(stored), out, size_bytes);
}

bool WriteRegistryText(const wchar_t* key, const wchar_t* name, const wchar_t* text) {
  return Write(key, name, "t", Escaped(text));
}

bool WriteRegistryBytes(const wchar_t* key, const wchar_t* name, std::span<const uint8_t> bytes) {
  std::string digits;
  for (const uint8_t byte : bytes) {
    char two[3];
    FormatText(two, "%02x", byte);
    digits += two;
  }
  return Write(key, name, "b", digits);
}

}  // namespace tw
