// Tracks for programs that know maps, with times (UTC) and depths, and the operator's marks.
//
// GPX 1.1: the marks as waypoints, then one track; depth in Garmin's TrackPointExtension.
//
//   <trkpt lat="35.10000000" lon="129.05000000"><time>2026-05-01T09:30:00.250Z</time><extensions>
//   <gpxtpx:TrackPointExtension><gpxtpx:depth>12.345</gpxtpx:depth></gpxtpx:TrackPointExtension></extensions></trkpt>
//
// GeoJSON (RFC 7946): a point for each mark and each position, and one line through them, cut where it passes
// 180 degrees:
//
//   {"type":"Feature","geometry":{"type":"Point","coordinates":[129.05000000,35.10000000]},
//    "properties":{"kind":"ping","time":"2026-05-01T09:30:00.250Z","ping":17,"depth_m":12.345}}
//
// What is not known is left out, in GeoJSON null. Pure but for the output; one thread.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tools/echotool/track.h"
#include "tools/echotool/track_output.h"

namespace tw::echotool {

class GpxWriter final : public PingWriter {
 public:
  GpxWriter(OutputFile& output, std::string_view name, std::vector<EventMark> marks)
      : output_(output), name_(name), marks_(std::move(marks)) {}
  [[nodiscard]] bool Begin() override;
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override;

 private:
  OutputFile& output_;
  std::string name_;
  std::vector<EventMark> marks_;
  Track track_;
  bool any_ = false;
};

class GeoJsonWriter final : public PingWriter {
 public:
  GeoJsonWriter(OutputFile& output, std::string_view name, std::vector<EventMark> marks)
      : output_(output), name_(name), marks_(std::move(marks)) {}
  [[nodiscard]] bool Begin() override;
  [[nodiscard]] bool Append(const RecordedPing& ping) override;
  [[nodiscard]] bool End() override;

 private:
  [[nodiscard]] bool AppendFeature(std::string_view geometry, std::string_view properties);
  [[nodiscard]] bool AppendLine(const std::vector<TrackPoint>& points);

  OutputFile& output_;
  std::string name_;
  std::vector<EventMark> marks_;
  Track track_;
  KeptTrack kept_;
  bool any_ = false;
};

}  // namespace tw::echotool
