// What the playback slider knows and how it answers progress and the mouse, without a window. GUI thread.
#pragma once

#include <cstdint>
#include <optional>

#include "app/state/slider_messages.h"
#include "display/canvas.h"
#include "display/slider_geometry.h"

namespace tw {

class SliderState {
 public:
  void Resize(const SliderSize& size);

  // Takes the news from a file worker; false, and without effect, while the operator drags the thumb.
  bool TakeProgress(const ProgressBlock& progress);
  bool TakePosition(uint64_t position);

  // Whether the thumb follows the mouse wherever it is dragged, and a press beside it sends it there.
  void Follow(bool follows) { follows_ = follows; }

  // The left button goes down; it starts a drag on the thumb only, unless the thumb follows. Returns where
  // the file is to go on, as Move does.
  std::optional<uint64_t> Press(Point cursor);

  // The cursor moves. Returns where a drag wants the file to go on; then the thumb stands there already.
  // kept: unless the thumb follows, only a cursor that is on it drags it; a faster one leaves it behind.
  [[nodiscard]] std::optional<uint64_t> Move(Point cursor, bool isButtonHeld);

  void Release() { isDragging_ = false; }
  void Leave() { cursor_.reset(); }

  [[nodiscard]] bool IsDragging() const { return isDragging_; }
  [[nodiscard]] bool IsHovered() const;
  [[nodiscard]] const Rect& Thumb() const { return thumb_; }

 private:
  void PlaceThumb();
  uint64_t DragTo(int32_t x);

  ProgressBlock progress_{};
  SliderSize size_{};
  Rect thumb_{};
  bool isDragging_ = false;
  bool follows_ = false;
  int32_t held_ = 0;             // how far from the thumb's middle it was taken, where it follows
  std::optional<Point> cursor_;  // while it is over the slider
};

inline constexpr Pixel kSliderColour = 0x3E3E42;
inline constexpr Pixel kThumbColour = 0x686868;
inline constexpr Pixel kHoveredThumbColour = 0x9E9E9E;

// Fills the whole canvas, which is as large as the slider.
void DrawSlider(const SliderState& slider, const Canvas& canvas);

}  // namespace tw
