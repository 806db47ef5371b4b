#include "app/state/event_marks.h"

#include <cinttypes>
#include <cmath>

#include "base/calendar.h"
#include "base/text_format.h"
#include "base/text_scan.h"

namespace tw {
namespace {

constexpr std::string_view kEvent = ",mark,\"";
constexpr size_t kUtcSize = 24;  // of "2026-03-14T09:30:05.000Z"

// Digits alone, as many as asked for.
bool TakeDigits(std::string_view& text, size_t count, int32_t& value) {
  if (text.size() < count) return false;
  int32_t digits = 0;
  for (size_t i = 0; i < count; ++i) {
    if (text[i] < '0' || text[i] > '9') return false;
    digits = 10 * digits + (text[i] - '0');
  }
  value = digits;
  text.remove_prefix(count);
  return true;
}

bool TakeUtc(std::string_view& text, int64_t& time_ms) {
  CalendarTime time{};
  const bool read =
      TakeDigits(text, 4, time.year) && ScanLiteral(text, "-") && TakeDigits(text, 2, time.month) &&
      ScanLiteral(text, "-") && TakeDigits(text, 2, time.day) && ScanLiteral(text, "T") &&
      TakeDigits(text, 2, time.hour) && ScanLiteral(text, ":") && TakeDigits(text, 2, time.minute) &&
      ScanLiteral(text, ":") && TakeDigits(text, 2, time.second) && ScanLiteral(text, ".") &&
      TakeDigits(text, 3, time.millisecond) && ScanLiteral(text, "Z");
  if (!read) return false;
  time_ms = UnixSecondsFromCalendar(time) * 1'000 + time.millisecond;
  return true;
}

bool TakeDepth(std::string_view& text, EventMark& mark) {
  if (ScanLiteral(text, "no bottom")) return true;
  mark.hasDepth = ScanDouble(text, mark.depth_m) && ScanLiteral(text, " m") && mark.depth_m >= 0 &&
                  mark.depth_m <= kDeepest_m;
  return mark.hasDepth;
}

bool TakePosition(std::string_view& text, EventMark& mark) {
  if (ScanLiteral(text, "no position")) return true;
  mark.hasPosition = ScanDouble(text, mark.latitude_deg) && ScanLiteral(text, " ") &&
                     ScanDouble(text, mark.longitude_deg) && std::abs(mark.latitude_deg) <= 90 &&
                     std::abs(mark.longitude_deg) <= 180;
  return mark.hasPosition;
}

// The rest up to the closing quote; quotes stand doubled.
bool TakeWord(std::string_view text, EventMark& mark) {
  char word[4 * kMarkWordSize];
  size_t length = 0;
  bool closed = false;
  for (size_t i = 0; i < text.size() && !closed; ++i) {
    const bool quote = text[i] == '"';
    if (quote && i + 1 < text.size() && text[i + 1] == '"') {
      ++i;
    } else if (quote) {
      closed = true;
    }
    if (!closed && length < sizeof(word)) word[length++] = text[i];
  }
  WidenText(mark.word, {word, length});
  return closed;
}

}  // namespace

size_t FormatMark(std::span<char> detail, const EventMark& mark) {
  char depth[32] = "no bottom";
  char position[64] = "no position";
  char word[4 * kMarkWordSize];
  if (mark.hasDepth) FormatText(depth, "%.3f m", mark.depth_m);
  if (mark.hasPosition) FormatText(position, "%.8f %.8f", mark.latitude_deg, mark.longitude_deg);
  NarrowText(word, mark.word);
  return FormatText(detail, "%" PRIu32 ", ping %" PRIu32 ", %s, %s%s%s", mark.number, mark.ping, depth,
                    position, word[0] == '\0' ? "" : ", ", word);
}

bool ParseMark(std::string_view line, EventMark& mark) {
  EventMark read{};
  std::string_view text = line;
  if (text.size() < kUtcSize || !TakeUtc(text, read.time_ms) || !ScanLiteral(text, kEvent)) return false;
  if (!ScanUint(text, read.number) || read.number == 0 || !ScanLiteral(text, ", ping ")) return false;
  if (!ScanUint(text, read.ping) || !ScanLiteral(text, ", ") || !TakeDepth(text, read)) return false;
  if (!ScanLiteral(text, ", ") || !TakePosition(text, read)) return false;
  static_cast<void>(ScanLiteral(text, ", "));  // no word, none
  if (!TakeWord(text, read)) return false;
  mark = read;
  return true;
}

}  // namespace tw
