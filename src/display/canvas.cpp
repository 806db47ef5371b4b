#include "display/canvas.h"

#include <algorithm>
#include <cstdlib>
#include <iterator>

namespace tw {

namespace {

// A dash of three, a gap, a dot, a gap.
constexpr bool kDashDot[] = {true, true, true, false, true, false};

Point Bounded(Point point) {
  return {std::clamp(point.x, -kMaxCoordinate, kMaxCoordinate),
          std::clamp(point.y, -kMaxCoordinate, kMaxCoordinate)};
}

Rect Intersection(const Rect& a, const Rect& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
          std::min(a.bottom, b.bottom)};
}

}  // namespace

Canvas Part(const Canvas& canvas, const Rect& rect) {
  const Rect inside = Intersection(rect, {0, 0, canvas.width, canvas.height});
  if (inside.IsEmpty()) return {canvas.pixels, 0, 0, canvas.stride};
  return {canvas.Row(inside.top) + inside.left, inside.Width(), inside.Height(), canvas.stride};
}

void FillRect(const Canvas& canvas, const Rect& rect, Pixel colour) {
  const Canvas part = Part(canvas, rect);
  for (int32_t y = 0; y < part.height; ++y) std::fill_n(part.Row(y), part.width, colour);
}

void DrawLine(const Canvas& canvas, Point from, Point to, Pixel colour, LineStyle style) {
  from = Bounded(from);
  to = Bounded(to);
  const int32_t dx = std::abs(to.x - from.x);
  const int32_t dy = std::abs(to.y - from.y);
  const int32_t stepX = to.x > from.x ? 1 : -1;
  const int32_t stepY = to.y > from.y ? 1 : -1;
  int32_t error = dx - dy;
  size_t phase = 0;
  for (Point at = from;;) {
    const bool inside = at.x >= 0 && at.x < canvas.width && at.y >= 0 && at.y < canvas.height;
    if (inside && (style == LineStyle::solid || kDashDot[phase])) canvas.Row(at.y)[at.x] = colour;
    if (at.x == to.x && at.y == to.y) return;
    phase = (phase + 1) % std::size(kDashDot);
    const int32_t twice = 2 * error;
    if (twice > -dy) {
      error -= dy;
      at.x += stepX;
    }
    if (twice < dx) {
      error += dx;
      at.y += stepY;
    }
  }
}

}  // namespace tw
