// One channel of a played recording: its ring, paced by recorded time, and its time marks. The file worker
// that plays the channel is its only writer.
#pragma once

#include <cstdint>
#include <span>

#include "acquisition/store_ping.h"
#include "app/state/app_state.h"
#include "app/state/record_channel.h"
#include "playback/history.h"

namespace tw {

struct PlayedPing {
  uint32_t number;
  uint32_t time_s;
};

class PlayedChannel {
 public:
  // `events` are the operator's marks in order of time, for as long as this lives.
  PlayedChannel(AppState& state, RecordChannel channel, std::span<const EventMark> events)
      : ring_(WriterOfRing(state, channel)),
        marks_(ChannelOf(state, channel).marks),
        lines_(ChannelOf(state, channel).lines),
        events_(events) {}

  // Puts a ping into the ring, as many ticks behind the previous one as its recorded time says, and marks it
  // with its time while "Timestamp" is ticked. Marks of the operator's get their lines at their pings, or
  // where those are not in this recording, at the first one behind.
  void Store(const SlotImage& image, int64_t recorded_ms, const PlayedPing& ping);

  // The recording goes on elsewhere: the next ping counts as one tick, whatever its time.
  void Jump();

  // Where the channel is, and back to there: the newest ping of that place comes to stand where it stood if
  // it is stored again.
  [[nodiscard]] ChannelPlace Place() const;
  void GoBack(const ChannelPlace& place);

  [[nodiscard]] bool HasPingAt(int64_t recorded_ms) const { return begun_ && latest_ms_ >= recorded_ms; }

 private:
  RingWriter ring_;
  void ShowEvents(int64_t recorded_ms, const PlayedPing& ping, int64_t ringTime);

  MarkList& marks_;
  TimeLineList& lines_;
  std::span<const EventMark> events_;
  size_t nextEvent_ = 0;
  int64_t latest_ms_ = 0;
  bool begun_ = false;
};

// Zeroes what is in use of both rings, puts their indexes to 0 and forgets the time marks. While no worker
// writes them.
void ClearRings(AppState& state);

}  // namespace tw
