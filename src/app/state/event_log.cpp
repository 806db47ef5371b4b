#include "app/state/event_log.h"

#include <algorithm>

#include "app/state/file_naming.h"
#include "base/calendar.h"
#include "base/text_format.h"
#include "platform/clock.h"
#include "platform/owned_file.h"

namespace tw {
namespace {

constexpr size_t kDetailSize = 800;
constexpr size_t kLineSize = 1'024;
constexpr char kHeading[] = "UTC,event,detail\r\n";

// In quotes, those within doubled.
struct QuotedDetail {
  explicit QuotedDetail(std::string_view detail) {
    size_t at = 0;
    text[at++] = '"';
    for (const char c : detail) {
      if (at + 4 > sizeof(text)) break;
      if (c == '"') text[at++] = '"';
      text[at++] = static_cast<unsigned char>(c) < ' ' ? ' ' : c;
    }
    text[at++] = '"';
    text[at] = '\0';
  }
  char text[kDetailSize];
};

size_t FormatLine(std::span<char> line, const CalendarTime& utc, std::string_view event,
                  std::string_view detail) {
  const QuotedDetail quoted(detail);
  return FormatText(line, "%04d-%02d-%02dT%02d:%02d:%02d.%03dZ,%.*s,%s\r\n", utc.year, utc.month, utc.day,
                    utc.hour, utc.minute, utc.second, utc.millisecond,
                    static_cast<int>(std::min<size_t>(event.size(), 64)), event.data(), quoted.text);
}

// What the disk takes in part is cut off again, so that each line begins at the beginning of one.
bool Append(Handle file, uint64_t size_bytes, std::string_view line) {
  uint32_t written = 0;
  if (WriteFileBytes(file, line.data(), static_cast<uint32_t>(line.size()), written)) return true;
  if (written != 0) static_cast<void>(TruncateFile(file, size_bytes));  // a full disk takes this
  return false;
}

void AppendBelowHeading(Handle file, uint64_t size_bytes, std::string_view line) {
  const std::string_view heading = kHeading;
  const bool headed = size_bytes != 0 || Append(file, 0, heading);
  if (headed) static_cast<void>(Append(file, size_bytes != 0 ? size_bytes : heading.size(), line));
}

// With the lock held.
void Write(const wchar_t* folder, std::string_view line) {
  wchar_t path[kPathSize];
  wchar_t oldPath[kPathSize];
  if (!JoinPath(path, folder, kEventFile) || !JoinPath(oldPath, folder, kOldEventFile)) return;
  uint64_t size_bytes = 0;
  {
    const OwnedFile file(OpenFileForAppending(path));
    if (file.Get() == Handle::invalid || !FileSize(file.Get(), size_bytes)) return;
    if (size_bytes + line.size() <= kEventFileLimit_bytes)
      return AppendBelowHeading(file.Get(), size_bytes, line);
  }
  if (!RenameFile(path, oldPath)) return;
  const OwnedFile fresh(OpenFileForAppending(path));
  if (fresh.Get() != Handle::invalid) AppendBelowHeading(fresh.Get(), 0, line);
}

void WriteEvent(AppState& state, const CalendarTime& utc, std::string_view event, std::string_view detail) {
  const Locked held(state.eventLog.lock);
  char line[kLineSize];
  const size_t length = FormatLine(line, utc, event, detail);
  Write(state.eventLog.folder, {line, length});
}

}  // namespace

void DirectEventLog(AppState& state) {
  const Locked held(state.eventLog.lock);
  CopyWide(state.eventLog.folder, state.workingFolder);
  StoreShared(state.eventLog.on, state.options.eventLog);
}

bool IsEventLogOn(const AppState& state) {
  return LoadShared(state.eventLog.on) != 0;
}

void LogEvent(AppState& state, std::string_view event, std::string_view detail) {
  if (!IsEventLogOn(state)) return;
  WriteEvent(state, UtcNow(), event, detail);
}

void LogMark(AppState& state, int64_t utc_ms, std::string_view detail) {
  CalendarTime utc = CalendarFromUnixSeconds(utc_ms / 1'000);
  utc.millisecond = static_cast<int32_t>(utc_ms % 1'000);
  WriteEvent(state, utc, "mark", detail);
}

}  // namespace tw
