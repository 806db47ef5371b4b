// One channel of a played recording: its ring, paced by recorded time, and its time marks. The file worker
// that plays the channel is its only writer.
#pragma once

#include <cstdint>

#include "acquisition/store_ping.h"
#include "app/state/app_state.h"
#include "app/state/record_channel.h"
#include "playback/history.h"

namespace tw {

class PlayedChannel {
 public:
  PlayedChannel(AppState& state, RecordChannel channel)
      : ring_(WriterOfRing(state, channel)), marks_(ChannelOf(state, channel).marks) {}

  // Puts a ping into the ring, as many ticks behind the previous one as its recorded time says, and marks it
  // with its time while "Timestamp" is ticked.
  void Store(const SlotImage& image, int64_t recorded_ms, uint32_t time_s);

  // The recording goes on elsewhere: the next ping counts as one tick, whatever its time.
  void Jump();

  // Where the channel is, and back to there: the newest ping of that place comes to stand where it stood if
  // it is stored again.
  [[nodiscard]] ChannelPlace Place() const;
  void GoBack(const ChannelPlace& place);

  [[nodiscard]] bool HasPingAt(int64_t recorded_ms) const { return begun_ && latest_ms_ >= recorded_ms; }

 private:
  RingWriter ring_;
  MarkList& marks_;
  int64_t latest_ms_ = 0;
  bool begun_ = false;
};

// Zeroes what is in use of both rings, puts their indexes to 0 and forgets the time marks. While no worker
// writes them.
void ClearRings(AppState& state);

}  // namespace tw
