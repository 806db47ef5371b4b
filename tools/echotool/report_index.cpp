#include "tools/echotool/report_index.h"

#include <algorithm>

#include "platform/file.h"
#include "tools/echotool/escapes.h"
#include "tools/echotool/file_names.h"
#include "tools/echotool/info_output.h"
#include "tools/echotool/iso_time.h"
#include "tools/echotool/report_charts.h"

namespace tw::echotool {
namespace {

std::string Cell(const std::string& value, bool warns = false) {
  return std::string(warns ? "<td class=\"n warn\">" : "<td class=\"n\">") + MarkupText(value) + "</td>";
}

// The folders below that the page stands in, each with a slash behind it.
std::string FoldersOf(const std::wstring& folder, const ReportPage& page) {
  std::string below = NarrowName(FolderOfPath(page.path).substr(folder.size()));
  std::replace(below.begin(), below.end(), static_cast<char>(kPathSeparator), '/');
  return below;
}

std::string Row(const std::wstring& folder, const ReportPage& page) {
  const RecordingFigures& figures = page.figures;
  const std::string below = FoldersOf(folder, page);
  const std::string link = LinkText(below + NarrowName(LastOfPath(page.path)));
  const std::string begin =
      figures.timed == 0 ? "not told" : IsoDate(figures.begin_ms) + ' ' + IsoClock(figures.begin_ms);
  return "<tr><td><a href=\"" + link + "\">" + MarkupText(ReadableText(below) + page.recording) +
         "</a></td><td>" + begin + "</td>" +
         Cell(figures.timed == 0 ? "" : DurationText(figures.running_ms)) +
         Cell(std::to_string(figures.pings)) + Cell(DepthText(figures)) + Cell(DistanceText(figures)) +
         Cell(PercentText(figures.positions, figures.pings), figures.positions < figures.pings) +
         Cell(std::to_string(figures.missing), figures.missing != 0) +
         Cell(std::to_string(figures.gaps), figures.gaps != 0) +
         Cell(PercentText(page.skipped, page.size), page.skipped != 0) + Cell(SizeText(page.size)) +
         "</tr>\n";
}

std::string Tiles(const RecordingFigures& all, uint64_t size, uint64_t skipped) {
  return "<dl class=\"tiles\">" + Tile("Pings", std::to_string(all.pings)) +
         Tile("Recorded", all.timed == 0 ? "not told" : DurationText(all.running_ms)) +
         Tile("Depth", DepthText(all)) + Tile("Distance run", DistanceText(all)) +
         Tile("With position", PercentText(all.positions, all.pings), all.positions < all.pings) +
         Tile("Numbers missing", std::to_string(all.missing), all.missing != 0) +
         Tile("Damage", PercentText(skipped, size), skipped != 0) + Tile("Size", SizeText(size)) + "</dl>\n";
}

}  // namespace

std::string ReportIndex(const std::wstring& folder, const std::vector<const ReportPage*>& pages) {
  RecordingFigures all;
  uint64_t size = 0;
  uint64_t skipped = 0;
  std::string rows;
  std::vector<NamedTrack> tracks;
  for (const ReportPage* const page : pages) {
    all.Add(page->figures);
    size += page->size;
    skipped += page->skipped;
    rows += Row(folder, *page);
    tracks.push_back({&page->track.Points(), page->recording});
  }
  const std::string title = std::to_string(pages.size()) + (pages.size() == 1 ? " recording" : " recordings");
  std::string heading = "<header><h1>" + title + "</h1><p>";
  if (all.timed != 0) {
    const std::string first = IsoDate(all.begin_ms);
    const std::string last = IsoDate(all.end_ms);
    heading += first == last ? first : first + " to " + last;
  }
  return PageHead(title) + heading + "</p></header>\n" + Tiles(all, size, skipped) +
         "<section class=\"card long\"><h2>Recordings</h2><div class=\"scroll\"><table "
         "class=\"list files\"><thead><tr><th>recording</th>"
         "<th>begins</th><th class=\"n\">duration</th><th class=\"n\">pings</th><th class=\"n\">depth</th>"
         "<th class=\"n\">distance</th><th class=\"n\">with position</th><th class=\"n\">missing</th><th "
         "class=\"n\">gaps</th>"
         "<th class=\"n\">damage</th><th class=\"n\">size</th></tr></thead>\n" +
         rows + "</table></div></section>\n" + TrackCard(tracks, {}) + PageEnd();
}

}  // namespace tw::echotool
