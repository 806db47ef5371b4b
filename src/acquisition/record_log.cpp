#include "acquisition/record_log.h"

#include <cinttypes>
#include <string_view>

#include "app/state/event_log.h"
#include "base/text_format.h"
#include "platform/file.h"

namespace tw {
namespace {

constexpr size_t kPathSize = 1'024;
constexpr size_t kDetailSize = 400;

}  // namespace

RecordNote::RecordNote(AppState& state, const DiskRecord& file)
    : state_(state), name_{}, pings_(file.Pings()) {
  wchar_t path[kPathSize];
  if (!IsEventLogOn(state) || !PathOfFile(file.Get(), path)) return;
  const std::wstring_view whole = path;
  NarrowText(name_, whole.substr(whole.find_last_of(L"/\\") + 1));
  if (!FileSize(file.Get(), size_bytes_)) size_bytes_ = 0;
}

void RecordNote::TellClosed() const {
  char detail[kDetailSize];
  FormatText(detail, "%s, %" PRIu32 " pings, %" PRIu64 " bytes", name_, pings_, size_bytes_);
  LogEvent(state_, "file closed", detail);
}

void RecordNote::TellOneByte() const {
  char detail[kDetailSize];
  FormatText(detail, "%s, 0 pings, 1 byte", name_);
  LogEvent(state_, "file closed", detail);
}

void RecordNote::TellRemoved() const {
  char detail[kDetailSize];
  FormatText(detail, "%s, removed", name_);
  LogEvent(state_, "file closed", detail);
}

void LogLostPings(AppState& state, uint32_t pings) {
  char detail[kDetailSize];
  FormatText(detail, "%" PRIu32 ", the disk is too slow", pings);
  LogEvent(state, "pings not recorded", detail);
}

void LogRefusal(AppState& state, const DiskRecord& file) {
  LogEvent(state, "disk", file.IsDiskFull() ? "full" : "refuses to write");
}

}  // namespace tw
