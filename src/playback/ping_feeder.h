// Gives the pings of a recording to the run that plays or converts it, one after the other, for as long as
// nothing else goes before them. No window, no posts, no state record. One thread.
#pragma once

#include <cstdint>

#include "playback/ping_source.h"

namespace tw {

enum class Fed : uint8_t {
  ping,
  interrupted,  // something goes before the next ping
  unread,       // the file cannot be read any further, or the pings that it held when it was opened are gone
  end,          // of the recording, which has just been come to
  ended,        // the same once more
};

class PingFeeder {
 public:
  // `asked` is asked between two reads of the file and when no ping has come. The recording outlives the
  // feeder, `asked.subject` too.
  PingFeeder(PingSource& recording, const Interruption& asked);
  ~PingFeeder();
  PingFeeder(const PingFeeder&) = delete;
  PingFeeder& operator=(const PingFeeder&) = delete;

  // Sets `ping` with Fed::ping alone. After the end nothing is read until GoOn, unless growth is followed.
  [[nodiscard]] Fed Next(RecordedPing& ping);

  // Whether a recording that was read to its end is looked at again for what has been written behind it.
  void FollowGrowth(bool follows) { follows_ = follows; }

  // For whoever moves it, which GoOn tells the feeder: whether the file could be positioned.
  [[nodiscard]] PingSource& Recording() { return recording_; }
  void GoOn(bool positioned);

 private:
  PingSource& recording_;
  const Interruption asked_;
  bool begun_ = false;  // a ping has come, or the recording was moved
  bool ended_ = false;
  bool follows_ = false;
};

}  // namespace tw
