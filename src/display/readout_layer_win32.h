// The read-out as a layer over the view's picture: a fine cross through the cursor and a box beside it. It is
// drawn into the picture for the time of a copy to the screen, and what it covers is kept and put back, so
// that moving the cursor costs the rectangles of the layer and nothing of the image. GUI thread.
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "display/drawing_win32.h"
#include "display/readout.h"

namespace tw {

class ReadOutLayer {
 public:
  static constexpr size_t kMostRects = 8;

  void MoveTo(Point cursor) { cursor_ = cursor; }
  // The cursor has left the view; a measure goes on as long as its button is held.
  void Leave() { cursor_.reset(); }

  // Measures from what stands under the cursor now; false where that is no image.
  bool BeginMeasure(std::span<const PaintedPanel> panels);
  void EndMeasure() { anchor_.reset(); }

  // Draws what the cursor asks for, and keeps what was there. Undo puts it back; each Draw has its Undo.
  void Draw(OffscreenPicture& picture, std::span<const PaintedPanel> panels, DepthUnit unit);
  void Undo(OffscreenPicture& picture);

  // What the last Draw has changed.
  [[nodiscard]] std::span<const Rect> Changed() const { return {changed_, changedCount_}; }

 private:
  struct Anchor {
    size_t panel;
    int32_t column;  // where nothing moves along, because no ping stands there
    Reading reading;
  };

  void Cover(const Canvas& canvas, const Rect& rect);
  void DrawCross(const Canvas& canvas, std::span<const PaintedPanel> panels, const ImageSpot& spot);
  void DrawMeasure(const Canvas& canvas, const PaintedPanel& panel, const ImageSpot& spot);
  void DrawBox(OffscreenPicture& picture, const PanelLayout& layout, const ReadOutText& text);
  [[nodiscard]] bool MakeFont(int32_t dpi);
  [[nodiscard]] BoxSize MeasureText(HDC dc, const ReadOutText& text);

  std::optional<Point> cursor_;
  std::optional<Anchor> anchor_;
  OwnedGdiFont font_;
  int32_t lineHeight_ = 0;
  Rect changed_[kMostRects]{};
  size_t changedCount_ = 0;
  std::vector<Pixel> kept_;  // of the changed rectangles, one behind the other
};

}  // namespace tw
