// What stands under the cursor of an echogram, and what lies between two places of it: depth, time, ping,
// echo, position. Texts and places for a box beside the cursor; the painter only follows. GUI thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "display/canvas.h"
#include "display/layout.h"
#include "display/panel.h"

namespace tw {

// A panel as it was painted last.
struct PaintedPanel {
  PanelPlace place;
  PanelLayout layout;
  PanelSource source;
};

// A place in a panel's image.
struct ImageSpot {
  size_t panel;
  int32_t column;
  int32_t row;
};

// Nothing where the cursor is over no image.
[[nodiscard]] std::optional<ImageSpot> FindSpot(std::span<const PaintedPanel> panels, Point cursor);

struct Reading {
  double depth_m;    // of the row, below the transducer
  int64_t ringTime;  // of the column's slot
  bool hasPing;      // what follows is known
  uint32_t time_s;   // since 1970-01-01 00:00:00 UTC
  uint32_t ping;
  bool hasEcho;
  int32_t echo_percent;  // of the full scale
  bool hasPosition;
  double latitude_deg;
  double longitude_deg;
};

// Reads the ring as it is now: a slot that has been written again since the paint tells its new ping.
[[nodiscard]] Reading ReadSpot(const PaintedPanel& panel, const ImageSpot& spot);

// The image column of another panel that shows the same time; negative when none does.
[[nodiscard]] int32_t ColumnAtSameTime(const PaintedPanel& from, int32_t column, const PaintedPanel& to);
// The column of a reading's slot as the panel shows it now; negative when it is out of view.
[[nodiscard]] int32_t ColumnOfReading(const PaintedPanel& panel, const Reading& reading);
// The row of its depth.
[[nodiscard]] int32_t RowOfReading(const PaintedPanel& panel, const Reading& reading);

// Metres along the ground between two positions in degrees, by the radii of curvature of WGS 84 at the
// latitude between them: within 0.1 % up to 100 km, away from the poles.
[[nodiscard]] double GroundDistance_m(double latitudeA_deg, double longitudeA_deg, double latitudeB_deg,
                                      double longitudeB_deg);

inline constexpr size_t kReadOutLines = 4;
struct ReadOutText {
  wchar_t lines[kReadOutLines][48];
  size_t count;
};

[[nodiscard]] ReadOutText DescribeReading(const Reading& reading, DepthUnit unit);
// What lies between two readings: depth, time, and distance where both have a position.
[[nodiscard]] ReadOutText DescribeMeasure(const Reading& from, const Reading& to, DepthUnit unit);

struct BoxSize {
  int32_t width;
  int32_t height;
};

// Beside the cursor, inside the image, and never over its newest columns: right of and below the cursor, else
// on the other side. Empty when the image has no room for it.
[[nodiscard]] Rect PlaceReadOut(const PanelLayout& layout, Point cursor, BoxSize size);

// Half of the pixel's own colour and half of the other one.
void BlendRect(const Canvas& canvas, const Rect& rect, Pixel colour);

}  // namespace tw
