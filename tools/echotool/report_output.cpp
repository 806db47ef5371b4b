#include "tools/echotool/report_output.h"

#include <algorithm>
#include <cinttypes>
#include <cstring>

#include "base/text_format.h"
#include "tools/echotool/escapes.h"
#include "tools/echotool/info_output.h"
#include "tools/echotool/iso_time.h"
#include "tools/echotool/options.h"
#include "tools/echotool/png_image.h"
#include "tools/echotool/report_style.h"
#include "tools/echotool/report_tables.h"

namespace tw::echotool {
namespace {

constexpr size_t kPictureHeight = 400;
constexpr size_t kMostShownMarks = 1'000;

template <typename... Values>
std::string Text(const char* format, Values... values) {
  char text[512];
  return {text, FormatText(text, format, values...)};
}

class StringSink final : public PngImage::Sink {
 public:
  [[nodiscard]] bool Take(std::string_view bytes) override {
    bytes_ += bytes;
    return true;
  }
  [[nodiscard]] const std::string& Bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

std::vector<Place_deg> PlacesOf(const std::vector<EventMark>& marks) {
  std::vector<Place_deg> places;
  for (const EventMark& mark : marks) {
    if (mark.hasPosition) places.push_back({mark.latitude_deg, mark.longitude_deg});
  }
  return places;
}

std::string Tiles(const PingSource& recording, const RecordingFigures& figures) {
  return "<dl class=\"tiles\">" + Tile("Pings", std::to_string(figures.pings)) +
         Tile("Duration", figures.timed == 0 ? "not told" : DurationText(figures.running_ms)) +
         Tile("Depth", DepthText(figures)) + Tile("Distance run", DistanceText(figures)) +
         Tile("With position", PercentText(figures.positions, figures.pings),
              figures.positions < figures.pings) +
         Tile("Numbers missing", std::to_string(figures.missing), figures.missing != 0) +
         Tile("Gaps", std::to_string(figures.gaps), figures.gaps != 0) +
         Tile("Damage", PercentText(recording.Skipped(), recording.Size()), recording.Skipped() != 0) +
         "</dl>\n";
}

std::string Heading(const ReportPage& page, const RecordingKind& kind) {
  const RecordingFigures& figures = page.figures;
  std::string out = "<header><h1>" + MarkupText(page.recording) + "</h1><p>";
  if (figures.timed != 0)
    out +=
        IsoDate(figures.begin_ms) + ' ' + IsoClock(figures.begin_ms) + " to " +
        (figures.end_ms / 86'400'000 != figures.begin_ms / 86'400'000 ? IsoDate(figures.end_ms) + ' ' : "") +
        IsoClock(figures.end_ms) + " UTC, ";
  return out + MarkupText(kind.name) + "</p></header>\n";
}

}  // namespace

bool PutText(OutputFile& output, std::string_view text) {
  while (!text.empty()) {
    const std::string_view piece = text.substr(0, kOutputBufferSize / 2);
    uint8_t* const room = output.Room(piece.size());
    if (room == nullptr) return false;
    std::memcpy(room, piece.data(), piece.size());
    output.Take(piece.size());
    text.remove_prefix(piece.size());
  }
  return true;
}

std::string PageHead(std::string_view title) {
  return "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
         "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>" +
         MarkupText(title) + "</title>\n<style>" + std::string(ReportStyle()) +
         "</style>\n</head>\n<body>\n<main>\n";
}

std::string PageEnd() {
  return "<footer>echotool " TW_VERSION ". All times are UTC.</footer>\n</main>\n</body>\n</html>\n";
}

std::string Tile(std::string_view name, std::string_view value, bool warns) {
  return std::string(warns ? "<div class=\"warn\">" : "<div>") + "<dt>" + std::string(name) + "</dt><dd>" +
         MarkupText(value) + "</dd></div>";
}

std::string DepthText(const RecordingFigures& figures) {
  const Extent& depth = figures.depth_m.count != 0 ? figures.depth_m : figures.depthLow_m;
  if (depth.count == 0) return "none";
  const std::string low = Text("%.2f", depth.low);
  const std::string high = Text("%.2f", depth.high);
  return (low == high ? low : low + " to " + high) + " m";
}

// Never "100.0 %" or "0.0 %" for what is not all or nothing.
std::string PercentText(uint64_t part, uint64_t whole) {
  if (part == 0 || whole == 0) return "0 %";
  if (part >= whole) return "100 %";
  return Text("%.1f %%",
              std::clamp(100.0 * static_cast<double>(part) / static_cast<double>(whole), 0.1, 99.9));
}

std::string DistanceText(const RecordingFigures& figures) {
  if (figures.positions == 0) return "not known";
  return figures.distance_m < 10'000 ? Text("%.0f m", figures.distance_m)
                                     : Text("%.1f km", figures.distance_m / 1'000);
}

std::string SizeText(uint64_t bytes) {
  const auto size = static_cast<double>(bytes);
  return bytes < 1'000'000       ? Text("%.1f kB", size / 1e3)
         : bytes < 1'000'000'000 ? Text("%.1f MB", size / 1e6)
                                 : Text("%.2f GB", size / 1e9);
}

ReportWriter::ReportWriter(OutputFile& output, const PingSource& recording, std::wstring path,
                           ReportPage& page)
    : output_(output),
      recording_(recording),
      path_(std::move(path)),
      page_(page),
      echo_{{kMostPictureColumns, 2 * kPictureHeight, recording.Kind().soundSpeed_mps},
            {kMostPictureColumns, 2 * kPictureHeight, recording.Kind().soundSpeed_mps}} {}

bool ReportWriter::Append(const RecordedPing& ping) {
  page_.figures.Add(ping);
  page_.track.Add(ping);
  series_.Add(ping);
  summary_.Add(ping);
  echo_[ping.channel == 0 ? 0 : 1].Add(ping);
  return true;
}

// A folder's log tells the marks of all its recordings.
void ReportWriter::FindMarks() {
  const RecordingFigures& figures = page_.figures;
  if (figures.timed == 0) return;
  for (const EventMark& mark : ReadMarksBeside(path_)) {
    if (mark.time_ms < figures.begin_ms || mark.time_ms > figures.end_ms || marks_.size() == kMostShownMarks)
      continue;
    marks_.push_back(mark);
    if (const double place = series_.PlaceOfTime(mark.time_ms); place >= 0) places_.push_back(place);
  }
}

bool ReportWriter::PutEchogram(size_t channel) {
  EchogramColumns& echo = echo_[channel];
  echo.End();
  if (echo.IsEmpty()) return true;
  StringSink sink;
  PngImage image(sink);
  const bool drawn = image.Begin(echo.Columns(), kPictureHeight) &&
                     echo.Draw(echo.Columns(), kPictureHeight, [&](auto row) { return image.Row(row); }) &&
                     image.End();
  if (!drawn) return false;
  const Extent& frequency = page_.figures.frequency_hz[channel];
  EchogramPicture picture{.png = Base64(sink.Bytes()),
                          .columns = echo.Columns(),
                          .to_m = echo.To_m(),
                          .title = "Echogram",
                          .note = ""};
  if (frequency.count != 0) picture.title += Text(" <small>%.0f", frequency.low / 1'000);
  if (frequency.high > frequency.low) picture.title += Text(" to %.0f", frequency.high / 1'000);
  if (frequency.count != 0) picture.title += " kHz</small>";
  picture.note = Text(echo.Columns() == 1 ? "%zu column, " : "%zu columns, ", echo.Columns()) +
                 (echo.PingsOfColumn() == 1
                      ? std::string("one ping each.")
                      : Text("each the strongest echoes of %" PRIu64 " pings.", echo.PingsOfColumn()));
  return PutText(output_, EchogramCard(picture, series_, places_));
}

bool ReportWriter::PutCharts() {
  const std::string charts =
      ChartCard({.title = "Depth below the transducer",
                 .unit = "m",
                 .lines = {{Series::depth, "high frequency"}, {Series::depthLow, "low frequency"}},
                 .downwards = true},
                series_, places_) +
      TrackCard({{&page_.track.Points(), page_.recording}}, PlacesOf(marks_)) + "<div class=\"pair\">" +
      ChartCard({.title = "Temperature", .unit = "°C", .lines = {{Series::temperature, ""}}}, series_,
                places_) +
      ChartCard(
          {.title = "Attitude", .unit = "°", .lines = {{Series::pitch, "pitch"}, {Series::roll, "roll"}}},
          series_, places_) +
      "</div>\n";
  return PutText(output_, charts);
}

bool ReportWriter::End() {
  page_.size = recording_.Size();
  page_.skipped = recording_.Skipped();
  const RecordingFigures& figures = page_.figures;
  FindMarks();
  return PutText(output_, PageHead(page_.recording) + Heading(page_, recording_.Kind()) +
                              Tiles(recording_, figures)) &&
         PutEchogram(0) && PutEchogram(1) && PutCharts() &&
         PutText(output_, MarksTable(marks_) + "<div class=\"tables\">" + SettingsTable(recording_, figures) +
                              PingsTable(recording_, figures) + PositionTable(figures, summary_.Stood()) +
                              "</div>\n" + PageEnd()) &&
         output_.Flush();
}

}  // namespace tw::echotool
