#include "playback/file_worker.h"

#include <iterator>
#include <memory>
#include <new>
#include <optional>

#include "acquisition/sample_grid.h"
#include "acquisition/store_ping.h"
#include "acquisition/synthetic_pulse.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "platform/thread.h"
#include "playback/converter.h"
#include "playback/file_report.h"
#include "playback/history.h"
#include "playback/pair_pace.h"
#include "playback/ping_source.h"
#include "playback/played_channel.h"
#include "playback/time_search.h"

namespace tw {
namespace {

constexpr uint32_t kHold_ms = 10;
constexpr uint32_t kSlice_ms = 20;
constexpr uint32_t kFollowSlice_ms = 4;
constexpr uint32_t kTellAgain_ms = 10;
constexpr uint32_t kThreadFieldWait_ms = 1;
constexpr int64_t kTimelessTick_ms = 100;
constexpr uint64_t kMillion = 1'000'000;
constexpr size_t kSmallStep = 20;
constexpr size_t kLargeStep = 100;

// What belongs to one of the two workers.
struct Side {
  bool first;
  Handle& input;
  Handle& thread;
  Event& stop;
  OwnTexts& texts;
};

struct WorkerEnd {
  bool exhausted;  // all of the input was read
  bool stopped;    // the operator wanted it
};

class FileRun {
 public:
  FileRun(AppState& state, const Side& side)
      : state_(state),
        side_(side),
        runNumber_(LoadShared(state.runNumber)),
        conversion_(ConversionUnderWay(state)),
        outputFile_(conversion_ == Conversion::none ? Handle::invalid : LoadShared(state.segyCompanionA)),
        channels_{{WriterOfRingA(state), globals.marksA}, {WriterOfRingB(state), globals.marksB}},
        report_(state, side.texts, conversion_ != Conversion::none) {}

  [[nodiscard]] bool Stale() const { return LoadShared(state_.runNumber) != runNumber_; }

  // True when the input was exhausted.
  bool Run() {
    const bool prepared = Prepare();
    const bool exhausted = prepared && Play();
    if (output_ != nullptr) ShowSize();
    if (conversion_ != Conversion::none) CloseOutput();
    if (failure_ != kPlaybackGoesOn && !Stale()) TellFailure();
    return exhausted;
  }

  // The operator wants it over: nobody waits for news of it.
  [[nodiscard]] bool Stopped() const { return stopped_; }

 private:
  // The event is auto-reset, so a poll that sees it must remember it.
  [[nodiscard]] bool StopAsked() {
    stopped_ = stopped_ || WaitForEvent(side_.stop, 0);
    return stopped_;
  }

  // A playback that fails leaves the program idle, which is for the GUI thread to do.
  void TellFailure() {
    PostStatusText(state_, StatusPart::position, PlaybackFailureText(failure_));
    if (conversion_ == Conversion::none) StoreShared(globals.playbackEnded, failure_);
  }

  [[nodiscard]] bool IsSet(RunEvent event) { return WaitForEvent(state_.runEvents[event], 0); }

  // Whether something waits that goes before the next ping.
  [[nodiscard]] bool Interrupted() {
    if (Stale() || StopAsked()) return true;
    if (conversion_ != Conversion::none) return false;
    if (!side_.first) return IsSet(kStepSecond);
    return LoadShared(state_.seekRequest) != 0 || IsSet(kBack20) || IsSet(kBack100);
  }

  bool Prepare() {
    RecordingFault fault = RecordingFault::none;
    source_ = MakeRecording(LoadShared(side_.input), fault, state_.settings.samplingFrequency_hz);
    const bool unreadable = source_ == nullptr && fault != RecordingFault::noMemory;
    failure_ = unreadable ? kPlaybackUnread : kPlaybackWithoutMemory;  // it was readable when it was chosen
    if (source_ == nullptr || !history_.Prepare() || !PrepareConversion()) return false;
    failure_ = kPlaybackGoesOn;
    source_->SetInterruption({[](void* run) { return static_cast<FileRun*>(run)->Interrupted(); }, this});
    StoreShared(globals.attitudePresent, 1);
    return true;
  }

  bool PrepareConversion() {
    if (conversion_ == Conversion::none) return true;
    output_.reset(new (std::nothrow) OutputFile(outputFile_));
    if (output_ == nullptr || output_->Failed()) return false;
    if (conversion_ == Conversion::segy) {
      converter_.reset(new (std::nothrow)
                           SegyConverter(*output_, globals.segyTextHeader, state_.settings.soundSpeed_mps));
    } else {
      converter_.reset(new (std::nothrow) TextConverter(*output_));
    }
    return converter_ != nullptr;
  }

  bool Play() {
    while (!Stale() && !StopAsked()) {
      if (conversion_ == Conversion::none && Steer()) continue;
      RecordedPing ping{};
      if (!ended_ && source_->Next(ping)) {
        if (!AwaitFirst(ping)) continue;
        TakePing(ping);
        Pace();
      } else if (Interrupted()) {
        continue;
      } else if (source_->Failed()) {
        failure_ = kPlaybackUnread;
        return false;
      } else if (conversion_ != Conversion::none) {
        return true;
      } else {
        NoteEnd();
      }
    }
    return false;
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
    ended_ = !positioned;
    showNext_ = true;
    again_ = false;
    skipUntil_.reset();
    if (side_.first)
      static_cast<void>(CompareExchangeShared(globals.playbackEnded, kPlaybackExhausted, kPlaybackGoesOn));
  }

  bool SeekTo(uint64_t position) {
    GoOnFrom(source_->Seek(position));
    StoreShared(state_.firstTime_ms, kNoPingYet);
    if (position == 0) {  // begun anew
      history_.Clear();
      source_->CountFrom(1);
    }
    for (size_t i = 0; i < std::size(channels_); ++i) {
      if (WritesChannel(i)) channels_[i].Jump();
    }
    leading_ = true;  // the next ping's time is what the second file follows to
    return true;
  }

  bool Step(size_t entries) {
    const auto place = history_.StepBack(entries);
    if (!place) return true;
    GoOnFrom(source_->Seek(place->position));
    StoreShared(state_.firstTime_ms, kNoPingYet);
    again_ = true;
    recorded_ms_ = place->recorded_ms;
    source_->CountFrom(place->number);
    RestoreRings(*place);
    leading_ = false;
    LeadSecond(place->recorded_ms, place->position, true);
    PostPlace();
    return true;
  }

  void RestoreRings(const PlayedPlace& place) {
    for (size_t i = 0; i < std::size(channels_); ++i) {
      if (WritesChannel(i)) channels_[i].GoBack(place.channels[i]);
    }
  }

  // A file of both channels has two rings, each file of a pair one.
  [[nodiscard]] bool WritesChannel(size_t channel) const {
    if (!side_.first) return channel == 1;
    return channel == 0 || source_->Kind().channels > 1;
  }

  void LeadSecond(int64_t recorded_ms, uint64_t position, bool back) {
    if (LoadShared(state_.inputFileB) == Handle::invalid) return;
    const uint64_t size = source_->Size();
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
    const bool timed = SeekToTime(*source_, recorded_ms);
    const auto share_ppm = static_cast<uint64_t>(LoadShared(state_.stepShare_ppm));
    GoOnFrom(timed || source_->Seek(source_->Size() / kMillion * share_ppm));
    if (timed) skipUntil_ = recorded_ms;
    pace_ = {};
    const auto place = back ? history_.StepBackTo(recorded_ms) : std::nullopt;
    if (place) {
      RestoreRings(*place);
    } else {
      Own().Jump();
    }
    return true;
  }

  // True for a ping ahead of the place that was looked for.
  bool IsSkipped(const RecordedPing& ping) {
    if (!skipUntil_) return false;
    if (!ping.hasTime || ping.time_ms < *skipUntil_) return true;
    skipUntil_.reset();
    return false;
  }

  // Without a recorded time each ping of a channel counts as one tick.
  int64_t TimeOf(const RecordedPing& ping, const PlayedChannel& channel) const {
    if (again_) return recorded_ms_;
    if (ping.hasTime) return ping.time_ms;
    return channel.HasPingAt(recorded_ms_) ? recorded_ms_ + kTimelessTick_ms : recorded_ms_;
  }

  void TakePing(const RecordedPing& ping) {
    if (IsSkipped(ping)) return;
    const bool low = !side_.first || ping.channel != 0;
    recorded_ms_ = TimeOf(ping, channels_[low ? 1 : 0]);
    again_ = false;
    showNext_ = false;
    if (side_.first) TellTime(ping);
    if (leading_) LeadSecond(recorded_ms_, ping.begin, false);
    leading_ = false;
    // Conversions first: what is shown of a ping changes nothing in the file.
    if (converter_ != nullptr && !ConvertPing(ping)) CloseOutput();
    StoreOne(channels_[low ? 1 : 0], ping, ping.header.altitude_m);
    if (ping.bothChannels) StoreOne(channels_[1], ping, ping.altitudeLow_m);
    Publish(ping, low);
    if (conversion_ == Conversion::none && side_.first) {
      report_.NotePosition(ping);
      report_.NoteTime(recorded_ms_ / 1000);
    }
    NoteProgress(ping);
  }

  // To the second file. Where not each ping tells its time, the latest that did counts.
  void TellTime(const RecordedPing& ping) {
    if (ping.hasTime) {
      StoreShared(state_.firstTime_ms, ping.time_ms);
    } else if (LoadShared(state_.firstTime_ms) == kNoPingYet) {
      StoreShared(state_.firstTime_ms, kNoRecordedTime);
    }
  }

  // The field is emptied when the operator clears "Record Data", which closes all files that are written.
  bool ConvertPing(const RecordedPing& ping) {
    if (LoadShared(state_.segyCompanionA) != outputFile_) return false;
    return converter_->Append(ping) && output_->Flush();
  }

  void StoreOne(PlayedChannel& channel, const RecordedPing& ping, float altitude_m) {
    PingHeader header = ping.header;
    header.altitude_m = altitude_m;
    image_.Build(header, ping.samples, ping.factor, RepeatOf(header));
    if (!source_->Kind().hasSamples) {
      DrawPulse(image_, static_cast<double>(altitude_m), static_cast<double>(state_.settings.soundSpeed_mps));
    }
    channel.Store(image_, recorded_ms_, header.timeOfWork_s);
  }

  // kept: how often samples are repeated is found once, at the first ping that tells its sampling frequency.
  size_t RepeatOf(const PingHeader& header) {
    const size_t own = GridRepeat(header.samplingFrequency_hz);
    if (repeat_ == 0) repeat_ = own;
    return own == 0 ? 0 : repeat_;
  }

  void Publish(const RecordedPing& ping, bool low) {
    StoreShared(globals.pingCounter, ping.header.ping);
    StoreShared(low ? globals.latestAltitudeLow_m : globals.latestAltitudeHigh_m, ping.header.altitude_m);
    if (ping.bothChannels) StoreShared(globals.latestAltitudeLow_m, ping.altitudeLow_m);
    StoreShared(low ? globals.playedFrequencyB_hz : globals.playedFrequencyA_hz, ping.header.txFrequency_hz);
  }

  void NoteProgress(const RecordedPing& ping) {
    if (!report_.IsProgressDue()) return;
    samples_ = ping.samples.size();
    PostPlace();
    ShowSize();
    if (conversion_ != Conversion::none) return;
    history_.Add({{channels_[0].Place(), channels_[1].Place()}, ping.begin, recorded_ms_, ping.header.ping});
  }

  // Of a pair the first file is the one whose place and size are shown.
  void PostPlace() {
    if (side_.first) report_.PostProgressOf(LoadShared(side_.input), *source_, samples_);
  }
  void ShowSize() {
    if (side_.first) report_.ShowSize(conversion_ != Conversion::none ? output_->Size() : source_->Size());
  }

  void NoteEnd() {
    if (!ended_) {
      ended_ = true;
      PostPlace();
      if (side_.first) {
        StoreShared(state_.firstTime_ms, kNoRecordedTime);
        static_cast<void>(CompareExchangeShared(globals.playbackEnded, kPlaybackGoesOn, kPlaybackExhausted));
      }
    }
    showNext_ = false;
    SleepMilliseconds(kHold_ms);
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

  // Waits in slices, so that buttons and the slider are heard.
  void Pace() {
    if (conversion_ != Conversion::none || skipUntil_) return;
    if (!side_.first && pace_.IsBehind(LoadShared(state_.firstTime_ms))) return;
    for (auto left_ms = static_cast<uint32_t>(LoadShared(state_.playbackPace));
         left_ms > 0 && !Interrupted();) {
      const uint32_t slice_ms = left_ms < kSlice_ms ? left_ms : kSlice_ms;
      SleepMilliseconds(slice_ms);
      left_ms -= slice_ms;
    }
  }

  void CloseOutput() {
    converter_.reset();
    StoreShared(state_.segyCompanionA, Handle::invalid);
    CloseFile(outputFile_);
    outputFile_ = Handle::invalid;
  }

  PlayedChannel& Own() { return channels_[side_.first ? 0 : 1]; }

  AppState& state_;
  const Side side_;
  const uint32_t runNumber_;
  const Conversion conversion_;
  Handle outputFile_;  // of a conversion
  std::unique_ptr<PingSource> source_;
  std::unique_ptr<OutputFile> output_;
  std::unique_ptr<PingConverter> converter_;
  PlaybackHistory history_;
  PlayedChannel channels_[2];
  FileReport report_;
  bool stopped_ = false;
  bool ended_ = false;
  bool showNext_ = false;  // a step or seek has not shown its ping yet
  bool again_ = false;     // the next ping is one that was played before
  bool leading_ = false;
  std::optional<int64_t> skipUntil_;
  PairPace pace_;
  PlaybackEnd failure_ = kPlaybackGoesOn;
  int64_t recorded_ms_ = 0;  // of the newest ping
  size_t repeat_ = 0;
  size_t samples_ = 0;
  SlotImage image_{};
};

// Again and again while the message queue is full. Whoever waits for this worker's end meanwhile need not be
// told.
void TellConversionEnd(AppState& state, const Side& side, WorkerEnd end) {
  while (!PostConversionEnd(state, end.exhausted)) {
    if (end.stopped || WaitForEvent(side.stop, kTellAgain_ms)) return;
  }
}

// The thread field goes last: whoever finds it empty may use the other fields anew. The GUI thread fills it
// once the thread has started, which a short run may precede.
void Finish(AppState& state, const Side& side, WorkerEnd end) {
  const Handle input = ExchangeShared(side.input, Handle::invalid);
  static_cast<void>(SeekFile(input, 0));
  CloseFile(input);
  if (ConversionUnderWay(state) != Conversion::none) {
    CloseFile(ExchangeShared(state.segyCompanionA, Handle::invalid));
    SetConversion(state, Conversion::none);
    TellConversionEnd(state, side, end);
  }
  Handle thread = ExchangeShared(side.thread, Handle::null);
  while (thread == Handle::null) {
    SleepMilliseconds(kThreadFieldWait_ms);
    thread = ExchangeShared(side.thread, Handle::null);
  }
  CloseThread(thread);
}

void RunFileWorker(AppState& state, const Side& side) {
  std::unique_ptr<FileRun> run(new (std::nothrow) FileRun(state, side));
  if (run == nullptr) {
    PostStatusText(state, StatusPart::position, PlaybackFailureText(kPlaybackWithoutMemory));
    if (ConversionUnderWay(state) == Conversion::none)
      StoreShared(globals.playbackEnded, kPlaybackWithoutMemory);
    return Finish(state, side, {});
  }
  const bool exhausted = run->Run();
  const WorkerEnd end{exhausted, run->Stopped()};
  const bool stale = run->Stale();
  run.reset();
  if (!stale) Finish(state, side, end);
}

}  // namespace

const wchar_t* PlaybackFailureText(PlaybackEnd end) {
  return end == kPlaybackWithoutMemory ? kWithoutMemoryText : L"The file cannot be read!";
}

void FileWorkerA(void* argument) {
  static constinit OwnTexts texts{};
  AppState& state = *static_cast<AppState*>(argument);
  RunFileWorker(state, {true, state.inputFileA, state.fileWorkerA, state.stopEvent, texts});
}

void FileWorkerB(void* argument) {
  static constinit OwnTexts texts{};
  AppState& state = *static_cast<AppState*>(argument);
  RunFileWorker(state, {false, state.inputFileB, state.fileWorkerB, state.stopEventB, texts});
}

}  // namespace tw
