#include "tools/echotool/file_names.h"

#include "base/text_format.h"
#include "platform/owned_file.h"
#include "platform/system_error.h"

namespace tw::echotool {
namespace {

constexpr size_t kFullPathSize = 4'096;
#ifdef _WIN32
constexpr std::wstring_view kSeparators = L"/\\:";
#else
constexpr std::wstring_view kSeparators = L"/\\";  // a backslash of a name stands for itself otherwise
#endif

size_t BeginOfName(std::wstring_view path) {
  const size_t separator = path.find_last_of(kSeparators);
  return separator == std::wstring_view::npos ? 0 : separator + 1;
}

std::wstring_view EndingOf(Task task) {
  switch (task) {
    case Task::info:
    case Task::check:
      break;
    case Task::repair:
      return L"_repaired.log";
    case Task::cut:
      return L"_cut.log";
    case Task::join:
      return L"_joined.log";
    case Task::segy:
      return L".sgy";
    case Task::text:
      return L"_txt.log";
    case Task::csv:
      return L".csv";
    case Task::kml:
      return L".kml";
    case Task::netcdf:
      return L".nc";
    case Task::gpx:
      return L".gpx";
    case Task::geojson:
      return L".geojson";
    case Task::xyz:
      return L".xyz";
    case Task::nmea:
      return L".nmea";
    case Task::png:
      return L".png";
    case Task::report:
      return L".html";
  }
  return {};
}

}  // namespace

std::wstring WideName(const std::string& path) {
  std::wstring out(path.size() + 1, L'\0');
  out.resize(WidenPath(out, path));
  return out;
}

std::string NarrowName(const std::wstring& path) {
  std::string out(4 * path.size() + 1, '\0');
  out.resize(NarrowPath(out, path));
  return out;
}

std::wstring LastOfPath(const std::wstring& path) {
  return path.substr(BeginOfName(path));
}

std::string ReadableText(const std::string& text) {
  std::wstring wide(text.size() + 1, L'\0');
  wide.resize(WidenText(wide, text));
  std::string out(4 * wide.size() + 1, '\0');
  out.resize(NarrowText(out, wide));
  return out;
}

std::string ShownName(const std::string& path) {
  return ReadableText(NarrowName(LastOfPath(WideName(path))));
}

std::wstring FullPath(const std::wstring& path) {
  const OwnedFile file(OpenFileForReading(path.c_str(), WriteSharing::allowed));
  wchar_t full[kFullPathSize];
  const bool told = file.Get() != Handle::invalid && PathOfFile(file.Get(), full);
  return told ? full : L"";
}

std::wstring OutputPath(const std::string& recording, const Options& options, const std::wstring& part) {
  const std::wstring input = WideName(recording);
  const size_t begin = BeginOfName(input);
  std::wstring name = input.substr(begin);
  const size_t point = name.find_last_of(L'.');
  if (point != std::wstring::npos && point != 0) name.resize(point);
  name += part;
  name += EndingOf(options.task);
  return options.folder.empty() ? input.substr(0, begin) + name
                                : WideName(options.folder) + kPathSeparator + name;
}

std::string ReasonText(uint32_t error) {
  wchar_t text[512];
  const std::wstring wide(text, SystemErrorText(error, text));
  std::string reason(4 * wide.size() + 1, '\0');
  reason.resize(NarrowText(reason, wide));
  reason.resize(reason.find_last_not_of(" .\r\n") + 1);
  return reason;
}

}  // namespace tw::echotool
