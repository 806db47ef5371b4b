#include "display/layout.h"

#include <algorithm>
#include <cinttypes>

#include "app/state/depth_text.h"
#include "base/calendar.h"
#include "base/text_format.h"
#include "display/scaling.h"
#include "platform/clock.h"

namespace tw {

namespace {

constexpr int32_t kTimeDivisions = 10;
constexpr int32_t kColourBarDivisions = 10;
constexpr int32_t kClockWidth = 54;  // of "23:59:59"
constexpr int32_t kClockFrom = 40;   // further left stands whose time it is
constexpr int kDepthWidth = 3;       // figures below 100 stand right
constexpr int32_t kTallImage = 700;  // above it ten depth divisions instead of five

int32_t DepthDivisions(const PanelLayout& layout) {
  return layout.image.Height() <= ScalePixels(kTallImage, layout.dpi) ? 5 : 10;
}

// The next free label, or the last one again when all are taken.
Label& Add(Labels& labels, Point at, int32_t height_px, Pixel colour) {
  Label& label = labels.labels[std::min(labels.count, kMaxLabels - 1)];
  labels.count = std::min(labels.count + 1, kMaxLabels);
  label = {.at = at, .height_px = height_px, .colour = colour, .text = {}};
  return label;
}

}  // namespace

PanelLayout LayOutPanel(int32_t top, int32_t width, int32_t height, int32_t dpi) {
  const auto px = [dpi](int32_t length) { return ScalePixels(length, dpi); };
  const int32_t imageTop = top + px(20);
  const int32_t imageBottom = top + height - px(20);
  return {.dpi = dpi,
          .panel = {0, top, width, top + height},
          .image = {px(30), imageTop, width - px(120), imageBottom},
          .colourBar = {width - px(50), imageTop, width - px(40), imageBottom},
          .profile = {width - px(115), imageTop, width - px(55), imageBottom},
          .statusLine = {px(30), imageBottom},
          .frequency = {width - px(100), top}};
}

int32_t ColourBarEntry(int32_t row, int32_t height) {
  return static_cast<int32_t>(4'095 - static_cast<double>(row) * 4'095 / height);
}

GridLines LayOutGrid(const PanelLayout& layout) {
  GridLines grid{};
  const Rect& image = layout.image;
  const int32_t divisions = DepthDivisions(layout);
  const int32_t depthStep = image.Height() / divisions;
  for (int32_t k = 1; k < divisions; ++k) {
    const int32_t y = image.top + k * depthStep;
    grid.lines[grid.count++] = {{image.left, y}, {image.right, y}};
  }
  const int32_t timeStep = image.Width() / kTimeDivisions;
  for (int32_t k = 1; k < kTimeDivisions; ++k) {
    const int32_t x = image.left + k * timeStep;
    grid.lines[grid.count++] = {{x, image.top}, {x, image.bottom}};
  }
  return grid;
}

void AddDepthLabels(const PanelLayout& layout, int32_t range_mm, Labels& labels, DepthUnit unit) {
  const int32_t divisions = DepthDivisions(layout);
  const int32_t step = layout.image.Height() / divisions;
  const double range_m = range_mm / 1000.0;
  const int decimals = ScaleDecimals(range_m, unit);
  for (int32_t k = 1; k <= divisions; ++k) {
    const int32_t y = layout.panel.top + ScalePixels(8, layout.dpi) + k * step;
    Label& label = Add(labels, {ScalePixels(2, layout.dpi), y}, ScalePixels(10, layout.dpi), kYellow);
    FormatDepth(label.text, k * (range_m / divisions), unit, decimals, kDepthWidth);
  }
}

void AddTimeLabels(const PanelLayout& layout, int32_t timeScale_s, Labels& labels) {
  const int32_t step = layout.image.Width() / kTimeDivisions;
  for (int32_t k = 0; k <= kTimeDivisions; ++k) {
    const int32_t x = layout.panel.right - ScalePixels(140, layout.dpi) - k * step;
    Label& label = Add(labels, {x, layout.panel.top}, ScalePixels(12, layout.dpi), kYellow);
    FormatWide(label.text, "%3ds", static_cast<int32_t>(int64_t{k} * timeScale_s / kTimeDivisions));
  }
}

int32_t GridColumn(int32_t width, int32_t k) {
  return width - k * (width / kTimeDivisions);
}

void AddClockLabels(const PanelLayout& layout, const GridClock& clock, Labels& labels) {
  const auto px = [&](int32_t length) { return ScalePixels(length, layout.dpi); };
  for (int32_t k = 0; k < kTimeDivisions; ++k) {
    const uint32_t time_s = clock.time_s[k];
    const int32_t line = layout.image.left + GridColumn(layout.image.Width(), k);
    const Point at{line - px(kClockWidth), layout.panel.top};
    if (time_s == 0 || at.x < px(kClockFrom)) continue;
    const CalendarTime time = clock.local ? LocalFromUnixSeconds(time_s) : CalendarFromUnixSeconds(time_s);
    Label& label = Add(labels, at, px(12), kYellow);
    FormatWide(label.text, "%02" PRId32 ":%02" PRId32 ":%02" PRId32, time.hour, time.minute, time.second);
  }
  Label& zone = Add(labels, {px(2), layout.panel.top}, px(12), kYellow);
  FormatWide(zone.text, "%s", clock.local ? "local" : "UTC");
}

void AddColourBarLabels(const PanelLayout& layout, Labels& labels) {
  const int32_t step = layout.image.Height() / kColourBarDivisions;
  const int32_t x = layout.panel.right - ScalePixels(40, layout.dpi);
  for (int32_t k = 0; k <= kColourBarDivisions; ++k) {
    const int32_t y = layout.panel.bottom - ScalePixels(34, layout.dpi) - k * step;
    Label& label = Add(labels, {x, y}, ScalePixels(12, layout.dpi), kYellow);
    FormatWide(label.text, "%d%%", k * 100 / kColourBarDivisions);
  }
}

void AddFrequencyLabel(const PanelLayout& layout, int32_t frequency_hz, Labels& labels) {
  Label& label = Add(labels, layout.frequency, ScalePixels(14, layout.dpi), kWhite);
  FormatWide(label.text, "%4d kHz", frequency_hz / 1'000);
}

Label StatusLabel(const PanelLayout& layout, const wchar_t* text) {
  Label label{
      .at = layout.statusLine, .height_px = ScalePixels(13, layout.dpi), .colour = kWhite, .text = {}};
  CopyWide(label.text, text);
  return label;
}

}  // namespace tw
