// Where the main window's big parts stand: plain geometry, any thread.
#pragma once

#include <cstdint>

namespace tw {

// Pixels at 96 dpi, to be scaled.
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
  int32_t dpi;      // of the screen
};

// In the screen's pixels. Sizes are never negative, however small the window is.
[[nodiscard]] Box EchogramBox(const WindowLayout& layout);
[[nodiscard]] Box SliderBox(const WindowLayout& layout);

}  // namespace tw
