#include "display/view_painter_win32.h"

#include "base/shared_value.h"

namespace tw {

bool ViewPainter::Paint(AppState& state, HDC like, int32_t width, int32_t height) {
  if (!picture_.Resize(like, width, height)) return false;
  const int32_t dpi = GetDeviceCaps(like, LOGPIXELSX);
  if (LoadShared(globals.dualMode) != 0) {
    PaintDual(state, width, height, dpi);
  } else {
    PaintSingle(state, width, height, dpi);
  }
  return true;
}

PanelSource ViewPainter::PaintPanel(AppState& state, PanelPlace place, const PanelLayout& layout) {
  const PanelSource source = DescribePanel(state, place);
  PanelScratch& scratch = place == PanelPlace::lower ? lowerScratch_ : scratch_;
  DrawPanel(source, layout, scratch, picture_.Pixels());
  return source;
}

void ViewPainter::PaintLabels(const PanelSource& source, const PanelLayout& layout) {
  const Labels labels = CollectLabels(source, layout);
  for (size_t i = 0; i < labels.count; ++i) labels_.Draw(picture_, labels.labels[i]);
}

void ViewPainter::PaintMarks(MarkList& marks, const PanelSource& source, const PanelLayout& layout) {
  if (LoadShared(globals.timestampTicked) == 0) return;
  marks_.Draw(picture_.Dc(), FindShownMarks(marks, layout, source.scale, source.ringTime), layout.dpi);
}

void ViewPainter::PaintSingle(AppState& state, int32_t width, int32_t height, int32_t dpi) {
  const PanelLayout layout = LayOutPanel(0, width, height, dpi);
  const PanelSource source = PaintPanel(state, PanelPlace::single, layout);
  PaintLabels(source, layout);
  labels_.DrawOnce(picture_, CollectStatus(state, source, layout, false));
  PaintMarks(globals.marksA, source, layout);
}

void ViewPainter::PaintDual(AppState& state, int32_t width, int32_t height, int32_t dpi) {
  const PanelLayout upperLayout = LayOutPanel(0, width, height / 2, dpi);
  const PanelLayout lowerLayout = LayOutPanel(height / 2, width, height / 2, dpi);
  const PanelSource upper = PaintPanel(state, PanelPlace::upper, upperLayout);
  const PanelSource lower = PaintPanel(state, PanelPlace::lower, lowerLayout);
  PaintLabels(upper, upperLayout);
  PaintLabels(lower, lowerLayout);
  labels_.DrawOnce(picture_, CollectStatus(state, upper, lowerLayout, true));
  PaintMarks(globals.marksA, upper, upperLayout);
  PaintMarks(globals.marksB, lower, lowerLayout);
}

}  // namespace tw
