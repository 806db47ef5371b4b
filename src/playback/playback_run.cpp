#include <new>
#include <optional>
#include <utility>

#include "base/shared_value.h"
#include "platform/clock.h"
#include "playback/file_report.h"
#include "playback/history.h"
#include "playback/pair_pace.h"
#include "playback/ping_feeder.h"
#include "playback/played_rings.h"
#include "playback/replay_pace.h"
#include "playback/time_search.h"
#include "playback/worker_run.h"

namespace tw {
namespace {

constexpr uint32_t kHold_ms = 10;
constexpr uint32_t kSlice_ms = 20;
constexpr uint32_t kFollowSlice_ms = 4;
constexpr uint32_t kStillGrows_ms = 3'000;
constexpr uint64_t kSearchReach = uint64_t{1024} * 1024;
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
        report_(state, side.texts, false),
        openedSize_(recording.Size()) {}

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
    return LoadShared(state_.seekRequest) != 0 || LoadShared(state_.replay.timeRequest) != 0 ||
           IsSet(kBack20) || IsSet(kBack100);
  }

  // Until the operator wants it over, or it cannot go on.
  PlaybackEnd Play() {
    while (!Stale() && !StopAsked()) {
      if (Steer()) continue;
      RecordedPing ping{};
      switch (feeder_.Next(ping)) {
        case Fed::ping:
          NoteGrowth();
          PlayPing(ping);
          break;
        case Fed::interrupted:
          break;
        case Fed::unread:
          return kPlaybackUnread;
        case Fed::end:
          BeginEnd();
          [[fallthrough]];
        case Fed::ended:
          StayAtEnd();
          break;
      }
    }
    return kPlaybackGoesOn;
  }

  // What the operator asks for; false when the file is just to go on.
  bool Steer() {
    if (side_.first) {
      if (const auto place = TakeSeekRequest(state_.seekRequest)) return SeekTo(*place);
      if (const int64_t request = ExchangeShared(state_.replay.timeRequest, 0); request > 0)
        return SeekToRecorded(request - 1);
      TakeStepOn();
      if (StepAsked(kBack20)) return Step(kSmallStep);
      if (StepAsked(kBack100)) return Step(kLargeStep);
    } else if (StepAsked(kStepSecond)) {
      return Follow();
    }
    if (showNext_ || stepOn_ > 0 || KeepsUp() || !IsSet(kPause)) return false;
    SleepMilliseconds(kHold_ms);
    replayPace_.HoldTo(MillisecondClock());
    return true;
  }

  // The pings of a step on are shown at once, held or not.
  bool TakeStepOn() {
    if (!side_.first) return false;
    stepOn_ += ExchangeShared(state_.replay.stepOn, 0);
    return stepOn_ > 0;
  }

  // The second file while the first one steps on.
  [[nodiscard]] bool KeepsUp() const {
    return HasBar() && !side_.first && pace_.IsBehind(LoadShared(state_.firstTime_ms));
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
    stepOn_ = 0;
    atEnd_ = false;
    replayPace_.BeginAnew();
    rings_.RepeatNothing();
    skipUntil_.reset();
    if (side_.first)
      static_cast<void>(CompareExchangeShared(globals.playbackEnded, kPlaybackExhausted, kPlaybackGoesOn));
  }

  bool SeekTo(uint64_t position) {
    GoOnFrom(recording_.Seek(position));
    StoreShared(state_.firstTime_ms, kNoPingYet);
    if (position == 0 || HasBar()) history_.Clear();
    if (position == 0) recording_.CountFrom(1);  // begun anew
    jumped_ = position != 0;
    rings_.Jump();
    leading_ = true;  // the next ping's time is what the second file follows to
    return true;
  }

  // The first ping of this recorded time or later; without times nothing happens.
  bool SeekToRecorded(int64_t time_ms) {
    const uint64_t before = recording_.Position();
    if (!SeekToTime(recording_, time_ms)) {
      GoOnFrom(recording_.Seek(before));
      return true;
    }
    const uint64_t place = recording_.Position();
    SeekTo(place);
    jumped_ = true;
    skipUntil_ = time_ms;
    skipEnd_ = place + kSearchReach;
    return true;
  }

  // With the bar a step is one of pings also where those before have not been played.
  bool Step(size_t entries) {
    if (HasBar() && jumped_ && history_.Size() <= entries)
      return SeekTo(PlaceBefore(recording_, shown_, entries).value_or(0));
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
    skipEnd_ = UINT64_MAX;
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
    if (!AwaitFirst(ping) || IsSkipped(ping) || !AwaitDue(ping)) return;
    ShowPing(ping);
    Pace(ping);
  }

  // Waits in slices until the chosen pace brings the ping. False when something else goes before it. The
  // second file of a pair goes by the first one's time instead.
  bool AwaitDue(const RecordedPing& ping) {
    int32_t percent = Pace_percent();
    if (!side_.first) return true;
    if (percent == kPaceAsGiven || showNext_ || stepOn_ > 0) replayPace_.BeginAnew();
    if (percent == kPaceAsGiven) return true;
    replayPace_.PassTo(MillisecondClock(), percent);
    replayPace_.Expect(ping, {percent, LoadShared(state_.replay.skipGaps) != 0, GivenPace_ms()});
    while (percent != kPaceAsGiven) {
      const uint32_t left_ms = replayPace_.Left_ms(percent);
      if (left_ms == 0 || TakeStepOn()) return true;
      if (Interrupted()) return false;
      WaitSlice(left_ms, percent);
      percent = Pace_percent();
    }
    return true;
  }

  // What passes while the playback is held is no time.
  void WaitSlice(uint32_t left_ms, int32_t percent) {
    SleepMilliseconds(left_ms < kSlice_ms ? left_ms : kSlice_ms);
    if (IsSet(kPause)) {
      replayPace_.HoldTo(MillisecondClock());
    } else {
      replayPace_.PassTo(MillisecondClock(), percent);
    }
  }

  [[nodiscard]] bool HasBar() const { return LoadShared(state_.replay.bar) != 0; }
  [[nodiscard]] int32_t Pace_percent() const { return LoadShared(state_.replay.pace_percent); }
  [[nodiscard]] uint32_t GivenPace_ms() const {
    return static_cast<uint32_t>(LoadShared(state_.playbackPace));
  }

  // Holds a ping of the second file back that is ahead of the first. False when something else goes before
  // it.
  bool AwaitFirst(const RecordedPing& ping) {
    if (side_.first || showNext_ || skipUntil_) return true;
    const auto longest_ms = 2 * GivenPace_ms();
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
    if (ping.begin < skipEnd_ && (!ping.hasTime || ping.time_ms < *skipUntil_)) return true;
    skipUntil_.reset();
    return false;
  }

  void ShowPing(const RecordedPing& ping) {
    const int64_t recorded_ms = rings_.PlaceInTime(ping);
    showNext_ = false;
    shown_ = ping.begin;
    if (side_.first) TellTime(ping);
    if (stepOn_ > 0 && --stepOn_ == 0 && LoadShared(state_.firstTime_ms) == kNoRecordedTime) leading_ = true;
    if (leading_) LeadSecond(recorded_ms, ping.begin, false);
    leading_ = false;
    rings_.Show(ping);
    if (side_.first) {
      report_.NotePosition(ping);
      report_.NoteTime(recorded_ms / 1000);
    }
    if (!report_.IsProgressDue(ping)) {
      if (HasBar()) history_.Add(rings_.PlaceOf(ping));
      return;
    }
    PostPlace();
    if (side_.first) report_.ShowSize(recording_.Size());
    history_.Add(rings_.PlaceOf(ping));
  }

  // To the second file. Where not each ping tells its time, the latest that did counts.
  void TellTime(const RecordedPing& ping) {
    if (ping.hasTime) {
      StoreShared(state_.firstTime_ms, ping.time_ms);
      StoreShared(state_.replay.time_ms, ping.time_ms);
    } else if (LoadShared(state_.firstTime_ms) == kNoPingYet) {
      StoreShared(state_.firstTime_ms, kNoRecordedTime);
    }
  }

  // Waits in slices, so that buttons and the slider are heard.
  void Pace(const RecordedPing& ping) {
    if (stepOn_ > 0 || IsPacedOtherwise(ping)) return;
    for (uint32_t left_ms = GivenPace_ms(); left_ms > 0 && !Interrupted();) {
      const uint32_t slice_ms = left_ms < kSlice_ms ? left_ms : kSlice_ms;
      SleepMilliseconds(slice_ms);
      left_ms -= slice_ms;
    }
  }

  // By real time, or by the first file's.
  [[nodiscard]] bool IsPacedOtherwise(const RecordedPing& ping) const {
    const bool real = Pace_percent() != kPaceAsGiven;
    if (side_.first) return real;
    const int64_t first_ms = LoadShared(state_.firstTime_ms);
    return pace_.IsBehind(first_ms) || (real && ping.hasTime && first_ms != kNoRecordedTime);
  }

  void BeginEnd() {
    atEnd_ = true;
    endTold_ = false;
    endSince_ms_ = MillisecondClock();
    PostPlace();
    if (side_.first) StoreShared(state_.firstTime_ms, kNoRecordedTime);
  }

  // The operator hears of the end at once, of a file that has grown meanwhile once it does so no more.
  void StayAtEnd() {
    const bool grows = HasBar() && recording_.Size() > openedSize_;
    const bool isEnd = !grows || MillisecondClock() - endSince_ms_ >= kStillGrows_ms;
    if (side_.first && isEnd && !endTold_) {
      endTold_ = true;
      if (!CompareExchangeShared(globals.playbackEnded, kPlaybackGrew,
                                 kPlaybackGoesOn))  // nobody has heard of it
        static_cast<void>(CompareExchangeShared(globals.playbackEnded, kPlaybackGoesOn, kPlaybackExhausted));
    }
    showNext_ = false;
    stepOn_ = 0;
    feeder_.FollowGrowth(HasBar());
    SleepMilliseconds(kHold_ms);
    replayPace_.HoldTo(MillisecondClock());
  }

  // The file has more, behind what was its end.
  void NoteGrowth() {
    if (!std::exchange(atEnd_, false) || !side_.first || !endTold_) return;
    if (CompareExchangeShared(globals.playbackEnded, kPlaybackExhausted, kPlaybackGoesOn)) return;
    static_cast<void>(CompareExchangeShared(globals.playbackEnded, kPlaybackGoesOn, kPlaybackGrew));
  }

  // Of a pair the first file is the one whose place and size are shown.
  void PostPlace() {
    if (!side_.first) return;
    if (HasBar()) recording_.Measure();
    StoreShared(state_.replay.position, recording_.Position());
    StoreShared(state_.replay.fileSize, recording_.Size());
    report_.PostPlace(LoadShared(side_.input), recording_);
  }

  PingSource& recording_;
  PingFeeder feeder_;
  PlayedRings rings_;
  FileReport report_;
  PlaybackHistory history_;
  PairPace pace_;
  bool showNext_ = false;  // a step or seek has not shown its ping yet
  bool leading_ = false;
  bool jumped_ = false;  // what was played last does not go back to the file's beginning
  uint64_t shown_ = 0;   // where the newest ping that was shown begins
  std::optional<int64_t> skipUntil_;
  uint64_t skipEnd_ = UINT64_MAX;  // a place at which it is looked for no longer
  ReplayPace replayPace_;
  int32_t stepOn_ = 0;         // so many pings are shown at once
  const uint64_t openedSize_;  // bytes
  bool atEnd_ = false;
  bool endTold_ = false;
  uint32_t endSince_ms_ = 0;
};

}  // namespace

std::unique_ptr<WorkerRun> MakePlayback(AppState& state, const WorkerSide& side, PingSource& recording) {
  return std::unique_ptr<WorkerRun>(new (std::nothrow) PlaybackRun(state, side, recording));
}

}  // namespace tw
