// Where the main window's big parts stand: plain geometry, any thread.
#pragma once

#include <cstdint>

namespace tw {

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
  bool fullWindow;   // the controls at the left are hidden
  bool playback;     // the slider stands below the echogram
  int32_t dpi;       // of the screen
  bool bar = false;  // the playback bar stands above the slider
};

struct WindowSize {
  int width;
  int height;
};

// The least size of the whole window, frame included: 980 x 750 at 96 dpi, but never more than the work area,
// that is the screen without its task bar.
[[nodiscard]] WindowSize SmallestWindow(const Box& workArea, int32_t dpi);

// The window's place brought inside the work area: moved as little as need be, smaller only where it must.
[[nodiscard]] Box WithinWorkArea(const Box& window, const Box& workArea);

// In the screen's pixels. Sizes are never negative, however small the window is.
[[nodiscard]] Box EchogramBox(const WindowLayout& layout);
[[nodiscard]] Box SliderBox(const WindowLayout& layout);
[[nodiscard]] Box PlaybackBarBox(const WindowLayout& layout);

}  // namespace tw
