#include "playback/ping_feeder.h"

#include <utility>

namespace tw {

PingFeeder::PingFeeder(PingSource& recording, const Interruption& asked)
    : recording_(recording), asked_(asked) {
  recording_.SetInterruption(asked_);
}

PingFeeder::~PingFeeder() {
  recording_.SetInterruption({});
}

Fed PingFeeder::Next(RecordedPing& ping) {
  if ((!ended_ || follows_) && recording_.Next(ping)) {
    begun_ = true;
    ended_ = false;
    return Fed::ping;
  }
  if (asked_.isAsked(asked_.subject)) return Fed::interrupted;
  if (!ended_ && (recording_.Failed() || !begun_)) return Fed::unread;
  return std::exchange(ended_, true) ? Fed::ended : Fed::end;
}

void PingFeeder::GoOn(bool positioned) {
  begun_ = true;
  ended_ = !positioned;
}

}  // namespace tw
