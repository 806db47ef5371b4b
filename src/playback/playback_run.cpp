#include <new>
#include <optional>

#include "base/shared_value.h"
#include "platform/clock.h"
#include "playback/file_report.h"
#include "playback/history.h"
#include "playback/pair_pace.h"
#include "playback/ping_feeder.h"
#include "playback/played_rings.h"
#include "playback/time_search.h"
#include "playback/worker_run.h"

namespace tw {
namespace {

constexpr uint32_t kHold_ms = 10;
constexpr uint32_t kSlice_ms = 20;
constexpr uint32_t kFollowSlice_ms = 4;
constexpr uint64_t kMillion = 1'000'000;
constexpr size_t kSmallStep = 20;
constexpr size_t kLargeStep = 100;

// A recording at the pace of a live run, as the operator steers it. Of a pair the first file leads, and the
// second one follows.
class PlaybackRun final : public WorkerRun {
 public:
  PlaybackRun(AppState& state, const WorkerSide& side, PingSource& recording)
      : WorkerRun(state, side),
        recording_(recording),
        feeder_(recording, {[](void* run) { return static_cast<PlaybackRun*>(run)->Interrupted(); }, this}),
        rings_(state, recording, !side.first),
        report_(state, side.texts, false) {}

  [[nodiscard]] bool Run() override {
    PlaybackEnd failure = kPlaybackWithoutMemory;
    if (history_.Prepare()) {
      StoreShared(globals.attitudePresent, 1);
      failure = Play();
    }
    if (failure != kPlaybackGoesOn && !Stale()) TellFailure(state_, failure);
    return false;
  }

 private:
  [[nodiscard]] bool IsSet(RunEvent event) { return WaitForEvent(state_.runEvents[event], 0); }

  // Whether something waits that goes before the next ping.
  [[nodiscard]] bool Interrupted() {
    if (Stale() || StopAsked()) return true;
    if (!side_.first) return IsSet(kStepSecond);
    return LoadShared(state_.seekRequest) != 0 || IsSet(kBack20) || IsSet(kBack100);
  }

  // Until the operator wants it over, or it cannot go on.
  PlaybackEnd Play() {
    while (!Stale() && !StopAsked()) {
      if (Steer()) continue;
      RecordedPing ping{};
      switch (feeder_.Next(ping)) {
        case Fed::ping:
          PlayPing(ping);
          break;
        case Fed::interrupted:
          break;
        case Fed::unread:
          return kPlaybackUnread;
        case Fed::end:
          NoteEnd();
          [[fallthrough]];
        case Fed::ended:
          showNext_ = false;
          SleepMilliseconds(kHold_ms);
          break;
      }
    }
    return kPlaybackGoesOn;
  }

  // What the operator asks for; false when the file is just to go on.
  bool Steer() {
    if (side_.first) {
      if (const auto place = TakeSeekRequest(state_.seekRequest)) return SeekTo(*place);
      if (StepAsked(kBack20)) return Step(kSmallStep);
      if (StepAsked(kBack100)) return Step(kLargeStep);
    } else if (StepAsked(kStepSecond)) {
      return Follow();
    }
    if (showNext_ || !IsSet(kPause)) return false;
    SleepMilliseconds(kHold_ms);
    return true;
  }

  bool StepAsked(RunEvent event) {
    if (!IsSet(event)) return false;
    Reset(state_.runEvents[event]);
    return true;
  }

  // The next ping is shown even while the playback is held.
  void GoOnFrom(bool positioned) {
    feeder_.GoOn(positioned);
    showNext_ = true;
    rings_.RepeatNothing();
    skipUntil_.reset();
    if (side_.first)
      static_cast<void>(CompareExchangeShared(globals.playbackEnded, kPlaybackExhausted, kPlaybackGoesOn));
  }

  bool SeekTo(uint64_t position) {
    GoOnFrom(recording_.Seek(position));
    StoreShared(state_.firstTime_ms, kNoPingYet);
    if (position == 0) {  // begun anew
      history_.Clear();
      recording_.CountFrom(1);
    }
    rings_.Jump();
    leading_ = true;  // the next ping's time is what the second file follows to
    return true;
  }

  bool Step(size_t entries) {
    const auto place = history_.StepBack(entries);
    if (!place) return true;
    GoOnFrom(recording_.Seek(place->position));
    StoreShared(state_.firstTime_ms, kNoPingYet);
    rings_.RepeatAt(place->recorded_ms);
    recording_.CountFrom(place->number);
    rings_.GoBack(*place);
    leading_ = false;
    LeadSecond(place->recorded_ms, place->position, true);
    PostPlace();
    return true;
  }

  void LeadSecond(int64_t recorded_ms, uint64_t position, bool back) {
    if (LoadShared(state_.inputFileB) == Handle::invalid) return;
    const uint64_t size = recording_.Size();
    const double share = size == 0 ? 0 : static_cast<double>(position) / static_cast<double>(size);
    StoreShared(state_.stepTime_ms, recorded_ms);
    StoreShared(state_.stepShare_ppm, static_cast<int32_t>(share * kMillion));
    StoreShared(state_.stepBack, back ? 1 : 0);
    Signal(state_.runEvents[kStepSecond]);
  }

  // The second file goes on with its first ping at or after the first one's time; when it tells no times, at
  // the same part of its length.
  bool Follow() {
    const int64_t recorded_ms = LoadShared(state_.stepTime_ms);
    const bool back = LoadShared(state_.stepBack) != 0;
    const bool timed = SeekToTime(recording_, recorded_ms);
    const auto share_ppm = static_cast<uint64_t>(LoadShared(state_.stepShare_ppm));
    GoOnFrom(timed || recording_.Seek(recording_.Size() / kMillion * share_ppm));
    if (timed) skipUntil_ = recorded_ms;
    pace_ = {};
    const auto place = back ? history_.StepBackTo(recorded_ms) : std::nullopt;
    if (place) {
      rings_.GoBack(*place);
    } else {
      rings_.Jump();
    }
    return true;
  }

  void PlayPing(const RecordedPing& ping) {
    if (!AwaitFirst(ping)) return;
    if (!IsSkipped(ping)) ShowPing(ping);
    Pace();
  }

  // Holds a ping of the second file back that is ahead of the first. False when something else goes before
  // it.
  bool AwaitFirst(const RecordedPing& ping) {
    if (side_.first || showNext_ || skipUntil_) return true;
    const auto longest_ms = 2 * static_cast<uint32_t>(LoadShared(state_.playbackPace));
    uint32_t waited_ms = 0;
    while (pace_.IsAhead(ping, LoadShared(state_.firstTime_ms))) {
      if (Interrupted()) return false;
      if (pace_.FirstWentBack() && waited_ms >= longest_ms) break;
      SleepMilliseconds(kFollowSlice_ms);
      waited_ms += kFollowSlice_ms;
    }
    pace_.Note(ping, LoadShared(state_.firstTime_ms));
    return true;
  }

  // True for a ping ahead of the place that was looked for.
  bool IsSkipped(const RecordedPing& ping) {
    if (!skipUntil_) return false;
    if (!ping.hasTime || ping.time_ms < *skipUntil_) return true;
    skipUntil_.reset();
    return false;
  }

  void ShowPing(const RecordedPing& ping) {
    const int64_t recorded_ms = rings_.PlaceInTime(ping);
    showNext_ = false;
    if (side_.first) TellTime(ping);
    if (leading_) LeadSecond(recorded_ms, ping.begin, false);
    leading_ = false;
    rings_.Show(ping);
    if (side_.first) {
      report_.NotePosition(ping);
      report_.NoteTime(recorded_ms / 1000);
    }
    if (!report_.IsProgressDue(ping)) return;
    PostPlace();
    if (side_.first) report_.ShowSize(recording_.Size());
    history_.Add(rings_.PlaceOf(ping));
  }

  // To the second file. Where not each ping tells its time, the latest that did counts.
  void TellTime(const RecordedPing& ping) {
    if (ping.hasTime) {
      StoreShared(state_.firstTime_ms, ping.time_ms);
    } else if (LoadShared(state_.firstTime_ms) == kNoPingYet) {
      StoreShared(state_.firstTime_ms, kNoRecordedTime);
    }
  }

  // Waits in slices, so that buttons and the slider are heard.
  void Pace() {
    if (skipUntil_) return;
    if (!side_.first && pace_.IsBehind(LoadShared(state_.firstTime_ms))) return;
    for (auto left_ms = static_cast<uint32_t>(LoadShared(state_.playbackPace));
         left_ms > 0 && !Interrupted();) {
      const uint32_t slice_ms = left_ms < kSlice_ms ? left_ms : kSlice_ms;
      SleepMilliseconds(slice_ms);
      left_ms -= slice_ms;
    }
  }

  void NoteEnd() {
    PostPlace();
    if (!side_.first) return;
    StoreShared(state_.firstTime_ms, kNoRecordedTime);
    static_cast<void>(CompareExchangeShared(globals.playbackEnded, kPlaybackGoesOn, kPlaybackExhausted));
  }

  // Of a pair the first file is the one whose place and size are shown.
  void PostPlace() {
    if (side_.first) report_.PostPlace(LoadShared(side_.input), recording_);
  }

  PingSource& recording_;
  PingFeeder feeder_;
  PlayedRings rings_;
  FileReport report_;
  PlaybackHistory history_;
  PairPace pace_;
  bool showNext_ = false;  // a step or seek has not shown its ping yet
  bool leading_ = false;
  std::optional<int64_t> skipUntil_;
};

}  // namespace

std::unique_ptr<WorkerRun> MakePlayback(AppState& state, const WorkerSide& side, PingSource& recording) {
  return std::unique_ptr<WorkerRun>(new (std::nothrow) PlaybackRun(state, side, recording));
}

}  // namespace tw
