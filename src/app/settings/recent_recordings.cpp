#include "app/settings/recent_recordings.h"

#include <algorithm>
#include <utility>

#include "base/text_format.h"
#include "platform/registry.h"

namespace tw {
namespace {

constexpr wchar_t kRecentKey[] = L"Software\\Brin Ultrasonics\\EchoSounderControlProgram\\Settings\\Recent";
constexpr size_t kStoredSize = 1'002;  // characters
constexpr wchar_t kBetween = L'|';     // in no name of a file
constexpr size_t kMenuName = 80;

void NameValue(std::span<wchar_t> name, size_t index) {
  FormatWide(name, "%zu", index + 1);
}

std::wstring Joined(const RecordingPaths& paths) {
  std::wstring joined;
  for (const std::wstring& path : paths) {
    if (!joined.empty()) joined += kBetween;
    joined += path;
  }
  return joined;
}

// Empty where that is no recording.
RecordingPaths TakeApart(const std::wstring& stored) {
  const size_t between = stored.find(kBetween);
  if (between == stored.npos) return stored.empty() ? RecordingPaths{} : RecordingPaths{stored};
  RecordingPaths pair{stored.substr(0, between), stored.substr(between + 1)};
  const bool whole = !pair[0].empty() && !pair[1].empty() && pair[1].find(kBetween) == stored.npos;
  return whole ? pair : RecordingPaths{};
}

void Save(const std::vector<RecordingPaths>& recent) {
  for (size_t i = 0; i < kRecentRecordings; ++i) {
    wchar_t name[8];
    NameValue(name, i);
    const std::wstring joined = i < recent.size() ? Joined(recent[i]) : std::wstring();
    static_cast<void>(WriteRegistryText(kRecentKey, name, joined.c_str()));
  }
}

}  // namespace

std::vector<RecordingPaths> LoadRecent() {
  std::vector<RecordingPaths> recent;
  for (size_t i = 0; i < kRecentRecordings; ++i) {
    wchar_t name[8];
    wchar_t stored[kStoredSize] = L"";
    NameValue(name, i);
    if (!ReadRegistryText(kRecentKey, name, stored, 2 * kStoredSize)) continue;
    RecordingPaths paths = TakeApart(stored);
    if (!paths.empty() && std::find(recent.begin(), recent.end(), paths) == recent.end()) {
      recent.push_back(std::move(paths));
    }
  }
  return recent;
}

void NoteRecent(const RecordingPaths& paths) {
  if (paths.empty() || paths.size() > 2 || Joined(paths).size() >= kStoredSize) return;
  std::vector<RecordingPaths> recent = LoadRecent();
  std::erase(recent, paths);
  recent.insert(recent.begin(), paths);
  Save(recent);
}

void ForgetRecent(const RecordingPaths& paths) {
  std::vector<RecordingPaths> recent = LoadRecent();
  if (std::erase(recent, paths) != 0) Save(recent);
}

std::wstring MenuTextOf(const RecordingPaths& paths, size_t index) {
  std::wstring text = L"&" + std::to_wstring(index + 1) + L"  ";
  const size_t separator = paths[0].find_last_of(L"/\\");
  const std::wstring name = separator == paths[0].npos ? paths[0] : paths[0].substr(separator + 1);
  for (const wchar_t c : name.substr(0, kMenuName)) {
    if (c == L'&') text += c;
    text += c < L' ' ? L' ' : c;  // a tab would begin a column
  }
  return text;
}

}  // namespace tw
