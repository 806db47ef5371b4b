#include "playback/pair_pace.h"

namespace tw {

bool PairPace::IsAhead(const RecordedPing& ping, int64_t first_ms) {
  const bool ahead = ping.hasTime && first_ms != kNoRecordedTime && ping.time_ms > first_ms;
  const bool wentBack = firstAtLatest_ms_ != kNoRecordedTime && first_ms < firstAtLatest_ms_;
  firstWentBack_ = ahead && (firstWentBack_ || wentBack);
  return ahead;
}

void PairPace::Note(const RecordedPing& ping, int64_t first_ms) {
  if (ping.hasTime) latest_ms_ = ping.time_ms;
  firstAtLatest_ms_ = first_ms;
}

}  // namespace tw
