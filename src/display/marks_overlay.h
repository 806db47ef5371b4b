// Which time marks stand where in the image while "Timestamp" is ticked: up to five texts, each at the column
// of the ping that it belongs to, about 30 s apart. GUI thread; takes the list's lock for the time of the
// call.
#pragma once

#include <cstddef>
#include <cstdint>

#include "app/app_state.h"
#include "display/layout.h"

namespace tw {

inline constexpr size_t kShownMarks = 5;

// A text that runs downwards from `at`.
struct ShownMark {
  Point at;
  char text[kMarkTextSize];
};

struct ShownMarks {
  ShownMark marks[kShownMarks];
  size_t count;
};

// `marksAtStart` is the marks interval in pings while the list has none of its own yet; without either, and
// with a ping interval that is negative or no number, there are no marks.
[[nodiscard]] ShownMarks FindShownMarks(MarkList& list, const PanelLayout& layout, int32_t marksAtStart,
                                        float pingInterval_ms);

}  // namespace tw
