#include "tools/echotool/file_names.h"

#include <algorithm>
#include <iterator>

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

struct Ending {
  Task task;
  std::wstring_view text;
};

constexpr Ending kEndings[] = {
    {Task::repair, L"_repaired.log"},
    {Task::cut, L"_cut.log"},
    {Task::join, L"_joined.log"},
    {Task::text, L"_txt.log"},
    {Task::segy, L".sgy"},
    {Task::csv, L".csv"},
    {Task::kml, L".kml"},
    {Task::netcdf, L".nc"},
    {Task::gpx, L".gpx"},
    {Task::geojson, L".geojson"},
    {Task::xyz, L".xyz"},
    {Task::nmea, L".nmea"},
    {Task::png, L".png"},
    {Task::report, L".html"},
};

constexpr std::wstring_view kOnePart[] = {L""};
constexpr std::wstring_view kParts[] = {L"", L"_ch1", L"_ch2"};

std::wstring_view EndingOf(Task task) {
  for (const Ending& ending : kEndings) {
    if (ending.task == task) return ending.text;
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

std::wstring FullPathToBe(const std::wstring& path) {
  const std::wstring folder = FolderOfPath(path);
  wchar_t full[kFullPathSize];
  const bool told = PathOfFolder(folder.empty() ? L"." : folder.c_str(), full);
  return PathIn(told ? full : folder, LastOfPath(path));
}

std::wstring PathIn(const std::wstring& folder, const std::wstring& name) {
  const bool separated = folder.empty() || kSeparators.find(folder.back()) != std::wstring_view::npos;
  return separated ? folder + name : folder + kPathSeparator + name;
}

std::wstring FolderOfPath(const std::wstring& path) {
  return path.substr(0, BeginOfName(path));
}

std::wstring StemOf(const std::wstring& name) {
  const size_t point = name.find_last_of(L'.');
  return point == std::wstring::npos || point == 0 ? name : name.substr(0, point);
}

std::wstring OutputPath(const std::string& recording, const std::wstring& folder, Task task,
                        const std::wstring& part) {
  const std::wstring input = WideName(recording);
  const std::wstring name = StemOf(LastOfPath(input)) + part + std::wstring(EndingOf(task));
  return PathIn(folder.empty() ? FolderOfPath(input) : folder, name);
}

std::span<const std::wstring_view> PartsOf(Task task) {
  if (EndingOf(task).empty()) return {};
  return task == Task::netcdf ? std::span<const std::wstring_view>(kParts) : kOnePart;
}

std::vector<std::wstring> OriginalStems(const std::wstring& name) {
  std::vector<std::wstring> stems;
  for (const Ending& ending : kEndings) {
    for (const std::wstring_view part : PartsOf(ending.task)) {
      const std::wstring behind = std::wstring(part) + std::wstring(ending.text);
      if (name.size() > behind.size() && name.ends_with(behind))
        stems.push_back(name.substr(0, name.size() - behind.size()));
    }
  }
  return stems;
}

bool IsNameOfOutput(const std::wstring& name) {
  return std::any_of(std::begin(kEndings), std::end(kEndings), [&](const Ending& ending) {
    return ending.text.starts_with(L'.') && name.ends_with(ending.text);
  });
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
