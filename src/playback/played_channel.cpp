#include "playback/played_channel.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>

#include "acquisition/time_lines.h"
#include "acquisition/time_marks.h"
#include "base/shared_value.h"
#include "base/text_format.h"

namespace tw {
namespace {

// A ping's time is told to the second in some forms, and recorded a little behind.
constexpr int64_t kNearby_ms = 2'000;

}  // namespace

void PlayedChannel::Store(const SlotImage& image, int64_t recorded_ms, const PlayedPing& ping) {
  const int64_t ringTime = StorePing(ring_, image, static_cast<uint32_t>(recorded_ms));
  const int64_t passed_ms = begun_ ? std::max<int64_t>(recorded_ms - latest_ms_, 0) : 0;
  if (!events_.empty()) ShowEvents(recorded_ms, ping, ringTime);
  begun_ = true;
  latest_ms_ = recorded_ms;
  if (LoadShared(globals.timestampTicked) != 0) AddPlayedMark(marks_, passed_ms, {ping.time_s, ringTime});
}

void PlayedChannel::ShowEvents(int64_t recorded_ms, const PlayedPing& ping, int64_t ringTime) {
  if (!begun_) {
    const auto isEarlier = [](const EventMark& event, int64_t time_ms) { return event.time_ms < time_ms; };
    const auto first = std::lower_bound(events_.begin(), events_.end(), recorded_ms - kNearby_ms, isEarlier);
    nextEvent_ = static_cast<size_t>(first - events_.begin());
  }
  for (; nextEvent_ < events_.size(); ++nextEvent_) {
    const EventMark& event = events_[nextEvent_];
    const int64_t since_ms = recorded_ms - event.time_ms;
    const bool isItsPing = event.ping == ping.number && std::abs(since_ms) <= kNearby_ms;
    if (!isItsPing && since_ms <= kNearby_ms) return;
    TimeLine line{ringTime, static_cast<uint32_t>(event.time_ms / 1'000), event.number, L""};
    CopyWide(line.word, event.word);
    if (isItsPing || begun_) AddTimeLine(lines_, line);
  }
}

void PlayedChannel::Jump() {
  ring_.begun = false;
  begun_ = false;
  ClearMarks(marks_);
  ClearTimeLines(lines_);
}

void PlayedChannel::GoBack(const ChannelPlace& place) {
  ring_.begun = place.begun;
  ring_.last_ms = static_cast<uint32_t>(place.latest_ms);
  ring_.remainder_ms = place.remainder_ms;
  begun_ = place.begun;
  latest_ms_ = place.latest_ms;
  nextEvent_ = 0;
  while (begun_ && nextEvent_ < events_.size() && events_[nextEvent_].time_ms < latest_ms_) ++nextEvent_;
  ClearMarks(marks_);
  ClearTimeLines(lines_);
  MoveRing(ring_, place.ringIndex);
}

ChannelPlace PlayedChannel::Place() const {
  return {begun_, IndexOf(ring_), ring_.remainder_ms, latest_ms_};
}

void ClearRings(AppState& state) {
  for (const RecordChannel channel : {RecordChannel::a, RecordChannel::b}) {
    ClearRing(WriterOfRing(state, channel));
    ClearMarks(ChannelOf(state, channel).marks);
    ClearTimeLines(ChannelOf(state, channel).lines);
  }
}

}  // namespace tw
