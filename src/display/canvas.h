// A 32-bit top-down picture in memory (blue, green, red, 0 in this byte order, as Windows bitmaps have it)
// and plain drawing into it, without smoothing. A canvas is a view: it owns nothing. Everything is clipped.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tw {

using Pixel = uint32_t;  // 0x00RRGGBB

inline constexpr Pixel kBlack = 0;

struct Point {
  int32_t x;
  int32_t y;
};

// Left and top belong to it, right and bottom do not.
struct Rect {
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;

  [[nodiscard]] constexpr int32_t Width() const { return right - left; }
  [[nodiscard]] constexpr int32_t Height() const { return bottom - top; }
  [[nodiscard]] constexpr bool IsEmpty() const { return right <= left || bottom <= top; }
};

struct Canvas {
  Pixel* pixels;     // of the top left corner
  int32_t width;     // 0 or more
  int32_t height;    // 0 or more
  ptrdiff_t stride;  // pixels from one row to the next

  [[nodiscard]] Pixel* Row(int32_t y) const { return pixels + y * stride; }
};

// The part of the canvas inside `rect`; where nothing is left, width and height are 0.
[[nodiscard]] Canvas Part(const Canvas& canvas, const Rect& rect);

void FillRect(const Canvas& canvas, const Rect& rect, Pixel colour);

enum class LineStyle : uint8_t { solid, dashDot };

// Both ends belong to the line. Dashes are three pixels, dots one, gaps one, counted from `from`. Coordinates
// beyond ±kMaxCoordinate are brought there first.
inline constexpr int32_t kMaxCoordinate = 1 << 20;
void DrawLine(const Canvas& canvas, Point from, Point to, Pixel colour, LineStyle style = LineStyle::solid);

}  // namespace tw
