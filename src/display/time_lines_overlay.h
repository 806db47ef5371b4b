// Where the lines of a channel stand in the image: moments at which a run begins or goes on, with their
// clock, and the operator's marks with their numbers and words. GUI thread; takes the list's lock for the
// time of the call.
#pragma once

#include <cstddef>
#include <cstdint>

#include "app/state/app_state.h"
#include "display/canvas.h"
#include "display/echogram_image.h"
#include "display/layout.h"

namespace tw {

inline constexpr Pixel kBeginColour = 0x00D0FF;
inline constexpr Pixel kMarkColour = 0xFF60FF;

// A line from the image's upper to its lower edge, and its text right of it.
struct ShownLine {
  int32_t x;
  Pixel colour;
  Label label;
};

inline constexpr size_t kShownLines = 64;
struct ShownLines {
  ShownLine lines[kShownLines];
  size_t count;
};

struct LineChoice {
  bool begins;  // besides the operator's marks, which are always shown
  bool local;   // clocks as local ones show them
};

// The newest of those in view. `ringTime` is the ring's time at scale.newest.
[[nodiscard]] ShownLines FindShownLines(TimeLineList& list, const PanelLayout& layout,
                                        const EchogramScale& scale, int64_t ringTime, LineChoice choice);

void DrawLines(const ShownLines& lines, const PanelLayout& layout, const Canvas& canvas);

}  // namespace tw
