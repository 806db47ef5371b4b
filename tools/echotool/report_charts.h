// The pictures of a report, as SVG within HTML. Axes are HTML around a drawing that is stretched to its box,
// so that labels stay readable at every width. Pure; one thread.
#pragma once

#include <string>
#include <vector>

#include "tools/echotool/report_series.h"

namespace tw::echotool {

struct ChartLine {
  Series series;
  const char* name;
};

struct Chart {
  const char* title;
  const char* unit;
  std::vector<ChartLine> lines;  // one or two
  bool downwards = false;        // as depths are drawn
};

// A mark of the operator: where it stands, from 0 to 1 of the width.
using MarkPlaces = std::vector<double>;

// A card with the chart; empty when no column has such a value.
[[nodiscard]] std::string ChartCard(const Chart& chart, const SeriesColumns& columns,
                                    const MarkPlaces& marks);

struct EchogramPicture {
  std::string png;  // base64
  size_t columns = 0;
  double to_m = 0;
  std::string title;
  std::string note;  // HTML
};
[[nodiscard]] std::string EchogramCard(const EchogramPicture& picture, const SeriesColumns& columns,
                                       const MarkPlaces& marks);

struct NamedTrack {
  const std::vector<ThinPoint>* points;
  std::string name;  // shown when it is pointed at
};
// Tracks with a scale bar, north up; empty without a position. `places` are drawn as dots.
[[nodiscard]] std::string TrackCard(const std::vector<NamedTrack>& tracks,
                                    const std::vector<Place_deg>& places);

[[nodiscard]] std::string Base64(std::string_view bytes);

}  // namespace tw::echotool
