// What `echotool info` tells beside the summary of a recording: its figures as lines of text, as an object of
// JSON or as a row of a table, and the totals of a call. Both forms for programs are described in
// docs/formats.md and stay as they are: what is added stands behind. Pure; one thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "playback/ping_source.h"
#include "tools/echotool/recording_figures.h"

namespace tw::echotool {

// "1:02:03", hours without a bound
[[nodiscard]] std::string DurationText(int64_t duration_ms);

// Lines behind those of the summary, indented as they are.
[[nodiscard]] std::string FiguresText(const PingSource& recording, const RecordingFigures& figures);

// `file` as it was named on the command line.
[[nodiscard]] std::string FiguresJson(std::string_view file, const PingSource& recording,
                                      const RecordingFigures& figures);
[[nodiscard]] std::string FiguresCsvRow(std::string_view file, const PingSource& recording,
                                        const RecordingFigures& figures);
[[nodiscard]] std::string FiguresCsvHeader();

// What a recording adds to the totals.
struct RecordingTold {
  uint64_t bytes;
  uint64_t skipped;  // bytes
  RecordingFigures figures;
};

struct InfoTotals {
  uint64_t files = 0;
  uint64_t bytes = 0;
  uint64_t skipped = 0;
  RecordingFigures figures;
  void Add(const RecordingTold& told);
};

[[nodiscard]] std::string TotalsText(const InfoTotals& totals);
[[nodiscard]] std::string DocumentJson(const std::vector<std::string>& recordings, const InfoTotals& totals);

}  // namespace tw::echotool
