// What the charts of a report are drawn from, gathered ping by ping in bounded memory: the values of each
// column of pings between their lowest and highest, and the track in places that are thinned out as it grows.
// Pure; one thread.
#pragma once

#include <array>
#include <cstdint>
#include <vector>

#include "tools/echotool/recording_figures.h"

namespace tw::echotool {

enum class Series : uint8_t { depth, depthLow, temperature, pitch, roll };
inline constexpr size_t kSeries = 5;

struct Between {
  float low;
  float high;
  bool any;
};

struct SeriesColumn {
  int64_t time_ms;  // of its first ping; 0: not known
  std::array<Between, kSeries> values;
  [[nodiscard]] const Between& Of(Series series) const { return values[static_cast<size_t>(series)]; }
};

class SeriesColumns {
 public:
  void Add(const RecordedPing& ping);
  [[nodiscard]] const std::vector<SeriesColumn>& Columns() const { return columns_; }
  // Where, from 0 to 1 of the width of all columns, the first ping at or behind this time is; below 0:
  // nowhere.
  [[nodiscard]] double PlaceOfTime(int64_t time_ms) const;
  [[nodiscard]] int64_t TimeAt(double place) const;

 private:
  void Halve();

  PingClock clock_;
  std::vector<SeriesColumn> columns_;
  uint64_t pingsOfColumn_ = 1;                // of each channel
  std::array<uint64_t, 2> pingsOfLast_ = {};  // of each channel
};

struct ThinPoint {
  double latitude_deg;
  double longitude_deg;  // goes on beyond 180 where the track does
  bool begins;           // the position before is out of reach
};

class ThinTrack {
 public:
  void Add(const RecordedPing& ping);
  // Up to kMostPoints.
  [[nodiscard]] const std::vector<ThinPoint>& Points() const { return points_; }
  static constexpr size_t kMostPoints = 2'000;
  // Down to so many at most, for a map of many tracks.
  void ThinTo(size_t most);

 private:
  void Thin();

  PingClock clock_;
  std::vector<ThinPoint> points_;
  double step_m_ = 0.5;  // positions closer to the last one add nothing
  ThinPoint last_{};     // of all
  std::optional<int64_t> last_ms_;
};

}  // namespace tw::echotool
