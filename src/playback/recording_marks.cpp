#include "playback/recording_marks.h"

#include <algorithm>
#include <string_view>

#include "app/state/event_log.h"
#include "platform/owned_file.h"

namespace tw {
namespace {

constexpr uint64_t kMostBytes = 2 * kEventFileLimit_bytes;
constexpr uint32_t kChunk_bytes = 64 * 1'024;
constexpr size_t kLongestLine = 4'096;

void TakeLine(std::string_view line, std::vector<EventMark>& marks) {
  EventMark mark{};
  if (marks.size() < kMostMarks && ParseMark(line, mark)) marks.push_back(mark);
}

// Takes whole lines off the front; of one that is too long for a mark nothing is kept.
void TakeLines(std::string& text, std::vector<EventMark>& marks) {
  size_t begin = 0;
  for (size_t end = 0; (end = text.find('\n', begin)) != text.npos; begin = end + 1)
    TakeLine(std::string_view(text).substr(begin, end - begin), marks);
  text.erase(0, begin);
  if (text.size() > kLongestLine) text.clear();
}

void ReadLog(const std::wstring& path, std::vector<EventMark>& marks) {
  const OwnedFile file(OpenFileForReading(path.c_str(), WriteSharing::allowed));
  if (file.Get() == Handle::invalid) return;
  std::vector<char> chunk(kChunk_bytes);
  std::string text;
  for (uint64_t read = 0; read < kMostBytes;) {
    uint32_t got = 0;
    if (!ReadFileBytes(file.Get(), chunk.data(), kChunk_bytes, got) || got == 0) return;
    read += got;
    text.append(chunk.data(), got);
    TakeLines(text, marks);
  }
}

}  // namespace

std::vector<EventMark> ReadMarksBeside(const std::wstring& recording) {
  const size_t separator = recording.find_last_of(L"/\\");
  const std::wstring folder = separator == recording.npos ? L"" : recording.substr(0, separator + 1);
  std::vector<EventMark> marks;
  for (const wchar_t* const name : {kOldEventFile, kEventFile}) ReadLog(folder + name, marks);
  std::stable_sort(marks.begin(), marks.end(),
                   [](const EventMark& a, const EventMark& b) { return a.time_ms < b.time_ms; });
  return marks;
}

}  // namespace tw
