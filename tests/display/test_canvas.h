// A canvas with pixels of its own; and places as numbers that can be compared.
#pragma once

#include <vector>

#include "display/canvas.h"

namespace tw {

class TestCanvas {
 public:
  TestCanvas(int32_t width, int32_t height, Pixel fill = kBlack)
      : pixels_(static_cast<size_t>(width * height), fill), canvas_{pixels_.data(), width, height, width} {}
  TestCanvas(const TestCanvas&) = delete;
  TestCanvas& operator=(const TestCanvas&) = delete;

  [[nodiscard]] const Canvas& Whole() const { return canvas_; }
  [[nodiscard]] const std::vector<Pixel>& Pixels() const { return pixels_; }
  [[nodiscard]] Pixel At(int32_t x, int32_t y) const { return canvas_.Row(y)[x]; }

 private:
  std::vector<Pixel> pixels_;
  Canvas canvas_;
};

using Numbers = std::vector<int32_t>;

inline Numbers PlaceOf(const Point& point) {
  return {point.x, point.y};
}
// Left, top, right, bottom.
inline Numbers EdgesOf(const Rect& rect) {
  return {rect.left, rect.top, rect.right, rect.bottom};
}

}  // namespace tw
