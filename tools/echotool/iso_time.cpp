#include "tools/echotool/iso_time.h"

#include <cinttypes>

#include "base/calendar.h"
#include "base/text_format.h"

namespace tw::echotool {

size_t StoreIsoSeconds(std::span<char> out, int64_t seconds) {
  const CalendarTime t = CalendarFromUnixSeconds(seconds);
  return FormatText(out, "%04" PRId32 "-%02" PRId32 "-%02" PRId32 "T%02" PRId32 ":%02" PRId32 ":%02" PRId32,
                    t.year, t.month, t.day, t.hour, t.minute, t.second);
}

std::string IsoTime(int64_t time_ms, Milliseconds shown) {
  constexpr int64_t kSecond_ms = 1'000;
  const int64_t rest_ms = (time_ms % kSecond_ms + kSecond_ms) % kSecond_ms;
  char text[64];
  size_t size = StoreIsoSeconds(text, (time_ms - rest_ms) / kSecond_ms);
  if (rest_ms != 0 || shown == Milliseconds::always)
    size += FormatText(std::span(text).subspan(size), ".%03d", static_cast<int>(rest_ms));
  return std::string(text, size) + 'Z';
}

std::string IsoDate(int64_t time_ms) {
  return IsoTime(time_ms).substr(0, 10);
}

std::string IsoClock(int64_t time_ms) {
  return IsoTime(time_ms).substr(11, 8);
}

}  // namespace tw::echotool
