// What the pings of a file leave in the program: columns of the rings, time marks, and the values that the
// view shows beside them. File worker only.
#pragma once

#include <cstddef>
#include <cstdint>

#include "acquisition/store_ping.h"
#include "app/state/app_state.h"
#include "playback/history.h"
#include "playback/ping_source.h"
#include "playback/played_channel.h"

namespace tw {

class PlayedRings {
 public:
  // A file of both channels has two rings, each file of a pair one: the second file ring B.
  PlayedRings(AppState& state, const PingSource& recording, bool second)
      : state_(state),
        recording_(recording),
        second_(second),
        channels_{{state, RecordChannel::a, recording.Marks()},
                  {state, RecordChannel::b, recording.Marks()}} {}

  // When the ping was, as far as the rings go; Show then puts it there. Without a recorded time each ping of
  // a channel counts as one tick.
  [[nodiscard]] int64_t PlaceInTime(const RecordedPing& ping);
  void Show(const RecordedPing& ping);

  // The recording goes on elsewhere.
  void Jump();
  void GoBack(const PlayedPlace& place);

  // The next ping is one that was shown before, at this time.
  void RepeatAt(int64_t recorded_ms);
  void RepeatNothing() { again_ = false; }

  // Where both channels are, with the newest ping, which is this one.
  [[nodiscard]] PlayedPlace PlaceOf(const RecordedPing& ping) const;

 private:
  [[nodiscard]] bool Writes(size_t channel) const;
  [[nodiscard]] bool IsLow(const RecordedPing& ping) const { return second_ || ping.channel != 0; }
  [[nodiscard]] size_t RepeatOf(const PingHeader& header);
  void Store(PlayedChannel& channel, const RecordedPing& ping, float altitude_m);
  void Publish(const RecordedPing& ping);

  AppState& state_;
  const PingSource& recording_;
  const bool second_;
  PlayedChannel channels_[2];
  bool again_ = false;
  int64_t recorded_ms_ = 0;  // of the newest ping
  size_t repeat_ = 0;
  SlotImage image_{};
};

}  // namespace tw
