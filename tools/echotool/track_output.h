// A recording's pings as rows of a table and as a track.
//
// CSV (RFC 4180): a headline, then one row a ping, each ending in CR LF; what a ping does not have is empty:
//
//   time_utc,ping,latitude_deg,longitude_deg,altitude_m,temperature_c,pitch_deg,roll_deg,
//   2026-05-01T09:30:00Z,17,35.10000000,129.05000000,12.345,14.20,1.25,-0.50,
//
//   channel,frequency_hz,altitude_low_m,time_ms_utc      (behind them, in the same line)
//   1,450000,12.301,2026-05-01T09:30:00.250Z
//
// Channel 2 is the low frequency of a recording of both; a line that tells both altitudes stands in one row.
//
// KML 2.2: one line through the valid positions, each new one once; a point if there is but one, and nothing
// without any. Behind it the same as a track with times, as far as they rise, and the operator's marks. Pure
// but for the output; one thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "playback/converter.h"
#include "playback/output_file.h"
#include "playback/ping_source.h"
#include "tools/echotool/track.h"

namespace tw::echotool {

// Puts a text behind what stands in the output. False when the output has failed.
[[nodiscard]] bool AppendText(OutputFile& output, std::string_view text);

class PingWriter : public PingConverter {
 public:
  // At the end, for the user: why there is nothing of use in the output, and what is missing in it; else
  // empty.
  [[nodiscard]] virtual std::string Emptiness() const { return {}; }
  [[nodiscard]] virtual std::string Note() const { return {}; }
};

class CsvWriter final : public PingWriter {
 public:
  explicit CsvWriter(OutputFile& output) : output_(output) {}
  [[nodiscard]] bool Begin() override;
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override { return output_.Flush(); }

 private:
  OutputFile& output_;
};

class KmlWriter final : public PingWriter {
 public:
  // `name` is what viewers show for the track.
  KmlWriter(OutputFile& output, std::string_view name, std::vector<EventMark> marks = {})
      : output_(output), name_(name), marks_(std::move(marks)) {}
  [[nodiscard]] bool Begin() override;
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override;

 private:
  [[nodiscard]] bool AppendPlacemark(std::string_view geometry);
  [[nodiscard]] bool AppendTimes();
  [[nodiscard]] bool AppendMarks();

  OutputFile& output_;
  std::string name_;
  std::string first_;  // position, as its line in the file
  uint64_t positions_ = 0;
  std::vector<EventMark> marks_;
  Track track_;
  KeptTrack kept_;
};

}  // namespace tw::echotool
