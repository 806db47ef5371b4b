// The view's texts: labels with GDI+ in a bold font, time marks with GDI, running downwards. The fonts are
// made on first use and kept. GUI thread.
#pragma once

#include "display/drawing_win32.h"
#include "display/layout.h"
#include "display/marks_overlay.h"

namespace tw {

class LabelPainter {
 public:
  // Draws nothing when the system has no font at all or `graphics` is null.
  void Draw(Gdiplus::GpGraphics* graphics, const Label& label);

 private:
  struct SizedFont {
    int32_t height_px;
    OwnedFont font;
  };
  static constexpr size_t kSizes = 4;

  [[nodiscard]] Gdiplus::GpFont* FontOf(int32_t height_px);

  OwnedFamily family_;
  bool familySought_ = false;
  OwnedBrush brush_;
  SizedFont fonts_[kSizes];
  size_t fontCount_ = 0;
};

class MarkPainter {
 public:
  void Draw(HDC dc, const ShownMarks& marks, int32_t dpi);

 private:
  OwnedGdiFont font_;
};

}  // namespace tw
