// The way of a recording, from position to position. A receiver is slower than an echosounder: the pings
// between two of its positions add nothing to a track. Pure; one thread.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "app/state/event_marks.h"
#include "tools/echotool/ping_clock.h"
#include "tools/echotool/ping_values.h"

namespace tw::echotool {

struct TrackPoint {
  Place_deg place;
  std::optional<int64_t> time_ms;
  std::optional<float> depth_m;  // below the transducer
  uint32_t ping;
};

// Gives each position once, with time and depth of the first ping that has it.
class Track {
 public:
  [[nodiscard]] std::optional<TrackPoint> Next(const RecordedPing& ping);

 private:
  PingClock clock_;
  bool any_ = false;
  double latitude_rad_ = 0;
  double longitude_rad_ = 0;
};

// Points that are kept until the end, at most kMost of them: of a longer track every second, fourth … one.
class KeptTrack {
 public:
  static constexpr size_t kMost = 65'536;

  void Add(const TrackPoint& point);

  // With the newest one at the end, which need not be among them.
  [[nodiscard]] const std::vector<TrackPoint>& End();

 private:
  std::vector<TrackPoint> points_;
  std::optional<TrackPoint> newest_;  // unless it has been kept
  uint64_t added_ = 0;
  uint64_t stride_ = 1;
};

// What viewers show of a mark: its number and its word.
[[nodiscard]] std::string NameOf(const EventMark& mark);

}  // namespace tw::echotool
