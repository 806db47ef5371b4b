// How the second file of a pair keeps to the first one's recorded time while both are played: it waits when
// it is ahead and skips its pace when it is behind. So the two stay together where one of them lacks pings.
// Pure; one thread.
#pragma once

#include <cstdint>
#include <optional>

#include "app/state/app_state.h"
#include "playback/ping_source.h"

namespace tw {

// `first_ms` is AppState::firstTime_ms.
class PairPace {
 public:
  // Whether the ping comes later than the newest one of the first file. Never when either tells no time.
  [[nodiscard]] bool IsAhead(const RecordedPing& ping, int64_t first_ms);

  // The first file's clock was set back behind what this file has shown. This file gets there too, with pings
  // that seem to be ahead until then, so it waits for none of them for good.
  [[nodiscard]] bool FirstWentBack() const { return firstWentBack_; }

  // The ping has been shown.
  void Note(const RecordedPing& ping, int64_t first_ms);

  // Whether the newest ping that tells a time is earlier than the first file's.
  [[nodiscard]] bool IsBehind(int64_t first_ms) const {
    return first_ms != kNoRecordedTime && latest_ms_ && *latest_ms_ < first_ms;
  }

 private:
  std::optional<int64_t> latest_ms_;
  int64_t firstAtLatest_ms_ = kNoRecordedTime;
  bool firstWentBack_ = false;
};

}  // namespace tw
