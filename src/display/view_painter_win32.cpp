#include "display/view_painter_win32.h"

#include "base/shared_value.h"
#include "display/time_lines_overlay.h"

namespace tw {

bool ViewPainter::Paint(AppState& state, HDC like, int32_t width, int32_t height) {
  panelCount_ = 0;
  if (!picture_.Resize(like, width, height)) return false;
  const int32_t dpi = GetDeviceCaps(like, LOGPIXELSX);
  const bool dual = LoadShared(globals.dualMode) != 0;
  panelCount_ = dual ? 2 : 1;
  if (dual) {
    panels_[0] = {PanelPlace::upper, LayOutPanel(0, width, height / 2, dpi), {}};
    panels_[1] = {PanelPlace::lower, LayOutPanel(height / 2, width, height / 2, dpi), {}};
  } else {
    panels_[0] = {PanelPlace::single, LayOutPanel(0, width, height, dpi), {}};
  }
  PaintPanels(state);
  return true;
}

void ViewPainter::PaintPanels(AppState& state) {
  for (size_t i = 0; i < panelCount_; ++i) {
    panels_[i].source = DescribePanel(state, panels_[i].place);
    DrawPanel(panels_[i].source, panels_[i].layout, scratch_[i], picture_.Pixels());
  }
  for (const PaintedPanel& panel : Panels()) {
    PaintLines(state, panel);
    const Labels labels = CollectLabels(panel.source, panel.layout);
    for (size_t i = 0; i < labels.count; ++i) labels_.Draw(picture_, labels.labels[i]);
  }
  labels_.DrawOnce(picture_,
                   CollectStatus(state, panels_[0].source, panels_[panelCount_ - 1].layout, panelCount_ > 1));
  if (LoadShared(globals.timestampTicked) != 0) PaintMarks(state);
  for (const PaintedPanel& panel : Panels()) PaintSigns(state, panel.layout);
}

void ViewPainter::PaintLines(AppState& state, const PaintedPanel& panel) {
  const auto& [place, layout, source] = panel;
  TimeLineList& list = ChannelOf(state, RecordChannelOf(place)).lines;
  const LineChoice choice{state.options.gapLines != 0, source.timeLabels == kClockLocal};
  ShownLines lines = FindShownLines(list, layout, source.scale, source.ringTime, choice);
  if (lines.count == 0) return;
  for (ShownLine& line : std::span(lines.lines, lines.count)) {
    line.colour = line.label.colour = InkOn(*source.palette, line.colour);
  }
  DrawLines(lines, layout, picture_.Pixels());
  for (size_t i = 0; i < lines.count; ++i) labels_.Draw(picture_, lines.lines[i].label);
}

void ViewPainter::PaintMarks(AppState& state) {
  for (const auto& [place, layout, source] : Panels()) {
    MarkList& marks = ChannelOf(state, RecordChannelOf(place)).marks;
    marks_.Draw(picture_.Dc(), FindShownMarks(marks, layout, source.scale, source.ringTime), layout.dpi,
                InkOn(state.palette, kWhite));
  }
}

void ViewPainter::PaintSigns(const AppState& state, const PanelLayout& layout) {
  if (state.options.noDataOverEchogram != 0 && state.noData_s != 0)
    PaintSign(LayOutNoData(layout, state.noData_s));
  if (state.watch.depthAlarmText[0] != L'\0') PaintSign(LayOutAlarm(layout, state.watch.depthAlarmText));
}

void ViewPainter::PaintSign(const NoDataSign& sign) {
  if (sign.board.IsEmpty()) return;
  FillRect(picture_.Pixels(), sign.board, kBlack);
  labels_.DrawOnce(picture_, sign.label);
}

}  // namespace tw
