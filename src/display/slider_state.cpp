#include "display/slider_state.h"

namespace tw {

namespace {

bool Contains(const Rect& rect, Point point) {
  return point.x >= rect.left && point.x < rect.right && point.y >= rect.top && point.y < rect.bottom;
}

}  // namespace

void SliderState::PlaceThumb() {
  thumb_ = ThumbOf(progress_, size_);
}

void SliderState::Resize(const SliderSize& size) {
  size_ = size;
  PlaceThumb();
}

bool SliderState::TakeProgress(const ProgressBlock& progress) {
  if (isDragging_) return false;
  progress_ = progress;
  PlaceThumb();
  return true;
}

bool SliderState::TakePosition(uint64_t position) {
  if (isDragging_) return false;
  progress_.position = position;
  PlaceThumb();
  return true;
}

bool SliderState::IsHovered() const {
  return cursor_ && Contains(thumb_, *cursor_);
}

std::optional<uint64_t> SliderState::Press(Point cursor) {
  const bool onThumb = Contains(thumb_, cursor);
  isDragging_ = onThumb || (follows_ && !thumb_.IsEmpty());
  held_ = follows_ && onThumb ? cursor.x - (thumb_.left + thumb_.Width() / 2) : 0;
  if (!isDragging_ || onThumb) return std::nullopt;
  return DragTo(cursor.x);
}

uint64_t SliderState::DragTo(int32_t x) {
  progress_.position = SeekPosition(progress_, x - held_, size_);
  PlaceThumb();
  return progress_.position;
}

std::optional<uint64_t> SliderState::Move(Point cursor, bool isButtonHeld) {
  cursor_ = cursor;
  isDragging_ = isDragging_ && isButtonHeld;
  if (!isDragging_ || (!follows_ && !IsHovered())) return std::nullopt;
  return DragTo(cursor.x);
}

void DrawSlider(const SliderState& slider, const Canvas& canvas) {
  FillRect(canvas, {0, 0, canvas.width, canvas.height}, kSliderColour);
  FillRect(canvas, slider.Thumb(), slider.IsHovered() ? kHoveredThumbColour : kThumbColour);
}

}  // namespace tw
