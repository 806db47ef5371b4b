#include "tools/echotool/map_output.h"

#include <cinttypes>
#include <cmath>

#include "base/text_format.h"
#include "tools/echotool/escapes.h"
#include "tools/echotool/iso_time.h"
#include "tools/echotool/options.h"

namespace tw::echotool {
namespace {

template <typename... Values>
std::string Formatted(const char* format, Values... values) {
  char text[256];
  return {text, FormatText(text, format, values...)};
}

std::string Version() {
  return std::string(VersionText().substr(0, VersionText().find('\n')));
}

std::string GpxDepth(std::optional<double> depth_m) {
  if (!depth_m) return "";
  return Formatted(
      "<extensions><gpxtpx:TrackPointExtension><gpxtpx:depth>%.3f</gpxtpx:depth>"
      "</gpxtpx:TrackPointExtension></extensions>",
      *depth_m);
}

std::string GpxTime(std::optional<int64_t> time_ms) {
  return time_ms ? "<time>" + IsoTime(*time_ms) + "</time>" : "";
}

std::string JsonTime(std::optional<int64_t> time_ms) {
  return time_ms ? '"' + IsoTime(*time_ms) + '"' : "null";
}

std::string JsonDepth(std::optional<double> depth_m) {
  return depth_m ? Formatted("%.3f", *depth_m) : "null";
}

std::string JsonPlace(double latitude_deg, double longitude_deg) {
  return Formatted("[%.8f,%.8f]", longitude_deg, latitude_deg);
}

std::string JsonPoint(double latitude_deg, double longitude_deg) {
  return "{\"type\":\"Point\",\"coordinates\":" + JsonPlace(latitude_deg, longitude_deg) + "}";
}

std::optional<double> DepthOf(const EventMark& mark) {
  return mark.hasDepth && std::isfinite(mark.depth_m) ? std::optional(mark.depth_m) : std::nullopt;
}

std::optional<double> DepthOf(const TrackPoint& point) {
  return point.depth_m ? std::optional(static_cast<double>(*point.depth_m)) : std::nullopt;
}

}  // namespace

bool GpxWriter::Begin() {
  bool written = AppendText(output_,
                            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                            "<gpx version=\"1.1\" creator=\"" +
                                Version() +
                                "\" xmlns=\"http://www.topografix.com/GPX/1/1\""
                                " xmlns:gpxtpx=\"http://www.garmin.com/xmlschemas/TrackPointExtension/v1\">\n"
                                "<metadata><name>" +
                                MarkupText(name_) + "</name></metadata>\n");
  for (const EventMark& mark : marks_) {
    if (!mark.hasPosition) continue;
    written = written && AppendText(output_, Formatted("<wpt lat=\"%.8f\" lon=\"%.8f\">", mark.latitude_deg,
                                                       mark.longitude_deg) +
                                                 GpxTime(mark.time_ms) + "<name>" + MarkupText(NameOf(mark)) +
                                                 "</name>" + GpxDepth(DepthOf(mark)) + "</wpt>\n");
  }
  return written;
}

bool GpxWriter::Append(const RecordedPing& ping) {
  const auto point = track_.Next(ping);
  if (!point) return true;
  if (!any_ && !AppendText(output_, "<trk><name>" + MarkupText(name_) + "</name><trkseg>\n")) return false;
  any_ = true;
  return AppendText(
      output_, Formatted("<trkpt lat=\"%.8f\" lon=\"%.8f\">", point->place.latitude, point->place.longitude) +
                   GpxTime(point->time_ms) + GpxDepth(DepthOf(*point)) + "</trkpt>\n");
}

bool GpxWriter::End() {
  return (!any_ || AppendText(output_, "</trkseg></trk>\n")) && AppendText(output_, "</gpx>\n") &&
         output_.Flush();
}

bool GeoJsonWriter::AppendFeature(std::string_view geometry, std::string_view properties) {
  const char* const before = any_ ? ",\n" : "\n";
  any_ = true;
  return AppendText(output_, before) && AppendText(output_, "{\"type\":\"Feature\",\"geometry\":") &&
         AppendText(output_, geometry) && AppendText(output_, ",\"properties\":") &&
         AppendText(output_, properties) && AppendText(output_, "}");
}

bool GeoJsonWriter::Begin() {
  bool written = AppendText(output_, "{\"type\":\"FeatureCollection\",\"features\":[");
  for (const EventMark& mark : marks_) {
    if (!mark.hasPosition) continue;
    written = written && AppendFeature(JsonPoint(mark.latitude_deg, mark.longitude_deg),
                                       "{\"kind\":\"mark\",\"name\":" + QuotedJson(NameOf(mark)) +
                                           ",\"time\":" + JsonTime(mark.time_ms) +
                                           Formatted(",\"ping\":%" PRIu32, mark.ping) +
                                           ",\"depth_m\":" + JsonDepth(DepthOf(mark)) + "}");
  }
  return written;
}

bool GeoJsonWriter::Append(const RecordedPing& ping) {
  const auto point = track_.Next(ping);
  if (!point) return true;
  kept_.Add(*point);
  return AppendFeature(JsonPoint(point->place.latitude, point->place.longitude),
                       "{\"kind\":\"ping\",\"time\":" + JsonTime(point->time_ms) +
                           Formatted(",\"ping\":%" PRIu32, point->ping) +
                           ",\"depth_m\":" + JsonDepth(DepthOf(*point)) + "}");
}

// A part of the line on either side of 180 degrees; a single position is no line.
bool GeoJsonWriter::AppendLine(const std::vector<TrackPoint>& points) {
  std::string parts;
  for (size_t begin = 0, end = 0; begin < points.size(); begin = end) {
    std::string part = JsonPlace(points[begin].place.latitude, points[begin].place.longitude);
    for (end = begin + 1; end < points.size(); ++end) {
      const Place_deg& place = points[end].place;
      if (std::fabs(place.longitude - points[end - 1].place.longitude) > 180.0) break;
      part += ',' + JsonPlace(place.latitude, place.longitude);
    }
    if (end - begin > 1) parts += (parts.empty() ? "[" : ",[") + part + "]";
  }
  const std::string feature = std::string(any_ ? ",\n" : "\n") +
                              "{\"type\":\"Feature\",\"geometry\":{\"type\":\"MultiLineString\","
                              "\"coordinates\":[" +
                              parts + "]},\"properties\":{\"kind\":\"track\",\"name\":" + QuotedJson(name_) +
                              "}}";
  for (std::string_view rest = feature; !rest.empty();
       rest.remove_prefix(std::min<size_t>(rest.size(), 4'096)))
    if (!AppendText(output_, rest.substr(0, 4'096))) return false;
  return true;
}

bool GeoJsonWriter::End() {
  const auto& points = kept_.End();
  return (points.size() < 2 || AppendLine(points)) && AppendText(output_, "\n]}\n") && output_.Flush();
}

}  // namespace tw::echotool
