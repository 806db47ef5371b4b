#include "display/marks_overlay.h"

#include <cstring>

#include "display/scaling.h"
#include "platform/sync.h"

namespace tw {

namespace {

constexpr int32_t kTextTop = 550;  // above the panel's lower edge

}  // namespace

ShownMarks FindShownMarks(MarkList& list, const PanelLayout& layout, const EchogramScale& scale,
                          int64_t ringTime) {
  ShownMarks shown{};
  if (layout.image.IsEmpty()) return shown;
  const int32_t y = layout.panel.bottom - ScalePixels(kTextTop, layout.dpi);
  const Locked locked(list.lock);
  for (int32_t i = 0; i < list.count && shown.count < kShownMarks; ++i) {
    const MarkEntry& entry = list.entries[static_cast<size_t>(list.newest + i) % kMaxMarks];
    if (!entry.begins) continue;
    const int32_t column =
        ColumnOfAge(ringTime - entry.ringTime, layout.image.Width(), scale.newest, scale.timeScale_s);
    if (column < 0) continue;
    ShownMark& mark = shown.marks[shown.count++];
    mark.at = {layout.image.left + column, y};
    std::memcpy(mark.text, entry.text, kMarkTextSize);
  }
  return shown;
}

}  // namespace tw
