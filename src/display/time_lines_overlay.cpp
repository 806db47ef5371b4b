#include "display/time_lines_overlay.h"

#include <cinttypes>
#include <cwchar>
#include <iterator>

#include "base/calendar.h"
#include "base/text_format.h"
#include "display/scaling.h"
#include "platform/clock.h"
#include "platform/sync.h"

namespace tw {
namespace {

constexpr int32_t kTextHeight = 12;  // at 96 dpi
constexpr int32_t kTextLeft = 3;     // of its line
constexpr int32_t kLetterWidth = 7;  // a text that finds no room stands left of its line
constexpr int32_t kMarkDrop = 16;    // a mark's text stands below the clock of a line at the same place

void Name(const TimeLine& line, bool local, Label& label) {
  if (line.mark != 0) {
    char word[4 * kMarkWordSize];
    NarrowText(word, line.word);
    FormatWide(label.text, "%" PRIu32 " %s", line.mark, word);
    return;
  }
  const CalendarTime time = local ? LocalFromUnixSeconds(line.time_s) : CalendarFromUnixSeconds(line.time_s);
  FormatWide(label.text, "%02" PRId32 ":%02" PRId32 ":%02" PRId32 "%s", time.hour, time.minute, time.second,
             local ? "" : " UTC");
}

}  // namespace

ShownLines FindShownLines(TimeLineList& list, const PanelLayout& layout, const EchogramScale& scale,
                          int64_t ringTime, LineChoice choice) {
  const auto px = [&](int32_t length) { return ScalePixels(length, layout.dpi); };
  ShownLines shown{};
  if (layout.image.IsEmpty()) return shown;
  const Locked locked(list.lock);
  for (int32_t i = 0; i < list.count && shown.count < kShownLines; ++i) {
    const TimeLine& line = list.lines[static_cast<size_t>(list.newest + i) % kMaxTimeLines];
    if (line.mark == 0 && !choice.begins) continue;
    const int32_t column =
        ColumnOfAge(ringTime - line.ringTime, layout.image.Width(), scale.newest, scale.timeScale_s);
    if (column < 0) continue;
    ShownLine& at = shown.lines[shown.count++];
    at.x = layout.image.left + column;
    at.colour = line.mark != 0 ? kMarkColour : kBeginColour;
    Name(line, choice.local, at.label);
    const int32_t width = px(kLetterWidth * static_cast<int32_t>(std::wcslen(at.label.text)));
    const bool fits = at.x + px(kTextLeft) + width <= layout.image.right;
    at.label.at = {fits ? at.x + px(kTextLeft) : at.x - width,
                   layout.image.top + px(line.mark != 0 ? kMarkDrop : 0)};
    at.label.height_px = px(kTextHeight);
    at.label.colour = at.colour;
  }
  return shown;
}

void DrawLines(const ShownLines& lines, const PanelLayout& layout, const Canvas& canvas) {
  for (size_t i = 0; i < lines.count; ++i) {
    const ShownLine& line = lines.lines[i];
    DrawLine(canvas, {line.x, layout.image.top}, {line.x, layout.image.bottom - 1}, line.colour);
  }
}

}  // namespace tw
