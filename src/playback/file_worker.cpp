#include "playback/file_worker.h"

#include <memory>
#include <new>

#include "acquisition/ping_ring.h"
#include "acquisition/record_file.h"
#include "acquisition/store_ping.h"
#include "acquisition/synthetic_pulse.h"
#include "acquisition/time_marks.h"
#include "app/posts.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "gps/position_text.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "platform/thread.h"
#include "playback/converter.h"
#include "playback/history.h"
#include "playback/ping_source.h"

namespace tw {
namespace {

constexpr uint32_t kHold_ms = 10;
constexpr uint32_t kSlice_ms = 20;
constexpr uint32_t kPlaybackProgress_ms = 20;
constexpr uint32_t kConversionProgress_ms = 5;
constexpr uint32_t kNoPositionPeriod_ms = 2'000;
constexpr int64_t kCapturePeriod_s = 135;
constexpr int64_t kTick_ms = 100;
constexpr uint32_t kUpdatesOfPositionText = 2;
constexpr int32_t kFix3d = 3;
constexpr size_t kSmallStep = 20;
constexpr size_t kLargeStep = 100;
constexpr int32_t kSegyConversion = 1;

// What belongs to one of the two workers.
struct Side {
  bool first;
  Handle& input;
  Handle& thread;
  Event& stop;
  StatusTexts& texts;
};

// One channel's ring and what is known of its pings.
struct Channel {
  RingWriter ring;
  MarkList& marks;
  int64_t previous_ms = 0;
  uint32_t interval_ms = 0;
  bool begun = false;
};

class FileRun {
 public:
  FileRun(AppState& state, const Side& side)
      : state_(state),
        side_(side),
        runNumber_(LoadShared(state.runNumber)),
        conversion_(LoadShared(state.conversionKind)),
        channels_{{{state.ringA, &state.ringIndexA, &state.ringLockA, globals.slotReachA}, globals.marksA},
                  {{state.ringB, &state.ringIndexB, &state.ringLockB, globals.slotReachB}, globals.marksB}} {}

  void Run() {
    const bool prepared = Prepare();
    const bool exhausted = prepared && Play();
    if (Stale()) return;
    if (!prepared && side_.first && conversion_ == 0) StoreShared(globals.playbackEnded, 1);
    Finish(exhausted);
  }

 private:
  [[nodiscard]] bool Stale() const { return LoadShared(state_.runNumber) != runNumber_; }

  // The event is auto-reset, so a poll that sees it must remember it.
  [[nodiscard]] bool StopAsked() {
    stopped_ = stopped_ || WaitForEvent(side_.stop, 0) || WaitForEvent(state_.runEvents[kStopPlayback], 0);
    return stopped_;
  }

  bool Prepare() {
    RecordingFault fault = RecordingFault::none;
    source_ = MakeRecording(LoadShared(side_.input), fault, state_.settings.samplingFrequency_hz);
    const bool unreadable = source_ == nullptr && fault != RecordingFault::noMemory;
    if (unreadable) return false;  // it was readable when it was chosen
    if (source_ == nullptr || !history_.Prepare() || !PrepareConversion()) {
      Show(StatusPart::position, L"Insufficient memory!");
      return false;
    }
    StoreShared(globals.attitudePresent, 1);
    return true;
  }

  bool PrepareConversion() {
    if (conversion_ == 0) return true;
    output_.reset(new (std::nothrow) OutputFile(LoadShared(state_.segyCompanionA)));
    if (output_ == nullptr) return false;
    if (conversion_ == kSegyConversion) {
      converter_ =
          std::make_unique<SegyConverter>(*output_, globals.segyTextHeader, source_->Kind().soundSpeed_mps);
    } else {
      converter_ = std::make_unique<TextConverter>(*output_);
    }
    return true;
  }

  // True when the input was exhausted.
  bool Play() {
    while (!Stale() && !StopAsked()) {
      if (conversion_ == 0 && Steer()) continue;
      RecordedPing ping{};
      if (!ended_ && source_->Next(ping)) {
        TakePing(ping);
        Pace();
      } else if (conversion_ != 0) {
        return !source_->Failed();
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
      return FollowTo(LoadShared(state_.stepTime_ms));
    }
    if (!WaitForEvent(state_.runEvents[kPause], 0)) return false;
    SleepMilliseconds(kHold_ms);
    return true;
  }

  bool StepAsked(RunEvent event) {
    if (!WaitForEvent(state_.runEvents[event], 0)) return false;
    Reset(state_.runEvents[event]);
    return true;
  }

  bool SeekTo(uint64_t position) {
    ended_ = !source_->Seek(position);
    following_ = true;  // the next ping's time is what the second file follows to
    return true;
  }

  bool Step(size_t entries) {
    const auto place = history_.StepBack(entries);
    if (!place) return true;
    GoTo(*place);
    LeadSecond(place->recorded_ms);
    PostPlace();
    return true;
  }

  void GoTo(const PlayedPlace& place) {
    ended_ = !source_->Seek(place.position);
    Channel& channel = channels_[side_.first ? 0 : 1];
    Locked held(*channel.ring.lock);
    *channel.ring.index = place.ringIndex;
    channel.ring.begun = false;
  }

  void LeadSecond(int64_t recorded_ms) {
    following_ = false;
    if (LoadShared(state_.inputFileB) == Handle::invalid) return;
    StoreShared(state_.stepTime_ms, recorded_ms);
    Signal(state_.runEvents[kStepSecond]);
  }

  // The second file goes on with its first ping at or after the first one's time.
  bool FollowTo(int64_t recorded_ms) {
    const auto place = history_.StepBackTo(recorded_ms);
    if (place) {
      GoTo(*place);
    } else {
      ended_ = !source_->Seek(0);
    }
    skipUntil_ms_ = recorded_ms;
    return true;
  }

  void TakePing(const RecordedPing& ping) {
    const int64_t recorded_ms = ping.hasTime ? ping.time_ms : recorded_ms_ + kTick_ms;
    recorded_ms_ = recorded_ms;
    if (recorded_ms < skipUntil_ms_) return;
    skipUntil_ms_ = INT64_MIN;
    if (following_) LeadSecond(recorded_ms);
    // Conversions first: what is shown of a ping changes nothing in the file.
    if (converter_ != nullptr && !ConvertPing(ping)) CloseOutput();
    const bool low = !side_.first || ping.channel != 0;
    StoreOne(channels_[low ? 1 : 0], ping, ping.header.altitude_m);
    if (ping.bothChannels) StoreOne(channels_[1], ping, ping.altitudeLow_m);
    Publish(ping, low);
    NotePosition(ping);
    Capture(recorded_ms / 1000);
    NoteProgress(ping, recorded_ms);
  }

  bool ConvertPing(const RecordedPing& ping) {
    return converter_->Append(ping.header, ping.samples) && output_->Flush();
  }

  void CloseOutput() {
    converter_.reset();
    CloseFile(ExchangeShared(state_.segyCompanionA, Handle::invalid));
  }

  void StoreOne(Channel& channel, const RecordedPing& ping, float altitude_m) {
    PingHeader header = ping.header;
    header.altitude_m = altitude_m;
    image_.Build(header, ping.samples, ping.factor);
    if (!source_->Kind().hasSamples) {
      DrawPulse(image_, static_cast<double>(altitude_m), static_cast<double>(state_.settings.soundSpeed_mps));
    }
    StorePing(channel.ring, image_, static_cast<uint32_t>(recorded_ms_));
    Mark(channel, header.timeOfWork_s);
  }

  void Mark(Channel& channel, uint32_t time_s) {
    if (channel.begun && recorded_ms_ > channel.previous_ms) {
      channel.interval_ms = static_cast<uint32_t>(recorded_ms_ - channel.previous_ms);
    }
    channel.begun = true;
    channel.previous_ms = recorded_ms_;
    if (LoadShared(globals.timestampTicked) == 0) return;
    const uint32_t period_ms = LoadShared(globals.dualMode) != 0 ? kDualMarkPeriod_ms : kSingleMarkPeriod_ms;
    AddMark(channel.marks, MarkInterval(period_ms, channel.interval_ms), time_s);
  }

  void Publish(const RecordedPing& ping, bool low) {
    StoreShared(globals.pingCounter, ping.header.ping);
    StoreShared(low ? globals.latestAltitudeLow_m : globals.latestAltitudeHigh_m, ping.header.altitude_m);
    if (ping.bothChannels) StoreShared(globals.latestAltitudeLow_m, ping.altitudeLow_m);
    StoreShared(low ? globals.playedFrequencyB_hz : globals.playedFrequencyA_hz, ping.header.txFrequency_hz);
  }

  void NotePosition(const RecordedPing& ping) {
    if (conversion_ != 0 || !side_.first) return;
    if (ping.hasPosition) {
      if (++positions_ - shownPositions_ < kUpdatesOfPositionText) return;
      shownPositions_ = positions_;
      auto& text = side_.texts.Next();
      FormatPosition(
          text, {kFix3d, ping.header.gpsLatitude_rad, ping.header.gpsLongitude_rad, ping.header.gpsPdop});
      PostStatusText(state_, StatusPart::position, text);
      return;
    }
    const uint32_t now_ms = MillisecondClock();
    if (noPositionShown_ && now_ms - noPosition_ms_ < kNoPositionPeriod_ms) return;
    noPositionShown_ = true;
    noPosition_ms_ = now_ms;
    Show(StatusPart::position, L"Position is not available");
  }

  // By recorded time, whatever the pace.
  void Capture(int64_t recorded_s) {
    if (conversion_ != 0 || !side_.first || LoadShared(globals.autoCaptureTicked) == 0) return;
    const int64_t last_s = LoadShared(globals.lastCapture_s);
    if (last_s >= 0 && recorded_s >= last_s && recorded_s - last_s <= kCapturePeriod_s) return;
    if (last_s >= 0 && recorded_s > last_s) StoreShared(globals.autoCaptureRequested, 1);
    StoreShared(globals.lastCapture_s, recorded_s);
  }

  void NoteProgress(const RecordedPing& ping, int64_t recorded_ms) {
    const uint32_t now_ms = MillisecondClock();
    const uint32_t period_ms = conversion_ != 0 ? kConversionProgress_ms : kPlaybackProgress_ms;
    if (progressBegun_ && now_ms - progress_ms_ < period_ms) return;
    progressBegun_ = true;
    progress_ms_ = now_ms;
    samples_ = static_cast<int32_t>(ping.samples.size());
    PostPlace();
    ShowSize();
    if (conversion_ != 0) return;
    const Channel& channel = channels_[side_.first ? 0 : 1];
    history_.Add({*channel.ring.index, ping.begin, recorded_ms});
  }

  // Of a pair the first file is the one whose place is shown. A mode without samples counts as one of 1.
  void PostPlace() {
    if (!side_.first) return;
    PostProgress(state_, {LoadShared(side_.input), kProgressSpan, samples_ > 0 ? samples_ : 1, 1,
                          source_->Position(), source_->Size()});
  }

  void ShowSize() {
    if (!side_.first) return;
    const uint64_t size = conversion_ != 0 ? output_->Size() : source_->Size();
    auto& text = side_.texts.Next();
    FormatWide(text, "File size: %llu%s", static_cast<unsigned long long>(size), "Bytes");
    PostStatusText(state_, conversion_ != 0 ? StatusPart::position : StatusPart::pingLine, text);
  }

  void Show(StatusPart part, const wchar_t* constant) { PostStatusText(state_, part, constant); }

  void NoteEnd() {
    if (!ended_) {
      ended_ = true;
      PostPlace();
      if (side_.first) StoreShared(globals.playbackEnded, 1);
    }
    SleepMilliseconds(kHold_ms);
  }

  // Waits in slices, so that buttons and the slider are heard.
  void Pace() {
    if (conversion_ != 0 || skipUntil_ms_ != INT64_MIN) return;
    for (uint32_t left_ms = static_cast<uint32_t>(state_.playbackPace); left_ms > 0 && !StopAsked();) {
      const uint32_t slice_ms = left_ms < kSlice_ms ? left_ms : kSlice_ms;
      SleepMilliseconds(slice_ms);
      left_ms -= slice_ms;
    }
  }

  void Finish(bool exhausted) {
    const Handle input = ExchangeShared(side_.input, Handle::invalid);
    source_.reset();
    static_cast<void>(SeekFile(input, 0));
    CloseFile(input);
    const Handle thread = ExchangeShared(side_.thread, Handle::null);
    if (conversion_ != 0) {
      if (output_ != nullptr) ShowSize();
      CloseOutput();
      StoreShared(state_.conversionKind, 0);
      PostConversionEnd(state_, exhausted);
    }
    CloseThread(thread);
  }

  AppState& state_;
  const Side side_;
  const uint32_t runNumber_;
  const int32_t conversion_;
  std::unique_ptr<PingSource> source_;
  std::unique_ptr<OutputFile> output_;
  std::unique_ptr<PingConverter> converter_;
  PlaybackHistory history_;
  Channel channels_[2];
  bool stopped_ = false;
  bool ended_ = false;
  bool following_ = false;
  int64_t skipUntil_ms_ = INT64_MIN;
  int64_t recorded_ms_ = 0;
  uint32_t positions_ = 0;
  uint32_t shownPositions_ = 0;
  bool noPositionShown_ = false;
  uint32_t noPosition_ms_ = 0;
  bool progressBegun_ = false;
  uint32_t progress_ms_ = 0;
  int32_t samples_ = 0;
  SlotImage image_{};
};

void RunFileWorker(AppState& state, const Side& side) {
  const std::unique_ptr<FileRun> run(new (std::nothrow) FileRun(state, side));
  if (run != nullptr) run->Run();
}

}  // namespace

void FileWorkerA(void* argument) {
  static constinit StatusTexts texts{};
  AppState& state = *static_cast<AppState*>(argument);
  RunFileWorker(state, {true, state.inputFileA, state.fileWorkerA, state.stopEvent, texts});
}

void FileWorkerB(void* argument) {
  static constinit StatusTexts texts{};
  AppState& state = *static_cast<AppState*>(argument);
  RunFileWorker(state, {false, state.inputFileB, state.fileWorkerB, state.stopEventB, texts});
}

void ClearRings(AppState& state) {
  ClearRing({state.ringA, &state.ringIndexA, &state.ringLockA, globals.slotReachA});
  ClearRing({state.ringB, &state.ringIndexB, &state.ringLockB, globals.slotReachB});
}

}  // namespace tw
