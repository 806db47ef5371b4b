#include "acquisition/live_worker.h"

#include <algorithm>
#include <memory>
#include <new>
#include <string>
#include <utility>

#include "acquisition/byte_source.h"
#include "acquisition/live_report.h"
#include "acquisition/record_file.h"
#include "acquisition/store_ping.h"
#include "acquisition/synthetic_pulse.h"
#include "acquisition/time_lines.h"
#include "acquisition/time_marks.h"
#include "acquisition/told_values.h"
#include "base/shared_value.h"
#include "gps/gps_fix.h"
#include "gps/nmea_build.h"
#include "platform/clock.h"
#include "platform/file.h"

namespace tw {
namespace {

constexpr uint32_t kSilenceLimit_ms = 60'000;
constexpr size_t kSentenceSize = 256;
constexpr int32_t kLongestInterval_ms = 3'600'000;
constexpr uint32_t kTick_ms = 100;

// What the worker knows of one channel.
struct Channel {
  Channel(AppState& state, RecordChannel channel)
      : record(channel), shared(ChannelOf(state, channel)), ring(WriterOfRing(state, channel)) {}

  RecordChannel record;
  ChannelView shared;
  RingWriter ring;
  uint32_t previous_ms = 0;
  uint32_t interval_ms = 0;  // measured; 0 until two pings have come
  bool begun = false;
  bool shown = false;  // a ping since the run began or went on
};

bool TellsIdentity(std::string_view block, const char* identity) {
  const std::string line = std::string("#DeviceID ") + identity + "\r\n";
  return block.find(line) != std::string_view::npos;
}

LiveContext ContextOf(const LiveStart& start) {
  const DeviceSettings& settings = start.settings;
  return {start.dual,
          settings.outputMode,
          settings.samplingFrequency_hz,
          settings.frequencyInUse_hz,
          settings.lowFrequency_hz,
          settings.virtualLowFrequency_hz,
          settings.highFrequency_hz};
}

// One run of the worker, from its start to its end. On the heap, since a worker that hangs may still be there
// when the next one starts.
class LiveRun final : private AwayWorker {
 public:
  LiveRun(AppState& state, const LiveStart& start)
      : state_(state),
        start_(start),
        form_(*start.form),
        settings_(start.settings),
        deviceFamily_(start.deviceFamily),
        context_(ContextOf(start)),
        runNumber_(start.runNumber),
        outputs_(LoadShared(state.outputs)),
        source_(start.port),
        lastPing_ms_(MillisecondClock()),
        reader_(form_.makeReader()),
        channels_{{state, RecordChannel::a}, {state, RecordChannel::b}},
        report_(state) {
    // A stream that sends no attitude shows none.
    ping_.header.pitch_deg = kNoAttitude;
  }

  // False without memory for it.
  [[nodiscard]] bool HasReader() const { return reader_ != nullptr; }

  void Run() {
    if (Stale()) return;
    Begin();
    while (!Stale() && !StopAsked() && Pass()) {
    }
    End();
  }

 private:
  void Begin() {
    MoveRing(channels_[1].ring, IndexOf(channels_[0].ring));
    StoreShared(globals.attitudePresent, 1);
  }

  // The event is auto-reset, so a poll that sees it must remember it, and a stale worker must not poll: the
  // event is the next one's.
  bool StopAsked() {
    stopped_ = stopped_ || WaitForEvent(state_.stopEvent, 0);
    return stopped_;
  }

  [[nodiscard]] bool Stale() const { return LoadShared(state_.runNumber) != runNumber_; }

  // One pass of the loop; false ends it.
  bool Pass() {
    const ReadResult result = ReadBlock(source_, *reader_);
    if (Stale()) return false;
    NotePause(result == ReadResult::nothing);
    report_.NoteOverruns(source_.Overruns());
    switch (result) {
      case ReadResult::failed:
        return LoseLink(true);
      case ReadResult::nothing:
        if (start_.rescue != nullptr && !source_.IsThere()) return LoseLink(true);
        NoteSilence();
        [[fallthrough]];
      case ReadResult::pending:
        return !IsAway() || LoseLink(false);
      case ReadResult::complete:
        fresh_ = true;
        TakeBlock(reader_->Block());
        return true;
    }
    return false;
  }

  // Between pings, set or measured; 0: not known yet.
  [[nodiscard]] uint32_t Interval_ms() const {
    const auto set_ms = static_cast<uint32_t>(std::clamp(settings_.pingInterval_ms, 0, kLongestInterval_ms));
    return std::max(set_ms, std::min(channels_[0].interval_ms, uint32_t{kLongestInterval_ms}));
  }

  // With a rescue alone; else NoteSilence has the word.
  [[nodiscard]] bool IsAway() const {
    if (start_.rescue == nullptr) return false;
    return MillisecondClock() - lastPing_ms_ > std::max(start_.silence_ms, 3 * Interval_ms());
  }

  // No device pauses in a message for longer than its pings are apart: the line was cut, and mended before it
  // counted as lost. The halves of two messages make none, and many forms have no checksum that would tell.
  // With a rescue alone.
  void NotePause(bool pauses) {
    constexpr uint32_t kLeast_ms = 200;  // more, so that a line that is only slow is not meant
    if (start_.rescue == nullptr) return;
    const uint32_t now_ms = MillisecondClock();
    if (!pauses) lastByte_ms_ = now_ms;
    if (Interval_ms() != 0 && now_ms - lastByte_ms_ > Interval_ms() + kLeast_ms) reader_->Break();
  }

  // False when that is the end of the run.
  bool LoseLink(bool failed) {
    if (start_.rescue == nullptr) {
      StoreShared(state_.linkLost, 1);
      return false;
    }
    heard_ = false;
    for (Channel& channel : channels_) channel.begun = channel.shown = false;  // the time away is no interval
    const Handle port = AwaitReturn(state_, start_, failed, *this);
    if (port == Handle::invalid) return false;
    if (!heard_) Hear(port);
    lastPing_ms_ = MillisecondClock();
    return true;
  }

  // What came before belongs to no ping that comes now.
  void Hear(Handle port) {
    source_.Hear(port);
    reader_->Break();
  }

  bool GivenUp() override {
    ShowNothing();
    return Stale() || StopAsked();
  }

  // A block of the form, that parses and tells the identity.
  bool Listen(Handle port, const char* identity) override {
    constexpr uint32_t kListen_ms = 2000;
    Hear(port);
    for (const uint32_t begin = MillisecondClock(); MillisecondClock() - begin < kListen_ms && !GivenUp();) {
      const ReadResult result = ReadBlock(source_, *reader_);
      if (result == ReadResult::failed) return false;
      if (result == ReadResult::nothing && !source_.IsThere()) return false;
      if (result != ReadResult::complete) continue;
      const std::string_view block = reader_->Block();
      if (!form_.parse(block, context_, ping_)) continue;
      if (identity != nullptr && !TellsIdentity(block, identity)) return false;
      ShowNothing();
      TakeBlock(block);
      heard_ = true;
      return true;
    }
    return false;
  }

  // A column of the time in which nothing came is black.
  void ShowNothing() {
    const uint32_t now_ms = MillisecondClock();
    if (Stale() || now_ms - blackSince_ms_ < kTick_ms) return;
    blackSince_ms_ = now_ms;
    image_.reach = 0;  // a slot without a ping
    StorePing(channels_[0].ring, image_, now_ms);
    if (context_.dual) StorePing(channels_[1].ring, image_, now_ms);
  }

  // The long silence that ends a run which does not wait for its device.
  void NoteSilence() {
    if (start_.rescue != nullptr) return;
    const uint32_t now_ms = MillisecondClock();
    if (fresh_) {
      silentSince_ms_ = now_ms;
      fresh_ = false;
    } else if (now_ms - silentSince_ms_ > kSilenceLimit_ms && LoadShared(state_.linkLost) == 0) {
      StoreShared(state_.linkLost, 1);
    }
  }

  void TakeBlock(std::string_view block) {
    if (!Parse(block)) return;
    const uint32_t now_ms = MillisecondClock();
    lastPing_ms_ = now_ms;
    StoreShared(state_.lastPing_ms, now_ms);
    if (!form_.HasSamples()) BeginPulsePing();
    ping_.header.timeOfWork_s = static_cast<uint32_t>(UnixMilliseconds() / 1000);
    const size_t sentences = TakePosition();
    TakePing(channels_[ping_.secondChannel ? 1 : 0], now_ms);
    if (ping_.bothChannels) TakeSecondAltitude(now_ms);
    Record(block, sentences, now_ms);
  }

  // What the block itself tells is told apart only when somebody wants it.
  [[nodiscard]] bool Parse(std::string_view block) {
    return outputs_ != nullptr ? ParseTelling(form_, block, context_, ping_, told_)
                               : form_.parse(block, context_, ping_);
  }

  void BeginPulsePing() {
    ping_.header.ping = ++globals.runningPing;
    ping_.header.samplingFrequency_hz = kGridFrequency_hz;
    ping_.header.sampleCount = 0;
  }

  // Into ring, published values and marks of its channel.
  void TakePing(Channel& channel, uint32_t now_ms) {
    MeasureInterval(channel, now_ms);
    ping_.header.range_m = RangeOf(channel);
    image_.Build(ping_.header, ping_.samples, ping_.factor);
    if (!form_.HasSamples()) {
      DrawPulse(image_, ping_.header.altitude_m, settings_.soundSpeed_mps);
    }
    const bool begins = !std::exchange(channel.shown, true);
    const int64_t ringTime = StorePing(channel.ring, image_, now_ms);
    if (begins) AddTimeLine(channel.shared.lines, {ringTime, ping_.header.timeOfWork_s, 0, L""});
    Publish(channel, now_ms);
    if (outputs_ != nullptr) outputs_->Offer(Facts(channel, now_ms));
    if (LoadShared(globals.timestampTicked) != 0) {
      AddMark(channel.shared.marks, MarksOf(channel), {ping_.header.timeOfWork_s, ringTime});
    }
  }

  [[nodiscard]] PingFacts Facts(const Channel& channel, uint32_t now_ms) const {
    PingFacts facts = FactsOf(ping_.header, told_, now_ms);
    facts.dual = context_.dual;
    facts.secondChannel = channel.record == RecordChannel::b;
    const Locked held(state_.gpsLock);
    facts.talkerGn = globals.gpsTalkerGn != 0;
    facts.fixUpdates = LoadShared(globals.gpsUpdates);
    facts.fix = globals.fix;
    return facts;
  }

  // The same ping again, as the second channel saw it.
  void TakeSecondAltitude(uint32_t now_ms) {
    const PingHeader first = ping_.header;
    ping_.header.altitude_m = ping_.altitudeLow_m;
    told_.altitude_m = ping_.altitudeLow_m;
    ping_.header.txFrequency_hz = context_.ChannelFrequency_hz(true);
    TakePing(channels_[1], now_ms);
    ping_.header = first;
  }

  void MeasureInterval(Channel& channel, uint32_t now_ms) {
    if (channel.begun && now_ms != channel.previous_ms) channel.interval_ms = now_ms - channel.previous_ms;
    channel.begun = true;
    channel.previous_ms = now_ms;
    StoreShared(globals.measuredPingInterval_ms, static_cast<float>(channel.interval_ms));
  }

  // Until two pings have come the interval that was set stands for the measured one.
  [[nodiscard]] int32_t MarksOf(const Channel& channel) const {
    if (channel.interval_ms == 0) return LoadShared(globals.marksAtStart);
    return MarkInterval(context_.dual ? kDualMarkPeriod_ms : kSingleMarkPeriod_ms, channel.interval_ms);
  }

  [[nodiscard]] float RangeOf(const Channel& channel) const {
    const FieldChannel fields = FieldsOf(channel.record, context_.dual, settings_, deviceFamily_);
    return static_cast<float>(RangeInMillimetres(settings_.*kRangeOf[fields])) / 1000.0f;
  }

  // Copies the position into the ping and builds its sentences at the place behind the block; returns their
  // length.
  size_t TakePosition() {
    Locked held(state_.gpsLock);
    PingHeader& header = ping_.header;
    header.gpsLatitude_rad = globals.gpsLatitude_rad;
    header.gpsLongitude_rad = globals.gpsLongitude_rad;
    header.gpsAltitude_m = static_cast<float>(globals.fix.elevation_m);
    header.gpsTime_s = globals.gpsTime_s;
    header.gpsPdop = globals.gpsPdop;
    header.gpsValid = globals.gpsQuality > 0 && HasPosition(globals.fix) ? 1 : 0;
    const bool gn = globals.gpsTalkerGn != 0;
    const size_t gga = BuildGga({sentences_, kSentenceSize}, globals.fix, gn);
    return gga + BuildRmc({sentences_ + gga, kSentenceSize}, globals.fix, gn);
  }

  void Publish(const Channel& channel, uint32_t now_ms) const {
    StoreShared(globals.pingCounter, ping_.header.ping);
    StoreShared(channel.shared.latestPing_ms, now_ms);
    StoreShared(channel.shared.latestAltitude_m, ping_.header.altitude_m);
  }

  // All of a ping in one write, so that nothing can come between its parts; by the writer, which counts what
  // is written and tells it.
  void Record(std::string_view block, size_t sentences, uint32_t now_ms) {
    const bool due = report_.IsDue(now_ms);
    if (!WaitForEvent(state_.recordingEvent, 0)) {
      if (due) report_.ShowPing(ping_.header, context_.dual);
      return;
    }
    if (BeginsPing()) ChangeRecordFiles(state_, runNumber_);
    const uint32_t recording = LoadShared(state_.recordingNumber);
    const bool second = ping_.secondChannel && !form_.SharesFile();
    const size_t size = form_.layOutRecord(block, ping_, {sentences_, sentences}, std::span(record_));
    const Recorded result = RecordPing(state_,
                                       {.channel = second ? RecordChannel::b : RecordChannel::a,
                                        .runNumber = runNumber_,
                                        .recording = recording,
                                        .emptyRun = form_.emptyRun,
                                        .any = recordedAny_,
                                        .tell = due},
                                       std::span(record_).first(size));
    recordedAny_ = recordedAny_ || result == Recorded::handedOver;
    if (due && result != Recorded::handedOver && !Stale()) report_.ShowSize(RecordedBytes(state_, recording));
  }

  // Both files of a pair change at the same ping, whose high channel comes first.
  bool BeginsPing() {
    const bool second = context_.dual && ping_.secondChannel;
    const bool secondAgain = std::exchange(lastWasSecond_, second) && second;
    return !second || secondAgain;
  }

  void End() {
    EndRecording(state_, runNumber_, form_.emptyRun, recordedAny_);
    if (!Stale()) CloseFile(ExchangeShared(state_.segyCompanionB, Handle::invalid));
  }

  AppState& state_;
  const LiveStart& start_;
  const StreamForm& form_;
  const DeviceSettings settings_;
  const DeviceFamily deviceFamily_;
  const LiveContext context_;
  const uint32_t runNumber_;
  PingSink* const outputs_;
  ByteSource source_;
  uint32_t lastPing_ms_;
  uint32_t lastByte_ms_ = 0;
  bool heard_ = false;  // the stream was taken up again without a command
  uint32_t blackSince_ms_ = 0;
  std::unique_ptr<StreamReader> reader_;
  Channel channels_[2];
  LiveReport report_;
  bool stopped_ = false;
  bool fresh_ = true;
  uint32_t silentSince_ms_ = 0;
  bool recordedAny_ = false;  // handed to the writer, in this run
  bool lastWasSecond_ = false;
  LivePing ping_{};
  ToldValues told_{};  // of the latest block, when there are outputs
  SlotImage image_{};
  char sentences_[2 * kSentenceSize];
  char record_[kMaxRecordSize];
};

}  // namespace

bool HandOver(AppState& state, const LiveStart& start) {
  auto* const laidOut = new (std::nothrow) LiveStart(start);
  delete ExchangeShared(state.liveStart, laidOut);
  return laidOut != nullptr;
}

void AcquisitionWorker(void* context) {
  AppState& state = *static_cast<AppState*>(context);
  const std::unique_ptr<const LiveStart> start(ExchangeShared(state.liveStart, nullptr));
  if (start == nullptr) return;
  const std::unique_ptr<LiveRun> run(new (std::nothrow) LiveRun(state, *start));
  if (run != nullptr && run->HasReader()) return run->Run();
  if (LoadShared(state.runNumber) != start->runNumber) return;
  PostStatusText(state, StatusPart::position, kWithoutMemoryText);
  StoreShared(state.linkLost, 1);  // the operator hears of it as of a dead line
}

}  // namespace tw
