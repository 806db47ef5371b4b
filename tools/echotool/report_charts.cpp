#include "tools/echotool/report_charts.h"

#include <algorithm>
#include <cmath>
#include <numbers>

#include "base/text_format.h"
#include "tools/echotool/escapes.h"
#include "tools/echotool/info_output.h"
#include "tools/echotool/iso_time.h"
#include "tools/echotool/png_image.h"

namespace tw::echotool {
namespace {

constexpr double kBoxWidth = 1'000;  // of the drawing that is stretched
constexpr double kBoxHeight = 200;
constexpr double kTrackWidth = 1'000;
constexpr double kTrackHeight = 440;
constexpr double kTrackMargin = 46;
constexpr size_t kFewColumns = 600;  // of an echogram, each to be seen by itself
constexpr int kTimes = 5;            // below a chart

template <typename... Values>
void Put(std::string& out, const char* format, Values... values) {
  char text[512];
  out.append(text, FormatText(text, format, values...));
}

// 1, 2 or 5 times a power of ten, at least `value` (above 0).
double RoundStep(double value) {
  const double power = std::pow(10.0, std::floor(std::log10(value)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    if (factor * power >= value) return factor * power;
  }
  return 10.0 * power;
}

struct Axis {
  double low;
  double high;
  double step;
  [[nodiscard]] double Place(double value) const { return (value - low) / (high - low); }
  [[nodiscard]] int Steps() const { return static_cast<int>(std::lround((high - low) / step)); }
};

Axis AxisOver(double low, double high) {
  constexpr double kSteps = 4;
  constexpr double kFlat = 0.5;
  if (high - low < kFlat) {
    const double middle = (low + high) / 2;
    low = middle - kFlat / 2;
    high = middle + kFlat / 2;
  }
  const double step = RoundStep((high - low) / kSteps);
  return {std::floor(low / step) * step, std::ceil(high / step) * step, step};
}

// A span a tick, from the top.
std::string Ticks(const Axis& axis, const char* unit, bool downwards) {
  const int decimals = axis.step < 0.1 ? 2 : axis.step < 1 ? 1 : 0;
  std::string out = "<div class=\"y\">";
  for (int i = 0; i <= axis.Steps(); ++i) {
    const double value = axis.low + axis.step * i;
    const double place = axis.Place(value);
    if (value > axis.high + axis.step / 100 || place > 1.001) break;
    Put(out, "<span style=\"top:%.2f%%\">%.*f&nbsp;%s</span>", 100 * (downwards ? place : 1 - place),
        decimals, std::fabs(value) < axis.step / 100 ? 0.0 : value, unit);
  }
  return out + "</div>";
}

// With the day where there are several.
std::string Times(const SeriesColumns& columns) {
  constexpr int64_t kDay_ms = 86'400'000;
  const bool days = columns.TimeAt(0) / kDay_ms != columns.TimeAt(1) / kDay_ms;
  std::string out = "<div class=\"x\">";
  for (int i = 0; i < kTimes; ++i) {
    const int64_t time_ms = columns.TimeAt(static_cast<double>(i) / (kTimes - 1));
    const std::string time = IsoTime(time_ms);
    out += "<span>";
    if (time_ms != 0) out += days ? time.substr(5, 5) + ' ' + time.substr(11, 5) : time.substr(11, 8);
    out += "</span>";
  }
  return out + "</div>";
}

std::string OpenSvg() {
  return "<svg viewBox=\"0 0 1000 200\" preserveAspectRatio=\"none\" aria-hidden=\"true\">";
}

std::string MarkLines(const MarkPlaces& marks) {
  if (marks.empty()) return "";
  std::string out = "<path class=\"marks\" d=\"";
  for (const double place : marks) Put(out, "M%.1f 0V200", place * kBoxWidth);
  return out + "\"/>";
}

std::string GridLines(const Axis& axis) {
  std::string out = "<path class=\"grid\" d=\"";
  for (int i = 1; i < axis.Steps(); ++i)
    Put(out, "M0 %.1fH1000", kBoxHeight * i / (axis.high - axis.low) * axis.step);
  return out + "\"/>";
}

// Where a value stands in the box, from its top.
struct Height {
  const Axis& axis;
  bool downwards;
  [[nodiscard]] double operator()(float value) const {
    const double place = axis.Place(static_cast<double>(value));
    return kBoxHeight * (downwards ? place : 1 - place);
  }
};

// Of the columns from `begin` to before `end`, all with values; as wide as they are, so that one alone is
// seen.
std::string RunPath(const SeriesColumns& columns, Series series, size_t begin, size_t end,
                    const Height& height) {
  const std::vector<SeriesColumn>& all = columns.Columns();
  const double step = kBoxWidth / static_cast<double>(all.size());
  const auto of = [&](size_t i) -> const Between& { return all[i].Of(series); };
  std::string out;
  Put(out, "M%.1f %.1f", static_cast<double>(begin) * step, height(of(begin).high));
  for (size_t i = begin; i < end; ++i)
    Put(out, "L%.1f %.1f", (static_cast<double>(i) + 0.5) * step, height(of(i).high));
  const double right = static_cast<double>(end) * step;
  Put(out, "L%.1f %.1fV%.1f", right, height(of(end - 1).high), height(of(end - 1).low));
  for (size_t i = end; i > begin; --i)
    Put(out, "L%.1f %.1f", (static_cast<double>(i) - 0.5) * step, height(of(i - 1).low));
  Put(out, "L%.1f %.1fz", static_cast<double>(begin) * step, height(of(begin).low));
  return out;
}

// The area between the lowest and the highest of each column, so that no extreme is lost; where they are the
// same it is a line. A piece for each run of columns that have values.
std::string AreaPath(const SeriesColumns& columns, Series series, const Height& height, const char* kind) {
  const std::vector<SeriesColumn>& all = columns.Columns();
  std::string out = "<path class=\"" + std::string(kind) + "\" d=\"";
  for (size_t begin = 0; begin < all.size(); ++begin) {
    size_t end = begin;
    while (end < all.size() && all[end].Of(series).any) ++end;
    if (end == begin) continue;
    out += RunPath(columns, series, begin, end, height);
    begin = end;
  }
  return out + "\"/>";
}

Extent ExtentOf(const Chart& chart, const SeriesColumns& columns) {
  Extent extent;
  for (const SeriesColumn& column : columns.Columns()) {
    for (const ChartLine& line : chart.lines) {
      if (!column.Of(line.series).any) continue;
      extent.Add(static_cast<double>(column.Of(line.series).low));
      extent.Add(static_cast<double>(column.Of(line.series).high));
    }
  }
  return extent;
}

bool Has(const SeriesColumns& columns, Series series) {
  return std::any_of(columns.Columns().begin(), columns.Columns().end(),
                     [&](const SeriesColumn& column) { return column.Of(series).any; });
}

std::string Ramp() {
  const DisplayPalette& palette = PicturePalette();
  std::string out = "<i class=\"ramp\" style=\"background:linear-gradient(90deg,#000";
  for (size_t i = 64; i < kPaletteEntries; i += 448) {
    const uint8_t* const entry = palette.entries[i];
    Put(out, ",#%02x%02x%02x", unsigned{entry[2]}, unsigned{entry[1]}, unsigned{entry[0]});
  }
  return out + ")\"></i>";
}

// Longitudes of several tracks side by side, and metres to pixels.
struct Map {
  double west, east, south, north;
  double scale;   // pixels a degree of latitude
  double narrow;  // a degree of longitude in degrees of latitude
  [[nodiscard]] double X(double longitude_deg) const {
    return kTrackWidth / 2 + (longitude_deg - (west + east) / 2) * narrow * scale;
  }
  [[nodiscard]] double Y(double latitude_deg) const {
    return kTrackHeight / 2 - (latitude_deg - (south + north) / 2) * scale;
  }
};

constexpr double kDegree_m = 111'195.0;

// Onto the side of the first track's.
double Beside(double longitude_deg, double first_deg) {
  return longitude_deg + 360.0 * std::round((first_deg - longitude_deg) / 360.0);
}

Map MapOf(const std::vector<NamedTrack>& tracks, double first_deg) {
  Extent latitude;
  Extent longitude;
  for (const NamedTrack& track : tracks) {
    for (const ThinPoint& point : *track.points) {
      latitude.Add(point.latitude_deg);
      longitude.Add(point.longitude_deg + Beside((*track.points)[0].longitude_deg, first_deg) -
                    (*track.points)[0].longitude_deg);
    }
  }
  Map map{longitude.low, longitude.high, latitude.low, latitude.high, 1, 1};
  constexpr double kSmallest_deg = 10.0 / kDegree_m;
  constexpr double kNarrowest = 0.01;  // at the poles
  map.narrow = std::max(kNarrowest, std::cos((map.south + map.north) / 2 * std::numbers::pi / 180));
  const double across = std::max(kSmallest_deg, (map.east - map.west) * map.narrow);
  const double along = std::max(kSmallest_deg, map.north - map.south);
  map.scale = std::min((kTrackWidth - 2 * kTrackMargin) / across, (kTrackHeight - 2 * kTrackMargin) / along);
  return map;
}

std::string ScaleAndNorth(const Map& map) {
  const double pixelsOfMetre = map.scale / kDegree_m;
  const double length_m = RoundStep(kTrackWidth / 10 / pixelsOfMetre);
  const double length = length_m * pixelsOfMetre;
  std::string out;
  Put(out, "<path class=\"ink\" d=\"M20 %.0fv6h%.1fv-6\"/>", kTrackHeight - 22, length);
  if (length_m >= 1'000) {
    Put(out, "<text x=\"%.1f\" y=\"%.0f\">%.0f km</text>", 28 + length, kTrackHeight - 14, length_m / 1'000);
  } else {
    Put(out, "<text x=\"%.1f\" y=\"%.0f\">%g m</text>", 28 + length, kTrackHeight - 14, length_m);
  }
  Put(out,
      "<path class=\"north\" d=\"M%.0f 14l9 26-9-6-9 6z\"/><text x=\"%.0f\" y=\"38\" "
      "text-anchor=\"end\">N</text>",
      kTrackWidth - 28, kTrackWidth - 44);
  return out;
}

std::string TrackPath(const NamedTrack& track, const Map& map, double first_deg) {
  const std::vector<ThinPoint>& points = *track.points;
  const double shift = Beside(points[0].longitude_deg, first_deg) - points[0].longitude_deg;
  std::string out = "<g><title>" + MarkupText(track.name) + "</title><path class=\"first\" d=\"";
  for (const ThinPoint& point : points)
    Put(out, "%c%.1f %.1f", point.begins ? 'M' : 'L', map.X(point.longitude_deg + shift),
        map.Y(point.latitude_deg));
  const ThinPoint& last = points.back();
  Put(out, "\"/><circle class=\"end\" r=\"5\" cx=\"%.1f\" cy=\"%.1f\"/>", map.X(last.longitude_deg + shift),
      map.Y(last.latitude_deg));
  Put(out, "<circle class=\"begin\" r=\"5\" cx=\"%.1f\" cy=\"%.1f\"/></g>",
      map.X(points[0].longitude_deg + shift), map.Y(points[0].latitude_deg));
  return out;
}

}  // namespace

std::string ChartCard(const Chart& chart, const SeriesColumns& columns, const MarkPlaces& marks) {
  const Extent extent = ExtentOf(chart, columns);
  // A device without the sensor sends 0 throughout.
  if (extent.count == 0 || (extent.low == 0 && extent.high == 0)) return "";
  const Axis axis = AxisOver(extent.low, extent.high);
  std::string key;
  std::string paths;
  const char* kind = "first";
  size_t drawn = 0;
  for (const ChartLine& line : chart.lines) {
    if (!Has(columns, line.series)) continue;
    key += "<i style=\"background:var(--" + std::string(kind) + ")\"></i>" + line.name;
    paths += AreaPath(columns, line.series, {axis, chart.downwards}, kind);
    kind = "second";
    ++drawn;
  }
  return "<section class=\"card\"><h2>" + std::string(chart.title) +
         (drawn > 1 ? "<span class=\"key\">" + key + "</span>" : "") + "</h2><div class=\"plot\">" +
         Ticks(axis, chart.unit, chart.downwards) + "<div class=\"box\">" + OpenSvg() + GridLines(axis) +
         paths + MarkLines(marks) + "</svg></div>" + Times(columns) + "</div></section>\n";
}

std::string EchogramCard(const EchogramPicture& picture, const SeriesColumns& columns,
                         const MarkPlaces& marks) {
  const Axis axis{0, picture.to_m, RoundStep(picture.to_m / 6)};
  return "<section class=\"card echo\"><h2>" + picture.title + "<span class=\"key\">weak" + Ramp() +
         "strong</span></h2><div class=\"plot\">" + Ticks(axis, "m", true) + "<div class=\"box\"><img" +
         (picture.columns < kFewColumns ? " class=\"few\"" : "") +
         " alt=\"Echogram\" src=\"data:image/png;base64," + picture.png + "\">" +
         (marks.empty() ? "" : OpenSvg() + MarkLines(marks) + "</svg>") + "</div>" + Times(columns) +
         "</div><div class=\"note\">" + picture.note + "</div></section>\n";
}

std::string TrackCard(const std::vector<NamedTrack>& tracks, const std::vector<Place_deg>& places) {
  std::vector<NamedTrack> drawn;
  for (const NamedTrack& track : tracks) {
    if (!track.points->empty()) drawn.push_back(track);
  }
  if (drawn.empty()) return "";
  const double first_deg = (*drawn[0].points)[0].longitude_deg;
  const Map map = MapOf(drawn, first_deg);
  std::string out =
      "<section class=\"card track\"><h2>Track <small>north up; the ring is where it begins</small></h2>"
      "<svg viewBox=\"0 0 1000 440\" role=\"img\" aria-label=\"Track\">";
  for (const NamedTrack& track : drawn) out += TrackPath(track, map, first_deg);
  for (const Place_deg& place : places) {
    Put(out, "<circle class=\"place\" r=\"4\" cx=\"%.1f\" cy=\"%.1f\"/>",
        map.X(Beside(place.longitude, first_deg)), map.Y(place.latitude));
  }
  return out + ScaleAndNorth(map) + "</svg></section>\n";
}

std::string Base64(std::string_view bytes) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string out;
  out.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    uint32_t group = 0;
    for (size_t k = 0; k < 3; ++k)
      group = group << 8 | (i + k < bytes.size() ? static_cast<unsigned char>(bytes[i + k]) : 0u);
    for (size_t k = 0; k < 4; ++k) out += i + k <= bytes.size() ? kDigits[group >> (18 - 6 * k) & 63] : '=';
  }
  return out;
}

}  // namespace tw::echotool
