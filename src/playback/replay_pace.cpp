#include "playback/replay_pace.h"

#include <algorithm>

namespace tw {
namespace {

constexpr int64_t kGap_ms = 5'000;
constexpr int64_t kDay_ms = int64_t{86'400} * 1'000;
constexpr int64_t kMostLate_ms = 1'000;
constexpr int64_t kAxisPerMs = 100;

}  // namespace

void ReplayPace::Expect(const RecordedPing& ping, const PaceChoice& choice) {
  const bool tells = ping.hasTime && (!latest_ms_ || ping.time_ms != *latest_ms_);
  const bool rises = tells && latest_ms_ && ping.time_ms > *latest_ms_;
  if (rises) {
    ExpectTimed(ping.time_ms - *latest_ms_, choice);
  } else if (begun_) {
    const bool wentBack = tells && latest_ms_;
    due_ += wentBack || apart_ == 0 ? Axis{choice.timeless_ms} * choice.percent : apart_;
  }
  begun_ = true;
  if (sinceTimed_ < INT32_MAX) ++sinceTimed_;
  if (!tells) return;
  latest_ms_ = ping.time_ms;
  timedDue_ = due_;
  sinceTimed_ = 0;
}

void ReplayPace::ExpectTimed(int64_t passed_ms, const PaceChoice& choice) {
  if (passed_ms > kDay_ms || (choice.skipGaps && passed_ms > kGap_ms)) {
    due_ = head_;
    apart_ = 0;
    return;
  }
  due_ = timedDue_ + passed_ms * kAxisPerMs;
  apart_ = passed_ms * kAxisPerMs / (int64_t{sinceTimed_} + 1);
}

void ReplayPace::PassTo(uint32_t clock_ms, int32_t percent) {
  if (clock_ms_) head_ += Axis{clock_ms - *clock_ms_} * percent;
  clock_ms_ = clock_ms;
}

uint32_t ReplayPace::Left_ms(int32_t percent) {
  if (head_ - due_ > kMostLate_ms * percent) head_ = due_;
  if (due_ <= head_) return 0;
  constexpr Axis kLongest = UINT32_MAX;
  return static_cast<uint32_t>(std::min(kLongest, (due_ - head_ + percent - 1) / percent));
}

}  // namespace tw
