#include "playback/played_channel.h"

#include <algorithm>
#include <initializer_list>

#include "acquisition/time_marks.h"
#include "base/shared_value.h"

namespace tw {

void PlayedChannel::Store(const SlotImage& image, int64_t recorded_ms, uint32_t time_s) {
  const int64_t ringTime = StorePing(ring_, image, static_cast<uint32_t>(recorded_ms));
  const int64_t passed_ms = begun_ ? std::max<int64_t>(recorded_ms - latest_ms_, 0) : 0;
  begun_ = true;
  latest_ms_ = recorded_ms;
  if (LoadShared(globals.timestampTicked) != 0) AddPlayedMark(marks_, passed_ms, {time_s, ringTime});
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
  ClearMarks(marks_);
  MoveRing(ring_, place.ringIndex);
}

ChannelPlace PlayedChannel::Place() const {
  return {begun_, IndexOf(ring_), ring_.remainder_ms, latest_ms_};
}

void ClearRings(AppState& state) {
  for (const RecordChannel channel : {RecordChannel::a, RecordChannel::b}) {
    ClearRing(WriterOfRing(state, channel));
    ClearMarks(ChannelOf(state, channel).marks);
  }
}

}  // namespace tw
