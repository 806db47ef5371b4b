#include "display/readout_layer_win32.h"

#include <algorithm>
#include <cwchar>

#include "display/scaling.h"

namespace tw {
namespace {

// At 96 dpi.
constexpr int32_t kTextHeight = 13;
constexpr int32_t kPadding = 5;

constexpr Pixel kBoxColour = 0x202024;
constexpr Pixel kBoxEdge = 0x909090;
constexpr COLORREF kTextColour = RGB(255, 255, 255);

Rect Within(const Canvas& canvas, const Rect& rect) {
  return {std::clamp(rect.left, 0, canvas.width), std::clamp(rect.top, 0, canvas.height),
          std::clamp(rect.right, 0, canvas.width), std::clamp(rect.bottom, 0, canvas.height)};
}

Rect SpanOf(Point a, Point b) {
  return {std::min(a.x, b.x), std::min(a.y, b.y), std::max(a.x, b.x) + 1, std::max(a.y, b.y) + 1};
}

Point NearestIn(const Rect& rect, Point at) {
  if (rect.IsEmpty()) return at;
  return {std::clamp(at.x, rect.left, rect.right - 1), std::clamp(at.y, rect.top, rect.bottom - 1)};
}

}  // namespace

bool ReadOutLayer::BeginMeasure(std::span<const PaintedPanel> panels) {
  if (!cursor_) return false;
  const std::optional<ImageSpot> spot = FindSpot(panels, *cursor_);
  if (!spot) return false;
  anchor_ = Anchor{spot->panel, spot->column, ReadSpot(panels[spot->panel], *spot)};
  return true;
}

// Rectangles may lie over each other: they are put back in the reverse order.
void ReadOutLayer::Cover(const Canvas& canvas, const Rect& rect) {
  const Rect inside = Within(canvas, rect);
  if (inside.IsEmpty() || changedCount_ == kMostRects) return;
  changed_[changedCount_++] = inside;
  const Canvas part = Part(canvas, inside);
  for (int32_t y = 0; y < part.height; ++y) kept_.insert(kept_.end(), part.Row(y), part.Row(y) + part.width);
}

void ReadOutLayer::Undo(OffscreenPicture& picture) {
  const Canvas canvas = picture.Pixels();
  size_t end = kept_.size();
  for (size_t i = changedCount_; i > 0; --i) {
    const Canvas part = Part(canvas, changed_[i - 1]);
    const auto size = static_cast<size_t>(part.width) * static_cast<size_t>(part.height);
    const Pixel* from = kept_.data() + (end - size);
    for (int32_t y = 0; y < part.height; ++y, from += part.width) std::copy_n(from, part.width, part.Row(y));
    end -= size;
  }
  kept_.clear();
}

void ReadOutLayer::Draw(OffscreenPicture& picture, std::span<const PaintedPanel> panels, DepthUnit unit) {
  changedCount_ = 0;
  if (!cursor_) return;
  if (anchor_ && anchor_->panel >= panels.size()) anchor_.reset();  // the view has become a single one
  if (anchor_) cursor_ = NearestIn(panels[anchor_->panel].layout.image, *cursor_);
  const std::optional<ImageSpot> spot = FindSpot(panels, *cursor_);
  if (!spot) return;
  const PaintedPanel& panel = panels[spot->panel];
  const Canvas canvas = picture.Pixels();
  DrawCross(canvas, panels, *spot);
  const Reading reading = ReadSpot(panel, *spot);
  const bool measures = anchor_.has_value();
  if (measures) DrawMeasure(canvas, panel, *spot);
  DrawBox(picture, panel.layout,
          measures ? DescribeMeasure(anchor_->reading, reading, unit) : DescribeReading(reading, unit));
}

// The moment in all panels, the depth in that of the cursor.
void ReadOutLayer::DrawCross(const Canvas& canvas, std::span<const PaintedPanel> panels,
                             const ImageSpot& spot) {
  const auto blend = [&](const Rect& rect) {
    Cover(canvas, rect);
    BlendRect(canvas, rect, InkOn(*panels[spot.panel].source.palette, kWhite));
  };
  for (size_t i = 0; i < panels.size(); ++i) {
    const Rect& image = panels[i].layout.image;
    const int32_t column =
        i == spot.panel ? spot.column : ColumnAtSameTime(panels[spot.panel], spot.column, panels[i]);
    if (column < 0 || column >= image.Width()) continue;
    blend({image.left + column, image.top, image.left + column + 1, image.bottom});
  }
  const Rect& image = panels[spot.panel].layout.image;
  blend({image.left, image.top + spot.row, image.right, image.top + spot.row + 1});
}

// A frame from the place where the measure began, which moves along with the picture.
void ReadOutLayer::DrawMeasure(const Canvas& canvas, const PaintedPanel& panel, const ImageSpot& spot) {
  const Rect& image = panel.layout.image;
  const int32_t column =
      anchor_->reading.hasPing ? ColumnOfReading(panel, anchor_->reading) : anchor_->column;
  const Point from =
      NearestIn(image, {image.left + column, image.top + RowOfReading(panel, anchor_->reading)});
  const Point to{image.left + spot.column, image.top + spot.row};
  for (const Rect& side : {SpanOf(from, {to.x, from.y}), SpanOf(from, {from.x, to.y})}) {
    Cover(canvas, side);
    FillRect(canvas, side, InkOn(*panel.source.palette, kYellow));
  }
}

bool ReadOutLayer::MakeFont(int32_t dpi) {
  if (font_) return true;
  lineHeight_ = ScalePixels(kTextHeight + 3, dpi);
  font_ = OwnedGdiFont(CreateFontW(-ScalePixels(kTextHeight, dpi), 0, 0, 0, FW_SEMIBOLD, FALSE, FALSE, FALSE,
                                   DEFAULT_CHARSET, OUT_DEFAULT_PRECIS, CLIP_DEFAULT_PRECIS,
                                   ANTIALIASED_QUALITY, DEFAULT_PITCH | FF_SWISS, L"Segoe UI"));
  return static_cast<bool>(font_);
}

BoxSize ReadOutLayer::MeasureText(HDC dc, const ReadOutText& text) {
  BoxSize size{0, lineHeight_ * static_cast<int32_t>(text.count)};
  for (size_t i = 0; i < text.count; ++i) {
    SIZE line{};
    GetTextExtentPoint32W(dc, text.lines[i], static_cast<int>(std::wcslen(text.lines[i])), &line);
    size.width = std::max<int32_t>(size.width, line.cx);
  }
  return size;
}

void ReadOutLayer::DrawBox(OffscreenPicture& picture, const PanelLayout& layout, const ReadOutText& text) {
  const HDC dc = picture.Dc();
  if (text.count == 0 || !MakeFont(layout.dpi)) return;
  const HGDIOBJ replaced = SelectObject(dc, font_.Get());
  const int32_t padding = ScalePixels(kPadding, layout.dpi);
  BoxSize size = MeasureText(dc, text);
  size = {size.width + 2 * padding, size.height + 2 * padding};
  const Rect box = PlaceReadOut(layout, *cursor_, size);
  if (!box.IsEmpty()) {
    const Canvas canvas = picture.Pixels();
    Cover(canvas, box);
    FillRect(canvas, box, kBoxEdge);
    FillRect(canvas, {box.left + 1, box.top + 1, box.right - 1, box.bottom - 1}, kBoxColour);
    SetTextColor(dc, kTextColour);
    SetBkMode(dc, TRANSPARENT);
    for (size_t i = 0; i < text.count; ++i) {
      const int y = box.top + padding + lineHeight_ * static_cast<int32_t>(i);
      TextOutW(dc, box.left + padding, y, text.lines[i], static_cast<int>(std::wcslen(text.lines[i])));
    }
  }
  SelectObject(dc, replaced);
}

}  // namespace tw
