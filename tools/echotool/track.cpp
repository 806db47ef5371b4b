#include "tools/echotool/track.h"

#include <cmath>

#include "base/text_format.h"

namespace tw::echotool {

std::optional<TrackPoint> Track::Next(const RecordedPing& ping) {
  const auto place = PlaceOf(ping);
  if (!place) return std::nullopt;
  if (any_ && ping.latitude_rad == latitude_rad_ && ping.longitude_rad == longitude_rad_) return std::nullopt;
  any_ = true;
  latitude_rad_ = ping.latitude_rad;
  longitude_rad_ = ping.longitude_rad;
  const float altitude_m = AltitudeOf(ping, 0);
  TrackPoint point{*place, clock_.TimeOf(ping), std::nullopt, ping.header.ping};
  if (std::isfinite(altitude_m) && altitude_m > 0.0f) point.depth_m = altitude_m;
  return point;
}

void KeptTrack::Add(const TrackPoint& point) {
  newest_ = point;
  if (added_++ % stride_ != 0) return;
  if (points_.size() == kMost) {
    for (size_t i = 0; 2 * i < points_.size(); ++i) points_[i] = points_[2 * i];
    points_.resize(kMost / 2);
    stride_ *= 2;
  }
  points_.push_back(point);
  newest_.reset();
}

const std::vector<TrackPoint>& KeptTrack::End() {
  if (newest_) points_.push_back(*newest_);
  newest_.reset();
  return points_;
}

std::string NameOf(const EventMark& mark) {
  char word[4 * kMarkWordSize];
  const size_t length = NarrowText(word, mark.word);
  return std::to_string(mark.number) + (length == 0 ? "" : " ") + std::string(word, length);
}

}  // namespace tw::echotool
