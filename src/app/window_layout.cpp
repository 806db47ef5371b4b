#include "app/window_layout.h"

#include <algorithm>

namespace tw {
namespace {

constexpr int kMargin = 6;
constexpr int kControlsRight = 186;  // the column of controls ends left of it
constexpr int kBelowLive = 36;       // margins and status bar
constexpr int kBelowPlayback = 51;   // margins, slider and status bar
constexpr int kSliderFromBottom = 44;
constexpr int kSliderHeight = 22;

struct Columns {
  int x;
  int width;
};

Columns EchogramColumns(const WindowLayout& layout, Scaler scaled) {
  const int left = layout.fullWindow ? kMargin : kControlsRight;
  return {scaled(left), std::max(0, layout.clientWidth - scaled(left + kMargin))};
}

}  // namespace

Box EchogramBox(const WindowLayout& layout, Scaler scaled) {
  const Columns columns = EchogramColumns(layout, scaled);
  const int below = scaled(layout.playback ? kBelowPlayback : kBelowLive);
  return {columns.x, scaled(kMargin), columns.width, std::max(0, layout.clientHeight - below)};
}

Box SliderBox(const WindowLayout& layout, Scaler scaled) {
  const Columns columns = EchogramColumns(layout, scaled);
  return {columns.x, layout.clientHeight - scaled(kSliderFromBottom), columns.width, scaled(kSliderHeight)};
}

}  // namespace tw
