#include "display/view_painter_win32.h"

#include "base/shared_value.h"
#include "display/no_data_overlay.h"

namespace tw {

bool ViewPainter::Paint(AppState& state, HDC like, int32_t width, int32_t height) {
  if (!picture_.Resize(like, width, height)) return false;
  const int32_t dpi = GetDeviceCaps(like, LOGPIXELSX);
  if (LoadShared(globals.dualMode) != 0) {
    Panel panels[] = {{PanelPlace::upper, LayOutPanel(0, width, height / 2, dpi), {}},
                      {PanelPlace::lower, LayOutPanel(height / 2, width, height / 2, dpi), {}}};
    PaintPanels(state, panels);
  } else {
    Panel panels[] = {{PanelPlace::single, LayOutPanel(0, width, height, dpi), {}}};
    PaintPanels(state, panels);
  }
  return true;
}

void ViewPainter::PaintPanels(AppState& state, std::span<Panel> panels) {
  for (size_t i = 0; i < panels.size(); ++i) {
    panels[i].source = DescribePanel(state, panels[i].place);
    DrawPanel(panels[i].source, panels[i].layout, scratch_[i], picture_.Pixels());
  }
  for (const Panel& panel : panels) {
    const Labels labels = CollectLabels(panel.source, panel.layout);
    for (size_t i = 0; i < labels.count; ++i) labels_.Draw(picture_, labels.labels[i]);
  }
  labels_.DrawOnce(picture_,
                   CollectStatus(state, panels.front().source, panels.back().layout, panels.size() > 1));
  if (LoadShared(globals.timestampTicked) != 0) PaintMarks(state, panels);
  for (const Panel& panel : panels) PaintNoData(state, panel.layout);
}

void ViewPainter::PaintMarks(AppState& state, std::span<const Panel> panels) {
  for (const auto& [place, layout, source] : panels) {
    MarkList& marks = ChannelOf(state, RecordChannelOf(place)).marks;
    marks_.Draw(picture_.Dc(), FindShownMarks(marks, layout, source.scale, source.ringTime), layout.dpi);
  }
}

void ViewPainter::PaintNoData(const AppState& state, const PanelLayout& layout) {
  if (state.options.noDataOverEchogram == 0 || state.noData_s == 0) return;
  const NoDataSign sign = LayOutNoData(layout, state.noData_s);
  if (sign.board.IsEmpty()) return;
  FillRect(picture_.Pixels(), sign.board, kBlack);
  labels_.DrawOnce(picture_, sign.label);
}

}  // namespace tw
