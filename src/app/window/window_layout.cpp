#include "app/window/window_layout.h"

#include <algorithm>

#include "display/scaling.h"

namespace tw {
namespace {

// Pixels at 96 dpi, to be scaled.
constexpr int kSmallestWidth = 980;
constexpr int kSmallestHeight = 750;
constexpr int kMargin = 6;
constexpr int kControlsRight = 186;  // the column of controls ends left of it
constexpr int kBelowLive = 36;       // margins and status bar
constexpr int kBelowPlayback = 51;   // margins, slider and status bar
constexpr int kSliderFromBottom = 44;
constexpr int kSliderHeight = 22;
constexpr int kBarHeight = 64;

struct Columns {
  int x;
  int width;
};

Columns EchogramColumns(const WindowLayout& layout) {
  const int left = layout.fullWindow ? kMargin : kControlsRight;
  return {ScalePixels(left, layout.dpi),
          std::max(0, layout.clientWidth - ScalePixels(left + kMargin, layout.dpi))};
}

}  // namespace

WindowSize SmallestWindow(const Box& workArea, int32_t dpi) {
  return {std::min(ScalePixels(kSmallestWidth, dpi), workArea.width),
          std::min(ScalePixels(kSmallestHeight, dpi), workArea.height)};
}

Box WithinWorkArea(const Box& window, const Box& workArea) {
  const int width = std::min(window.width, workArea.width);
  const int height = std::min(window.height, workArea.height);
  return {std::clamp(window.x, workArea.x, workArea.x + workArea.width - width),
          std::clamp(window.y, workArea.y, workArea.y + workArea.height - height), width, height};
}

Box EchogramBox(const WindowLayout& layout) {
  const Columns columns = EchogramColumns(layout);
  const int below = ScalePixels(layout.playback ? kBelowPlayback : kBelowLive, layout.dpi) +
                    (layout.playback && layout.bar ? ScalePixels(kBarHeight, layout.dpi) : 0);
  return {columns.x, ScalePixels(kMargin, layout.dpi), columns.width,
          std::max(0, layout.clientHeight - below)};
}

Box SliderBox(const WindowLayout& layout) {
  const Columns columns = EchogramColumns(layout);
  return {columns.x, layout.clientHeight - ScalePixels(kSliderFromBottom, layout.dpi), columns.width,
          ScalePixels(kSliderHeight, layout.dpi)};
}

Box PlaybackBarBox(const WindowLayout& layout) {
  const Columns columns = EchogramColumns(layout);
  const int height = ScalePixels(kBarHeight, layout.dpi);
  return {columns.x, SliderBox(layout).y - height, columns.width, height};
}

}  // namespace tw
