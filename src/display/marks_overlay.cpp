#include "display/marks_overlay.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "display/scaling.h"
#include "platform/sync.h"

namespace tw {

namespace {

constexpr int32_t kTextTop = 550;      // above the panel's lower edge
constexpr double kColumnSeconds = 15;  // across one grid column at the time scale of 150 s

}  // namespace

ShownMarks FindShownMarks(MarkList& list, const PanelLayout& layout, int32_t marksAtStart,
                          float pingInterval_ms) {
  ShownMarks shown{};
  const Locked locked(list.lock);
  const int64_t interval = list.interval_pings > 0 ? list.interval_pings : marksAtStart;
  if (interval <= 0 || layout.image.IsEmpty() || !(pingInterval_ms >= 0) || !std::isfinite(pingInterval_ms)) {
    return shown;
  }
  // The newest mark is as old as the pings that came after it; the others are one interval older each.
  const int64_t age = std::max(list.pingsSinceMark - 1, 0);
  const int32_t width = layout.image.Width();
  const double shift = static_cast<double>(age) * (pingInterval_ms / 1000.0 * (width / 10) / kColumnSeconds);
  const auto shift_px = static_cast<int32_t>(std::min(shift, static_cast<double>(kMaxCoordinate)));
  for (int32_t column = 10; column >= 2; column -= 2) {
    const int64_t entry = age + interval * (10 - column) / 2;
    if (entry >= std::min(list.count, static_cast<int32_t>(kMaxMarks))) break;
    ShownMark& mark = shown.marks[shown.count++];
    mark.at = {layout.image.left + column * width / 10 - shift_px,
               layout.panel.bottom - ScalePixels(kTextTop, layout.dpi)};
    const auto text = (static_cast<size_t>(list.newest) + static_cast<size_t>(entry)) % kMaxMarks;
    std::memcpy(mark.text, list.texts[text], kMarkTextSize - 1);
  }
  return shown;
}

}  // namespace tw
