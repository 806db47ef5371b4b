#include "playback/played_channel.h"

#include <algorithm>
#include <limits>

#include "acquisition/time_marks.h"
#include "base/shared_value.h"

namespace tw {

void PlayedChannel::Store(const SlotImage& image, int64_t recorded_ms, uint32_t time_s) {
  StorePing(ring_, image, static_cast<uint32_t>(recorded_ms));
  Mark(recorded_ms, time_s);
}

// Many recordings tell whole seconds, which several pings share.
void PlayedChannel::MeasureInterval(int64_t recorded_ms) {
  if (begun_ && recorded_ms > latest_ms_) {
    const int64_t interval_ms = (recorded_ms - latest_ms_) / std::max<int64_t>(pingsAtLatest_, 1);
    interval_ms_ =
        static_cast<uint32_t>(std::clamp<int64_t>(interval_ms, 1, std::numeric_limits<uint32_t>::max()));
    StoreShared(globals.measuredPingInterval_ms, static_cast<float>(interval_ms_));
  }
  if (!begun_ || recorded_ms != latest_ms_) pingsAtLatest_ = 0;
  ++pingsAtLatest_;
}

void PlayedChannel::Mark(int64_t recorded_ms, uint32_t time_s) {
  MeasureInterval(recorded_ms);
  begun_ = true;
  latest_ms_ = recorded_ms;
  if (LoadShared(globals.timestampTicked) == 0) return;
  const uint32_t period_ms = LoadShared(globals.dualMode) != 0 ? kDualMarkPeriod_ms : kSingleMarkPeriod_ms;
  const int32_t set_pings = LoadShared(globals.marksAtStart);
  AddMark(marks_, interval_ms_ == 0 ? set_pings : MarkInterval(period_ms, interval_ms_), time_s);
}

void PlayedChannel::Jump() {
  ring_.begun = false;
  begun_ = false;
  ClearMarks(marks_);
}

void PlayedChannel::GoBack(const ChannelPlace& place) {
  ring_.begun = place.begun;
  ring_.last_ms = static_cast<uint32_t>(place.latest_ms);
  ring_.remainder_ms = place.remainder_ms;
  begun_ = place.begun;
  latest_ms_ = place.latest_ms;
  pingsAtLatest_ = 0;
  ClearMarks(marks_);
  MoveRing(ring_, place.ringIndex);
}

ChannelPlace PlayedChannel::Place() const {
  Locked held(*ring_.lock);
  return {begun_, *ring_.index, ring_.remainder_ms, latest_ms_};
}

RingWriter WriterOfRingA(AppState& state) {
  return {state.ringA, &state.ringIndexA, &state.ringTimeA, &state.ringLockA, globals.slotReachA};
}

RingWriter WriterOfRingB(AppState& state) {
  return {state.ringB, &state.ringIndexB, &state.ringTimeB, &state.ringLockB, globals.slotReachB};
}

void ClearRings(AppState& state) {
  ClearRing(WriterOfRingA(state));
  ClearRing(WriterOfRingB(state));
  ClearMarks(globals.marksA);
  ClearMarks(globals.marksB);
}

}  // namespace tw
