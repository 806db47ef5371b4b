// Which time marks stand where in the image while "Timestamp" is ticked: a text at the first ping of each
// mark number, in the column of the slot at which that ping was published. In a steady single run that is
// where the mark's age in pings times their interval puts it; a pause, jitter or another time scale moves
// text and image alike. GUI thread; takes the list's lock for the time of the call.
#pragma once

#include <cstddef>
#include <cstdint>

#include "app/state/app_state.h"
#include "display/echogram_image.h"
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

// The newest of those in view, newest first. `scale` is what the panel's image is drawn with and `ringTime`
// the ring's time at scale.newest.
[[nodiscard]] ShownMarks FindShownMarks(MarkList& list, const PanelLayout& layout, const EchogramScale& scale,
                                        int64_t ringTime);

}  // namespace tw
