// Where everything of an echogram panel stands, as plain data: rectangles, lines, labels with their texts.
// Pure functions; the painter only follows. Coordinates are pixels of the client area; a panel is as wide as
// the client area and starts `top` pixels below its upper edge (the single view is one panel with top 0).
// Sizes of 0 or less and hostile values give empty rectangles or texts that are cut, never a fault.
#pragma once

#include <cstddef>
#include <cstdint>

#include "app/state/options.h"
#include "display/canvas.h"

namespace tw {

inline constexpr Pixel kGridColour = 0x787878;
inline constexpr Pixel kYellow = 0xFFFA9D;
inline constexpr Pixel kWhite = 0xFFFFFF;

// A panel's parts. `right` and `bottom` of a rectangle do not belong to it.
struct PanelLayout {
  int32_t dpi;
  Rect panel;
  Rect image;
  Rect colourBar;  // its frame stands around it, see FrameOf
  Rect profile;    // likewise
  Point statusLine;
  Point frequency;
};

[[nodiscard]] PanelLayout LayOutPanel(int32_t top, int32_t width, int32_t height, int32_t dpi);

// The palette entry that row `row` of a colour bar `height` rows high shows: strong on top. 0 <= row <
// height.
[[nodiscard]] int32_t ColourBarEntry(int32_t row, int32_t height);

struct Line {
  Point from;
  Point to;
};

// The dash-dotted grid: 4 or 9 depth lines, then 9 time lines.
inline constexpr size_t kMaxGridLines = 18;
struct GridLines {
  Line lines[kMaxGridLines];
  size_t count;
};

[[nodiscard]] GridLines LayOutGrid(const PanelLayout& layout);

// A text at its upper left corner.
struct Label {
  Point at;
  int32_t height_px;
  Pixel colour;
  wchar_t text[160];
};

// Depth labels (5 or 10), time labels (11), colour bar labels (11), the frequency.
inline constexpr size_t kMaxLabels = 34;
struct Labels {
  Label labels[kMaxLabels];
  size_t count;
};

void AddDepthLabels(const PanelLayout& layout, int32_t range_mm, Labels& labels, DepthUnit unit = kMetres);
void AddTimeLabels(const PanelLayout& layout, int32_t timeScale_s, Labels& labels);

// The clock at the ends and lines of the time grid in place of the seconds, newest first; 0: no ping there.
inline constexpr size_t kGridTimes = 11;
struct GridClock {
  uint32_t time_s[kGridTimes];  // since 1970-01-01 00:00:00 UTC
  bool local;                   // shown as local clocks show it
};

// The column of the image in which grid time `k` is read; `width` itself for the newest ping.
[[nodiscard]] int32_t GridColumn(int32_t width, int32_t k);

// Each ends at its line; the oldest end of the axis says whose time it is.
void AddClockLabels(const PanelLayout& layout, const GridClock& clock, Labels& labels);
void AddColourBarLabels(const PanelLayout& layout, Labels& labels);
void AddFrequencyLabel(const PanelLayout& layout, int32_t frequency_hz, Labels& labels);

[[nodiscard]] Label StatusLabel(const PanelLayout& layout, const wchar_t* text);

}  // namespace tw
