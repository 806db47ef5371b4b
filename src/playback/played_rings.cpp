#include "playback/played_rings.h"

#include <iterator>

#include "acquisition/sample_grid.h"
#include "acquisition/synthetic_pulse.h"
#include "base/shared_value.h"

namespace tw {
namespace {

constexpr int64_t kTimelessTick_ms = 100;

}  // namespace

int64_t PlayedRings::PlaceInTime(const RecordedPing& ping) {
  const bool taken = channels_[IsLow(ping) ? 1 : 0].HasPingAt(recorded_ms_);
  if (!again_ && ping.hasTime) {
    recorded_ms_ = ping.time_ms;
  } else if (!again_ && taken) {
    recorded_ms_ += kTimelessTick_ms;
  }
  again_ = false;
  return recorded_ms_;
}

void PlayedRings::Show(const RecordedPing& ping) {
  Store(channels_[IsLow(ping) ? 1 : 0], ping, ping.header.altitude_m);
  if (ping.bothChannels) Store(channels_[1], ping, ping.altitudeLow_m);
  Publish(ping);
}

void PlayedRings::Jump() {
  for (size_t i = 0; i < std::size(channels_); ++i) {
    if (Writes(i)) channels_[i].Jump();
  }
}

void PlayedRings::GoBack(const PlayedPlace& place) {
  for (size_t i = 0; i < std::size(channels_); ++i) {
    if (Writes(i)) channels_[i].GoBack(place.channels[i]);
  }
}

void PlayedRings::RepeatAt(int64_t recorded_ms) {
  again_ = true;
  recorded_ms_ = recorded_ms;
}

PlayedPlace PlayedRings::PlaceOf(const RecordedPing& ping) const {
  return {{channels_[0].Place(), channels_[1].Place()}, ping.begin, recorded_ms_, ping.header.ping};
}

bool PlayedRings::Writes(size_t channel) const {
  if (second_) return channel == 1;
  return channel == 0 || recording_.Kind().channels > 1;
}

// kept: how often samples are repeated is found once, at the first ping that tells its sampling frequency.
size_t PlayedRings::RepeatOf(const PingHeader& header) {
  const size_t own = GridRepeat(header.samplingFrequency_hz);
  if (repeat_ == 0) repeat_ = own;
  return own == 0 ? 0 : repeat_;
}

void PlayedRings::Store(PlayedChannel& channel, const RecordedPing& ping, float altitude_m) {
  PingHeader header = ping.header;
  header.altitude_m = altitude_m;
  image_.Build(header, ping.samples, ping.factor, RepeatOf(header));
  if (!recording_.Kind().hasSamples) {
    DrawPulse(image_, static_cast<double>(altitude_m), static_cast<double>(state_.settings.soundSpeed_mps));
  }
  channel.Store(image_, recorded_ms_, {header.ping, header.timeOfWork_s});
}

void PlayedRings::Publish(const RecordedPing& ping) {
  const bool low = IsLow(ping);
  StoreShared(globals.pingCounter, ping.header.ping);
  StoreShared(low ? globals.latestAltitudeLow_m : globals.latestAltitudeHigh_m, ping.header.altitude_m);
  if (ping.bothChannels) StoreShared(globals.latestAltitudeLow_m, ping.altitudeLow_m);
  StoreShared(low ? globals.playedFrequencyB_hz : globals.playedFrequencyA_hz, ping.header.txFrequency_hz);
}

}  // namespace tw
