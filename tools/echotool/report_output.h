// The page of a recording: one HTML file that needs no other, no script and no network. What the file is
// named and what it tells is escaped. One thread.
#pragma once

#include <string>
#include <vector>

#include "playback/output_file.h"
#include "playback/recording_marks.h"
#include "tools/echotool/echogram_columns.h"
#include "tools/echotool/report_charts.h"
#include "tools/echotool/report_series.h"
#include "tools/echotool/summary.h"
#include "tools/echotool/track_output.h"

namespace tw::echotool {

// What the index tells of a page.
struct ReportPage {
  std::wstring path;      // of the page
  std::string recording;  // its name, to be shown
  uint64_t size = 0;
  uint64_t skipped = 0;
  RecordingFigures figures;
  ThinTrack track;
};

// Text of any length; false when the output has failed.
[[nodiscard]] bool PutText(OutputFile& output, std::string_view text);

// The beginning of a page, up to the heading (HTML), and its end.
[[nodiscard]] std::string PageHead(std::string_view title);
[[nodiscard]] std::string PageEnd();

// A figure with what it is called.
[[nodiscard]] std::string Tile(std::string_view name, std::string_view value, bool warns = false);
[[nodiscard]] std::string DepthText(const RecordingFigures& figures);
[[nodiscard]] std::string PercentText(uint64_t part, uint64_t whole);
[[nodiscard]] std::string DistanceText(const RecordingFigures& figures);
[[nodiscard]] std::string SizeText(uint64_t bytes);

class ReportWriter final : public PingWriter {
 public:
  // Both outlive the writer; `page` is filled at the end.
  // `path` is that of the recording, beside which the log of its marks may stand.
  ReportWriter(OutputFile& output, const PingSource& recording, std::wstring path, ReportPage& page);
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override;

 private:
  void FindMarks();
  [[nodiscard]] bool PutEchogram(size_t channel);
  [[nodiscard]] bool PutCharts();

  OutputFile& output_;
  const PingSource& recording_;
  const std::wstring path_;
  ReportPage& page_;
  std::vector<EventMark> marks_;  // within the recording's time
  MarkPlaces places_;             // of the marks
  EchogramColumns echo_[2];
  SeriesColumns series_;
  Summary summary_;
};

}  // namespace tw::echotool
