// The view's texts: labels with GDI+ in a bold font, time marks with GDI, running downwards. Fonts are made
// on first use and kept, and so are the shapes of labels. GUI thread.
#pragma once

#include "display/drawing_win32.h"
#include "display/layout.h"
#include "display/marks_overlay.h"
#include "display/text_mask.h"

namespace tw {

class LabelPainter {
 public:
  // Draws nothing when the system has no font at all. A label that is the same as in one of the last paints
  // costs little; a text that changes all the time is better drawn by DrawOnce.
  void Draw(OffscreenPicture& picture, const Label& label);
  void DrawOnce(OffscreenPicture& picture, const Label& label);

 private:
  struct SizedFont {
    int32_t height_px;
    OwnedFont font;
  };
  static constexpr size_t kSizes = 4;

  struct KeptLabel {
    wchar_t text[24];
    int32_t height_px;
    TextMask mask;
  };
  static constexpr size_t kKeptLabels = 128;  // of two views and some zoom steps

  [[nodiscard]] const TextMask* FindMask(HDC like, const Label& label);
  [[nodiscard]] bool DrawString(Gdiplus::GpGraphics* graphics, const Label& label, Point at, Pixel colour);

  [[nodiscard]] Gdiplus::GpFont* FontOf(int32_t height_px);

  OwnedFamily family_;
  bool familySought_ = false;
  OwnedBrush brush_;
  SizedFont fonts_[kSizes];
  size_t fontCount_ = 0;
  OffscreenPicture stencil_;
  KeptLabel kept_[kKeptLabels]{};
  size_t nextKept_ = 0;
};

class MarkPainter {
 public:
  void Draw(HDC dc, const ShownMarks& marks, int32_t dpi, Pixel colour);

 private:
  OwnedGdiFont font_;
};

}  // namespace tw
