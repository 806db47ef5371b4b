#include "acquisition/time_marks.h"

#include <algorithm>
#include <cinttypes>

#include "base/calendar.h"
#include "base/text_format.h"

namespace tw {
namespace {

// Puts the ping at the head of the list; the caller holds its lock.
void Enter(MarkList& marks, bool rises, const MarkedPing& ping) {
  if (rises) {
    ++marks.markNumber;
    marks.pingsSinceMark = 0;
    marks.sinceMark_ms = 0;
  }
  const CalendarTime time = CalendarFromUnixSeconds(ping.time_s);
  constexpr auto kEntries = static_cast<int32_t>(kMaxMarks);
  marks.newest = (marks.newest + kEntries - 1) % kEntries;
  MarkEntry& entry = marks.entries[marks.newest];
  FormatText(entry.text,
             "%04" PRId32 " M %04" PRId32 "-%02" PRId32 "-%02" PRId32 " %02" PRId32 ":%02" PRId32
             ":%02" PRId32,
             marks.markNumber, time.year, time.month, time.day, time.hour, time.minute, time.second);
  entry.begins = rises || marks.count == 0;
  entry.ringTime = ping.ringTime;
  marks.count = std::min(marks.count + 1, kEntries);
  ++marks.pingsSinceMark;
  marks.changed = 1;
}

}  // namespace

int32_t MarkInterval(uint32_t period_ms, uint32_t pingInterval_ms) {
  if (pingInterval_ms == 0) return 0;
  return static_cast<int32_t>(period_ms / pingInterval_ms);
}

void ClearMarks(MarkList& marks) {
  Locked held(marks.lock);
  marks.newest = 0;
  marks.count = 0;
  marks.pingsSinceMark = 0;
  marks.sinceMark_ms = 0;
  marks.markNumber = 0;
  marks.changed = 1;
}

void AddMark(MarkList& marks, int32_t interval_pings, const MarkedPing& ping) {
  Locked held(marks.lock);
  Enter(marks, marks.pingsSinceMark >= interval_pings, ping);
}

void AddPlayedMark(MarkList& marks, int64_t passed_ms, const MarkedPing& ping) {
  Locked held(marks.lock);
  marks.sinceMark_ms += passed_ms;
  Enter(marks, marks.sinceMark_ms >= kSingleMarkPeriod_ms, ping);
}

}  // namespace tw
