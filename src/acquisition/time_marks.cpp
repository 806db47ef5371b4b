#include "acquisition/time_marks.h"

#include <algorithm>
#include <cinttypes>

#include "base/calendar.h"
#include "base/text_format.h"

namespace tw {

int32_t MarkInterval(uint32_t period_ms, uint32_t pingInterval_ms) {
  if (pingInterval_ms == 0) return 0;
  return static_cast<int32_t>(period_ms / pingInterval_ms);
}

void ClearMarks(MarkList& marks) {
  Locked held(marks.lock);
  marks.newest = 0;
  marks.count = 0;
  marks.pingsSinceMark = 0;
  marks.markNumber = 0;
  marks.changed = 1;
}

void AddMark(MarkList& marks, int32_t interval_pings, uint32_t time_s) {
  const CalendarTime time = CalendarFromUnixSeconds(time_s);
  Locked held(marks.lock);
  marks.interval_pings = interval_pings;
  if (marks.pingsSinceMark >= interval_pings) {
    ++marks.markNumber;
    marks.pingsSinceMark = 0;
  }
  constexpr auto kEntries = static_cast<int32_t>(kMaxMarks);
  marks.newest = (marks.newest + kEntries - 1) % kEntries;
  FormatText(marks.texts[marks.newest],
             "%04" PRId32 " M %04" PRId32 "-%02" PRId32 "-%02" PRId32 " %02" PRId32 ":%02" PRId32
             ":%02" PRId32,
             marks.markNumber, time.year, time.month, time.day, time.hour, time.minute, time.second);
  marks.count = std::min(marks.count + 1, kEntries);
  ++marks.pingsSinceMark;
  marks.changed = 1;
}

bool CopyMark(MarkList& marks, int32_t age, std::span<char, kMarkTextSize> text) {
  Locked held(marks.lock);
  if (age < 0 || age >= marks.count) return false;
  const auto entry = static_cast<size_t>(marks.newest + age) % kMaxMarks;
  std::copy_n(marks.texts[entry], kMarkTextSize, text.begin());
  return true;
}

}  // namespace tw
