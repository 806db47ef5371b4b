#include "tools/echotool/recording_figures.h"

#include <algorithm>
#include <cmath>

namespace tw::echotool {
namespace {

constexpr double kLongestJump_m = 1'000.0;    // between two positions without times
constexpr uint32_t kMostMissing = 1'000'000;  // beyond it the numbers began anew

}  // namespace

void Extent::Add(double value) {
  if (!std::isfinite(value)) return;
  low = count == 0 ? value : std::min(low, value);
  high = count == 0 ? value : std::max(high, value);
  sum += value;
  ++count;
}

void Extent::Add(const Extent& other) {
  if (other.count == 0) return;
  low = count == 0 ? other.low : std::min(low, other.low);
  high = count == 0 ? other.high : std::max(high, other.high);
  sum += other.sum;
  count += other.count;
}

void RecordingFigures::NoteNumber(const RecordedPing& ping, Channel& channel) {
  const uint32_t number = ping.header.ping;
  const uint32_t step = number - channel.number;
  if (channel.any && (step == 0 || step > kMostMissing)) {
    ++restarts;
    channel.numbers.BeginAnew();
  }
  channel.any = true;
  channel.number = number;
  channel.numbers.Add(number);
  if (longestTrace != 0) missing = channels_[0].numbers.Missing() + channels_[1].numbers.Missing();
}

void RecordingFigures::NoteTime(int64_t time_ms, Channel& channel) {
  begin_ms = timed == 0 ? time_ms : std::min(begin_ms, time_ms);
  end_ms = timed == 0 ? time_ms : std::max(end_ms, time_ms);
  ++timed;
  if (channel.time_ms) {
    const int64_t step_ms = time_ms - *channel.time_ms;
    if (step_ms < 0) {
      ++setBack;
    } else if (step_ms > kLongestPause_ms) {
      ++gaps;
      longestGap_ms = std::max(longestGap_ms, step_ms);
    } else {
      ++steps_;
      steps_ms_ += step_ms;
    }
    if (step_ms > 0 && &channel == channels_) running_ms += step_ms;
  }
  channel.time_ms = time_ms;
}

// A receiver is slower than an echosounder: most pings have the position of the one before.
void RecordingFigures::NotePlace(const RecordedPing& ping, std::optional<int64_t> time_ms) {
  const auto place = PlaceOf(ping);
  if (!place) return;
  ++positions;
  pdop.Add(static_cast<double>(ping.header.gpsPdop));
  if (place_ && place->latitude == place_->latitude && place->longitude == place_->longitude) return;
  latitude_deg.Add(place->latitude);
  longitude_deg.Add(place->longitude);
  if (place_) {
    double most_m = kLongestJump_m;
    if (time_ms && place_ms_ && *time_ms >= *place_ms_)
      most_m = kFastestBoat_mps * std::max(1.0, static_cast<double>(*time_ms - *place_ms_) / 1'000.0);
    if (Distance_m(*place_, *place) > most_m) {
      ++jumps;
      anchor_ = *place;
    } else if (const double step_m = Distance_m(anchor_, *place); step_m >= kShortestStep_m) {
      distance_m += step_m;
      anchor_ = *place;
    }
  } else {
    anchor_ = *place;
  }
  place_ = place;
  place_ms_ = time_ms;
}

void RecordingFigures::Add(const RecordedPing& ping) {
  const PingHeader& header = ping.header;
  const size_t index = ping.channel == 0 ? 0 : 1;
  if (pings++ == 0) firstNumber = header.ping;
  lastNumber = header.ping;
  ++channelPings[index];
  longestTrace = std::max(longestTrace, static_cast<uint32_t>(ping.samples.size()));
  if (header.txFrequency_hz > 0) frequency_hz[index].Add(header.txFrequency_hz);
  if (header.samplingFrequency_hz > 0 && !ping.samples.empty()) sampling_hz.Add(header.samplingFrequency_hz);
  if (header.range_m > 0.0f) range_m.Add(static_cast<double>(header.range_m));
  if (header.altitude_m > 0.0f)
    (index == 0 ? depth_m : depthLow_m).Add(static_cast<double>(header.altitude_m));
  if (ping.bothChannels && ping.altitudeLow_m > 0.0f) depthLow_m.Add(static_cast<double>(ping.altitudeLow_m));
  temperature_c.Add(static_cast<double>(header.temperature_c));
  if (header.pitch_deg < kNoAttitude) {
    pitch_deg.Add(static_cast<double>(header.pitch_deg));
    roll_deg.Add(static_cast<double>(header.roll_deg));
  }
  NoteNumber(ping, channels_[index]);
  const auto time_ms = clock_.TimeOf(ping);
  if (time_ms) NoteTime(*time_ms, channels_[index]);
  NotePlace(ping, time_ms);
}

double RecordingFigures::Rate() const {
  return steps_ms_ <= 0 ? 0.0 : 1'000.0 * static_cast<double>(steps_) / static_cast<double>(steps_ms_);
}

void RecordingFigures::Add(const RecordingFigures& other) {
  if (other.timed != 0) {
    begin_ms = timed == 0 ? other.begin_ms : std::min(begin_ms, other.begin_ms);
    end_ms = timed == 0 ? other.end_ms : std::max(end_ms, other.end_ms);
  }
  pings += other.pings;
  for (size_t i = 0; i < 2; ++i) {
    channelPings[i] += other.channelPings[i];
    frequency_hz[i].Add(other.frequency_hz[i]);
  }
  longestTrace = std::max(longestTrace, other.longestTrace);
  sampling_hz.Add(other.sampling_hz);
  range_m.Add(other.range_m);
  depth_m.Add(other.depth_m);
  depthLow_m.Add(other.depthLow_m);
  temperature_c.Add(other.temperature_c);
  latitude_deg.Add(other.latitude_deg);
  longitude_deg.Add(other.longitude_deg);
  timed += other.timed;
  running_ms += other.running_ms;
  setBack += other.setBack;
  gaps += other.gaps;
  longestGap_ms = std::max(longestGap_ms, other.longestGap_ms);
  missing += other.missing;
  restarts += other.restarts;
  positions += other.positions;
  jumps += other.jumps;
  distance_m += other.distance_m;
  steps_ += other.steps_;
  steps_ms_ += other.steps_ms_;
}

}  // namespace tw::echotool
