#include "playback/played_channel.h"

#include "acquisition/time_marks.h"
#include "base/shared_value.h"

namespace tw {
void PlayedChannel::Store(const SlotImage& image, int64_t recorded_ms, uint32_t time_s) {
  StorePing(ring_, image, static_cast<uint32_t>(recorded_ms));
  Mark(recorded_ms, time_s);
}

void PlayedChannel::Mark(int64_t recorded_ms, uint32_t time_s) {
  if (begun_ && recorded_ms > latest_ms_) interval_ms_ = static_cast<uint32_t>(recorded_ms - latest_ms_);
  begun_ = true;
  latest_ms_ = recorded_ms;
  if (LoadShared(globals.timestampTicked) == 0) return;
  const uint32_t period_ms = LoadShared(globals.dualMode) != 0 ? kDualMarkPeriod_ms : kSingleMarkPeriod_ms;
  AddMark(marks_, MarkInterval(period_ms, interval_ms_), time_s);
}

void PlayedChannel::Jump() {
  ring_.begun = false;
  begun_ = false;
  ClearMarks(marks_);
}

void PlayedChannel::GoBack(int32_t ringIndex, int64_t recorded_ms) {
  ring_.begun = true;
  ring_.last_ms = static_cast<uint32_t>(recorded_ms);
  ring_.remainder_ms = 0;
  begun_ = false;
  ClearMarks(marks_);
  Locked held(*ring_.lock);
  *ring_.index = ringIndex;
}

int32_t PlayedChannel::RingIndex() const {
  Locked held(*ring_.lock);
  return *ring_.index;
}

RingWriter WriterOfRingA(AppState& state) {
  return {state.ringA, &state.ringIndexA, &state.ringLockA, globals.slotReachA};
}

RingWriter WriterOfRingB(AppState& state) {
  return {state.ringB, &state.ringIndexB, &state.ringLockB, globals.slotReachB};
}

void ClearRings(AppState& state) {
  ClearRing(WriterOfRingA(state));
  ClearRing(WriterOfRingB(state));
  ClearMarks(globals.marksA);
  ClearMarks(globals.marksB);
}

}  // namespace tw
