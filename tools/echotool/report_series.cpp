#include "tools/echotool/report_series.h"

#include <algorithm>
#include <cmath>

namespace tw::echotool {
namespace {

constexpr size_t kMostColumns = 1'000;
constexpr double kFarStep_m = 1'000.0;

// Nothing that was measured is further from 0; neither is what is no number taken.
constexpr float kFurthest = 100'000.0f;

void Take(Between& between, float value) {
  if (!(std::fabs(value) <= kFurthest)) return;
  between.low = between.any ? std::min(between.low, value) : value;
  between.high = between.any ? std::max(between.high, value) : value;
  between.any = true;
}

void Take(Between& between, const Between& other) {
  if (!other.any) return;
  Take(between, other.low);
  Take(between, other.high);
}

}  // namespace

void SeriesColumns::Halve() {
  for (size_t i = 0; i < columns_.size() / 2; ++i) {
    SeriesColumn joined = columns_[2 * i];
    for (size_t k = 0; k < kSeries; ++k) Take(joined.values[k], columns_[2 * i + 1].values[k]);
    columns_[i] = joined;
  }
  columns_.resize(columns_.size() / 2);
  pingsOfColumn_ *= 2;
}

void SeriesColumns::Add(const RecordedPing& ping) {
  uint64_t& pings = pingsOfLast_[ping.channel == 0 ? 0 : 1];
  if (columns_.empty() || pings == pingsOfColumn_) {
    if (columns_.size() == kMostColumns) Halve();
    SeriesColumn column{};
    column.time_ms = clock_.TimeOf(ping).value_or(0);
    columns_.push_back(column);
    pingsOfLast_ = {};
  }
  ++pings;
  auto& values = columns_.back().values;
  const auto of = [&](Series series) -> Between& { return values[static_cast<size_t>(series)]; };
  const PingHeader& header = ping.header;
  if (header.altitude_m > 0.0f)
    Take(of(ping.channel == 0 ? Series::depth : Series::depthLow), header.altitude_m);
  if (ping.bothChannels && ping.altitudeLow_m > 0.0f) Take(of(Series::depthLow), ping.altitudeLow_m);
  Take(of(Series::temperature), header.temperature_c);
  if (header.pitch_deg < kNoAttitude) {
    Take(of(Series::pitch), header.pitch_deg);
    Take(of(Series::roll), header.roll_deg);
  }
}

double SeriesColumns::PlaceOfTime(int64_t time_ms) const {
  for (size_t i = 0; i < columns_.size(); ++i) {
    if (columns_[i].time_ms == 0 || columns_[i].time_ms < time_ms) continue;
    return static_cast<double>(i) / static_cast<double>(columns_.size());
  }
  return -1;
}

int64_t SeriesColumns::TimeAt(double place) const {
  if (columns_.empty()) return 0;
  const auto index = static_cast<size_t>(place * static_cast<double>(columns_.size()));
  return columns_[std::min(index, columns_.size() - 1)].time_ms;
}

// Every second point goes; where a piece begins its next one takes that over.
void ThinTrack::Thin() {
  std::vector<ThinPoint> kept;
  bool begins = false;
  for (size_t i = 0; i < points_.size(); ++i) {
    begins = begins || points_[i].begins;
    if (i % 2 != 0 && !points_[i].begins) continue;
    kept.push_back(points_[i]);
    kept.back().begins = begins;
    begins = false;
  }
  // A track of nothing but jumps has no shape to keep.
  if (kept.size() > kMostPoints / 2 + kMostPoints / 4) kept.resize(kMostPoints / 2);
  points_ = std::move(kept);
  step_m_ *= 2;
}

void ThinTrack::ThinTo(size_t most) {
  while (points_.size() > most) {
    const size_t before = points_.size();
    Thin();
    if (points_.size() == before) points_.resize(most);  // nothing but jumps
  }
  points_.shrink_to_fit();
}

void ThinTrack::Add(const RecordedPing& ping) {
  const auto place = PlaceOf(ping);
  if (!place) return;
  ThinPoint point{place->latitude, place->longitude, points_.empty()};
  const auto time_ms = clock_.TimeOf(ping);
  if (!points_.empty()) {
    point.longitude_deg += 360.0 * std::round((last_.longitude_deg - point.longitude_deg) / 360.0);
    const double step_m = Distance_m({last_.latitude_deg, last_.longitude_deg}, *place);
    double most_m = kFarStep_m;
    if (time_ms && last_ms_ && *time_ms >= *last_ms_)
      most_m = kFastestBoat_mps * std::max(1.0, static_cast<double>(*time_ms - *last_ms_) / 1'000.0);
    point.begins = step_m > most_m;
    const ThinPoint& drawn = points_.back();
    const bool near = Distance_m({drawn.latitude_deg, drawn.longitude_deg}, *place) < step_m_;
    last_ = point;
    last_ms_ = time_ms;
    if (near && !point.begins) return;
  }
  last_ = point;
  last_ms_ = time_ms;
  if (points_.size() == kMostPoints) Thin();
  points_.push_back(point);
}

}  // namespace tw::echotool
