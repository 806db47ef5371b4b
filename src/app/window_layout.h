// Where the main window's big parts stand: plain geometry, any thread. Figures are pixels at 96 dpi unless a
// name says otherwise; Scaler turns them into the screen's.
#pragma once

#include <cstdint>

namespace tw {

// The one place where pixel figures meet the screen's resolution.
struct Scaler {
  int32_t dpi = 96;

  [[nodiscard]] constexpr int operator()(int pixels) const { return (pixels * dpi + 48) / 96; }
};

inline constexpr int kSmallestWindowWidth = 980;  // of the whole window, frame included
inline constexpr int kSmallestWindowHeight = 750;

// Right edges of the status bar's parts; the last part takes the rest.
inline constexpr int kStatusEdges[] = {260, 420, 780, 880};

struct Box {
  int x;
  int y;
  int width;
  int height;
};

struct WindowLayout {
  int clientWidth;  // in the screen's pixels
  int clientHeight;
  bool fullWindow;  // the controls at the left are hidden
  bool playback;    // the slider stands below the echogram
};

// In the screen's pixels. Sizes are never negative, however small the window is.
[[nodiscard]] Box EchogramBox(const WindowLayout& layout, Scaler scaled);
[[nodiscard]] Box SliderBox(const WindowLayout& layout, Scaler scaled);

}  // namespace tw
