// Paints the echogram view into a picture in memory, from the state record. Everything that it draws with is
// kept between paints; only a change of size makes new objects. GUI thread.
#pragma once

#include <windows.h>

#include <cstdint>
#include <span>

#include "app/state/app_state.h"
#include "display/drawing_win32.h"
#include "display/no_data_overlay.h"
#include "display/panel.h"
#include "display/readout.h"
#include "display/text_win32.h"

namespace tw {

class ViewPainter {
 public:
  // False when there is no memory for a picture of this size; then there is none.
  [[nodiscard]] bool Paint(AppState& state, HDC like, int32_t width, int32_t height);

  // The picture of the last Paint, until the next one, and the panels in it; none before the first one.
  [[nodiscard]] OffscreenPicture& Picture() { return picture_; }
  [[nodiscard]] std::span<const PaintedPanel> Panels() const { return {panels_, panelCount_}; }

 private:
  void PaintPanels(AppState& state);
  void PaintLines(AppState& state, const PaintedPanel& panel);
  void PaintMarks(AppState& state);
  void PaintSigns(const AppState& state, const PanelLayout& layout);
  void PaintSign(const NoDataSign& sign);

  OffscreenPicture picture_;
  LabelPainter labels_;
  MarkPainter marks_;
  PaintedPanel panels_[2]{};
  size_t panelCount_ = 0;
  PanelScratch scratch_[2];  // of the single view or the upper panel, and of the lower one
};

}  // namespace tw
