// When the next ping of a recording is due, by its recorded time at a pace of real time. Nothing here reads a
// clock: whoever plays tells how much of it has passed, and what of that is no playing time. Times are the
// recording's and may be anything. Pure; one thread.
#pragma once

#include <cstdint>
#include <optional>

#include "playback/ping_source.h"

namespace tw {

// What the operator has chosen; see ReplayState.
struct PaceChoice {
  int32_t percent;       // of the recorded time; above 0
  bool skipGaps;         // of more than five seconds
  uint32_t timeless_ms;  // from ping to ping where the recording does not say
};

class ReplayPace {
 public:
  // The next ping is due at once, and the time counts from there.
  void BeginAnew() { *this = {}; }

  // What comes next. A ping that tells no time of its own, or the same as the one before, is due as long
  // after it as the pings before were apart; one whose time is behind that of the one before, and any as long
  // as that is not known, `timeless_ms` after it. A gap of more than a day is a clock that was set: never
  // waited for.
  void Expect(const RecordedPing& ping, const PaceChoice& choice);

  // `clock_ms` is the millisecond clock; between two calls the playback went on at this pace, or it was held.
  void PassTo(uint32_t clock_ms, int32_t percent);
  void HoldTo(uint32_t clock_ms) { clock_ms_ = clock_ms; }

  // How long it takes until the expected ping is due; 0: it is. A playback that is more than a second late
  // has lost that time.
  [[nodiscard]] uint32_t Left_ms(int32_t percent);

 private:
  using Axis =
      int64_t;  // hundredths of a recorded millisecond: at n % a millisecond of the clock is n of them

  void ExpectTimed(int64_t passed_ms, const PaceChoice& choice);

  bool begun_ = false;
  std::optional<uint32_t> clock_ms_;
  Axis head_ = 0;  // where the playback is
  Axis due_ = 0;
  Axis timedDue_ = 0;                 // of the newest ping that told a time
  std::optional<int64_t> latest_ms_;  // that time
  Axis apart_ = 0;                    // pings, where they do not tell; 0: not known
  int32_t sinceTimed_ = 0;            // pings
};

}  // namespace tw
