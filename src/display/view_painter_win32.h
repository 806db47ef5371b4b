// Paints the echogram view into a picture in memory, from the state record. Everything that it draws with is
// kept between paints; only a change of size makes new objects. GUI thread.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>

#include "app/state/app_state.h"
#include "display/drawing_win32.h"
#include "display/panel.h"
#include "display/text_win32.h"

namespace tw {

class ViewPainter {
 public:
  // False when there is no memory for a picture of this size; then there is none.
  [[nodiscard]] bool Paint(AppState& state, HDC like, int32_t width, int32_t height);

  // The picture of the last Paint, until the next one.
  [[nodiscard]] OffscreenPicture& Picture() { return picture_; }

 private:
  struct Panel {
    PanelPlace place;
    PanelLayout layout;
    PanelSource source;
  };

  void PaintPanels(AppState& state, std::span<Panel> panels);
  void PaintMarks(AppState& state, std::span<const Panel> panels);
  void PaintNoData(const AppState& state, const PanelLayout& layout);

  OffscreenPicture picture_;
  LabelPainter labels_;
  MarkPainter marks_;
  PanelScratch scratch_[2];  // of the single view or the upper panel, and of the lower one
};

}  // namespace tw
