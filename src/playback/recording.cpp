#include <algorithm>
#include <new>
#include <string_view>
#include <utility>

#include "acquisition/echo_text.h"
#include "acquisition/echo_text_stream.h"
#include "acquisition/nmea_depth.h"
#include "acquisition/output_mode.h"
#include "gps/gps_fix.h"
#include "gps/nmea_parser.h"
#include "gps/position_text.h"
#include "platform/owned_file.h"
#include "playback/detection.h"
#include "playback/file_source.h"
#include "playback/ping_source.h"
#include "playback/text_position.h"
#include "playback/text_sampling.h"

namespace tw {
namespace {

constexpr float kUsualSoundSpeed_mps = 1500.0f;

// kept: the digits behind the point are a number of their own, so ".5" is 5 hundredths. Receivers that send
// three digits mean milliseconds, which is seen from 100 on.
int64_t MillisecondsOf(const GpsTime& utc) {
  return utc.hundredth >= 100 ? utc.hundredth : int64_t{utc.hundredth} * 10;
}

std::string_view AsText(std::span<const uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

EchoTextKeys KeysOf(const StreamForm& form) {
  return &form == &kSecondTextStream ? EchoTextKeys::otherFamilies : EchoTextKeys::firstFamily;
}

// Of a file of both channels; else 0.
int32_t LowFrequencyOf(const Detected& told) {
  return told.low ? told.low->frequency_hz : 0;
}

// Whether an echo text's time of work has a fraction: converted texts have none.
bool TellsFraction(std::string_view block) {
  constexpr std::string_view kKey = "#TimeWork ";
  const size_t at = block.find(kKey);
  if (at == std::string_view::npos) return false;
  const size_t end = block.find_first_not_of("0123456789", at + kKey.size());
  return end != std::string_view::npos && block[end] == '.';
}

// A recording read through the same readers and parsers as the live stream that it was.
class Recording final : public PingSource {
 public:
  Recording(Handle file, const Detected& told, int32_t sampling_hz)
      : form_(*told.form),
        told_(told),
        kind_{told.form->name,         told.family,
              told.outputMode,         told.channels,
              told.form->HasSamples(), told.form->isText,
              told.info.has_value(),   told.info ? told.info->soundSpeed_mps : kUsualSoundSpeed_mps},
        context_{told.channels > 1,
                 told.outputMode,
                 sampling_hz,
                 told.info ? told.info->frequency_hz : 0,
                 LowFrequencyOf(told),
                 LowFrequencyOf(told),
                 told.info ? told.info->frequency_hz : 0,
                 !told.byInfo},
        range_m_(told.info ? static_cast<float>(RangeInMillimetres(told.info->range_mm)) / 1000.0f : 0.0f),
        source_(file),
        size_(source_.Size()),
        behind_(told.infoSize) {
    ForgetPing();
    parser_.talkerGn = false;
  }

  // False when there is no memory.
  [[nodiscard]] bool Prepare() {
    return source_.Ready() && MakeParser(parser_, kParserCapacity) && RenewReader();
  }

  // Whether the file can be read as what it was told to be: it holds a ping, and echo text that no settings
  // line tells of has the keys of this form. Such a file's first block tells the output mode.
  [[nodiscard]] bool IsAsTold() {
    RecordedPing first{};
    reach_ = kFirstPingReach;
    const bool found = Rewind() && Next(first);
    reach_ = UINT64_MAX;
    if (!found || told_.byInfo || !IsEchoText()) return found;
    if (KeysOfBlock(reader_->Block(), KeysOf(form_)) != KeysOf(form_)) return false;
    if (&PlayedMode(told_.family, ping_.outputMode).recorded == &form_)
      kind_.outputMode = context_.outputMode = told_.outputMode = ping_.outputMode;
    return true;
  }

  // From here on the file is closed with the recording.
  void Own(OwnedFile file) { owned_ = std::move(file); }

  [[nodiscard]] const RecordingKind& Kind() const override { return kind_; }
  [[nodiscard]] const Detected& Told() const override { return told_; }
  [[nodiscard]] bool IsSamplingAssumed() const override { return samplingAssumed_; }

  [[nodiscard]] bool Next(RecordedPing& ping) override {
    interrupted_ = false;
    const uint64_t ahead = behind_;
    PassFrequencyLine();
    while (ReadBlock()) {
      const uint64_t end = source_.Position();
      const uint64_t begin = end - reader_->LastPiece();
      if (begin < earliest_ || !form_.parse(reader_->Block(), context_, ping_)) continue;
      const uint64_t recordBegin = begin == behind_ ? ahead : begin;
      if (begin > behind_) skipped_ += begin - behind_;
      behind_ = end;
      Describe(begin, ping);
      ping.recordBegin = recordBegin;
      return true;
    }
    if (interrupted_) return false;
    size_ = source_.Size();
    if (size_ > behind_) skipped_ += size_ - behind_;
    behind_ = size_;
    return false;
  }

  // Lines without a mark of their own begin behind CR LF, and the first byte that a reader sees counts as one
  // too: so the two bytes ahead of the place are read as well, and an idle byte ahead of them.
  [[nodiscard]] bool Seek(uint64_t position) override {
    constexpr uint64_t kLineEnd = 2;
    behind_ = position;
    earliest_ = position;
    latest_ms_ = 0;
    const uint64_t from = position > kLineEnd ? position - kLineEnd : 0;
    if (!source_.Seek(from) || !RenewReader()) return false;
    static constexpr uint8_t kIdle[] = {' '};
    std::span<const uint8_t> idle(kIdle);
    return from == 0 || !reader_->Feed(idle);
  }

  void CountFrom(uint32_t number) override { nextNumber_ = number; }

  void SetInterruption(const Interruption& interruption) override { interruption_ = interruption; }

  [[nodiscard]] bool Rewind() override {
    size_ = source_.Size();
    skipped_ = 0;
    nextNumber_ = 1;
    samplingAssumed_ = false;
    ForgetPing();
    if (!Seek(0)) return false;
    behind_ = told_.infoSize;
    return true;
  }

  [[nodiscard]] bool Failed() const override { return source_.Failed(); }
  [[nodiscard]] bool WithoutMemory() const { return withoutMemory_; }
  [[nodiscard]] uint64_t Position() const override { return behind_; }
  [[nodiscard]] uint64_t Size() const override { return size_; }
  [[nodiscard]] uint64_t Skipped() const override { return skipped_; }
  void SetReadSize(uint32_t bytes) override { source_.SetReadSize(bytes); }
  void Measure() override { size_ = source_.Size(); }

 private:
  static constexpr size_t kParserCapacity = 1'024;

  // What a block does not tell stays as the one before told it: so the first one has nothing to keep.
  void ForgetPing() {
    ping_.header = PingHeader{};
    ping_.header.pitch_deg = kNoAttitude;  // a stream that sends no attitude shows none
    ping_.samples = {};
    ping_.secondChannel = ping_.bothChannels = ping_.hasDeviceTime = ping_.hasSampling = false;
    ping_.altitudeLow_m = ping_.resolution_mm = 0.0f;
    ping_.deviceSeconds = ping_.deviceMilliseconds = 0;
    ping_.channelFrequency_hz = 0;
  }

  // Reads until the reader has a whole block. Its last piece stood in the file up to source_.Position().
  bool ReadBlock() {
    while (source_.Position() < reach_) {
      if (source_.Bytes().empty() && interruption_.isAsked != nullptr &&
          interruption_.isAsked(interruption_.subject)) {
        interrupted_ = true;
        return false;
      }
      if (!source_.Fill()) return false;
      if (reader_->Feed(source_.Bytes())) return true;
    }
    return false;
  }

  // The line that was recorded ahead of an epoch, where the reader begins behind it: no damage.
  void PassFrequencyLine() {
    constexpr size_t kReach = 32;
    if (&form_ != &kSecondNmeaStream || behind_ < source_.Position()) return;
    const auto from = static_cast<size_t>(behind_ - source_.Position());
    const std::string_view ahead = AsText(source_.Ahead(std::min(from + kReach, FileSource::kMaxAhead)));
    if (ahead.size() <= from || !ahead.substr(from).starts_with("#F ")) return;
    const size_t end = ahead.find("\r\n", from);
    if (end != std::string_view::npos) behind_ += end + 2 - from;
  }

  bool RenewReader() {
    auto reader = form_.makeReader();
    withoutMemory_ = reader == nullptr;
    if (!withoutMemory_) reader_ = std::move(reader);
    return !withoutMemory_;
  }

  [[nodiscard]] bool IsEchoText() const { return form_.HasSamples() && form_.isText; }

  // A block that tells no sampling frequency has got the caller's.
  void InferSampling() {
    if (ping_.hasSampling) return;
    const float soundSpeed_mps = told_.info ? told_.info->soundSpeed_mps : 0.0f;
    const int32_t sampling_hz = SamplingOfResolution(soundSpeed_mps, ping_.resolution_mm);
    samplingAssumed_ = samplingAssumed_ || sampling_hz == 0;
    if (sampling_hz != 0) ping_.header.samplingFrequency_hz = static_cast<uint32_t>(sampling_hz);
  }

  void Describe(uint64_t begin, RecordedPing& ping) {
    PingHeader& header = ping_.header;
    if (IsEchoText()) InferSampling();
    if (!form_.HasSamples()) header.ping = nextNumber_++;
    if (form_.isText) header.range_m = range_m_;
    ping = RecordedPing{};
    ping.samples = ping_.samples;
    ping.factor = ping_.factor;
    ping.channel = ping_.secondChannel ? 1 : 0;
    ping.bothChannels = ping_.bothChannels;
    ping.altitudeLow_m = ping_.altitudeLow_m;
    ping.begin = begin;
    if (form_.isText) {
      TakePosition(ping);
    } else {
      TakeFramePosition(ping);
    }
    DropZeroPosition(ping);
    TakeTime(ping);
    ping.header = header;
  }

  void DropZeroPosition(RecordedPing& ping) {
    PingHeader& header = ping_.header;
    if (ping.latitude_rad != 0.0 || ping.longitude_rad != 0.0 || header.gpsAltitude_m != 0.0f) return;
    ping.hasPosition = false;
    ping.gpsQuality = 0;
    header.gpsValid = 0;
  }

  void TakeFramePosition(RecordedPing& ping) const {
    const PingHeader& header = ping_.header;
    ping.hasPosition = header.gpsValid > 0;
    ping.gpsQuality = ping.hasPosition ? 1 : 0;
    ping.latitude_rad = static_cast<double>(header.gpsLatitude_rad);
    ping.longitude_rad = static_cast<double>(header.gpsLongitude_rad);
  }

  // The sentences behind a ping belong to it; a converted text tells its position by itself.
  void TakePosition(RecordedPing& ping) {
    fix_ = GpsFix{};
    const SentenceTail tail = FindSentences(AsText(source_.Ahead(kSentenceReach)));
    if (tail.size != 0) {
      static_cast<void>(ParserPush(parser_, source_.Bytes().data(), tail.size));
      static_cast<void>(ApplyPackets(parser_, fix_));
    }
    behind_ += tail.size + tail.blanks;
    PingHeader& header = ping_.header;
    TextPosition told{};
    if (fix_.presence != 0) {
      ping.hasPosition = fix_.quality > 0;
      ping.gpsQuality = fix_.quality;
      ping.latitude_rad = RadiansFromDegreesMinutes(fix_.latitude);
      ping.longitude_rad = RadiansFromDegreesMinutes(fix_.longitude);
      header.gpsAltitude_m = static_cast<float>(fix_.elevation_m);
      header.gpsTime_s = UnixSecondsOfFix(fix_.utc);
      header.gpsPdop = static_cast<float>(fix_.hdop);
    } else if (form_.HasSamples() && FindTextPosition(reader_->Block(), told)) {
      ping.hasPosition = told.valid;
      ping.gpsQuality = told.valid ? 1 : 0;
      ping.latitude_rad = told.latitude_rad;
      ping.longitude_rad = told.longitude_rad;
      header.gpsAltitude_m = told.altitude_m;
      header.gpsPdop = told.pdop;
    }
    header.gpsValid = ping.hasPosition ? 1 : 0;
    header.gpsLatitude_rad = static_cast<float>(ping.latitude_rad);
    header.gpsLongitude_rad = static_cast<float>(ping.longitude_rad);
  }

  // The device's own time, else that of the receiver as far as it advances.
  void TakeTime(RecordedPing& ping) {
    PingHeader& header = ping_.header;
    if (ping_.hasDeviceTime) {
      ping.hasTime = true;
      ping.time_ms = int64_t{ping_.deviceSeconds} * 1000 + ping_.deviceMilliseconds;
      if (form_.isText) header.timeOfWork_s = ping_.deviceSeconds;
      ping.hasMilliseconds = form_.isText ? !form_.HasSamples() || TellsFraction(reader_->Block())
                                          : header.deviceSeconds != 0 || header.deviceMilliseconds != 0;
    } else if ((fix_.presence & kHasRmc) != 0) {
      const int64_t time_ms = int64_t{header.gpsTime_s} * 1000 + MillisecondsOf(fix_.utc);
      ping.hasTime = time_ms > latest_ms_;
      ping.time_ms = time_ms;
      ping.hasMilliseconds = true;
      if (ping.hasTime) latest_ms_ = time_ms;
      header.timeOfWork_s = header.gpsTime_s;
    }
  }

  OwnedFile owned_;  // closed with the recording; none where the caller closes it
  const StreamForm& form_;
  Detected told_;
  RecordingKind kind_;
  LiveContext context_;
  float range_m_;
  FileSource source_;
  std::unique_ptr<StreamReader> reader_;
  NmeaParser parser_{};
  GpsFix fix_{};
  LivePing ping_{};
  uint64_t size_;
  uint64_t behind_;  // of all that is accounted for
  uint64_t skipped_ = 0;
  uint32_t nextNumber_ = 1;  // of pings without one of their own
  int64_t latest_ms_ = 0;
  uint64_t earliest_ = 0;  // place of the first ping that is wanted
  uint64_t reach_ = UINT64_MAX;
  Interruption interruption_{};
  bool interrupted_ = false;
  bool samplingAssumed_ = false;
  bool withoutMemory_ = false;
};

// Null with the fault set when the file cannot be read in this way.
std::unique_ptr<Recording> TryWay(Handle file, const Detected& way, int32_t sampling_hz,
                                  RecordingFault& fault) {
  std::unique_ptr<Recording> recording(new (std::nothrow) Recording(file, way, sampling_hz));
  fault = RecordingFault::noMemory;
  if (recording == nullptr || !recording->Prepare()) return nullptr;
  const bool asTold = recording->IsAsTold();
  const bool failed = recording->Failed() || (asTold && !recording->Rewind());
  fault = recording->WithoutMemory() ? RecordingFault::noMemory
          : failed                   ? RecordingFault::unread
          : asTold                   ? RecordingFault::none
                                     : RecordingFault::noPing;
  return fault == RecordingFault::none ? std::move(recording) : nullptr;
}

std::unique_ptr<Recording> Make(Handle file, const Candidates& candidates, RecordingFault& fault,
                                int32_t sampling_hz) {
  fault = RecordingFault::unknown;
  for (const Detected& way : std::span(candidates.ways).first(candidates.count)) {
    auto recording = TryWay(file, way, sampling_hz, fault);
    if (recording != nullptr || fault != RecordingFault::noPing) return recording;
  }
  return nullptr;
}

}  // namespace

std::unique_ptr<PingSource> OpenRecording(const wchar_t* path, RecordingFault& fault, int32_t sampling_hz,
                                          WriteSharing sharing) {
  OwnedFile file(OpenFileForReading(path, sharing));
  fault = RecordingFault::notOpened;
  if (file.Get() == Handle::invalid) return nullptr;
  constexpr int kRetries = 0;
  auto recording = Make(file.Get(), CandidatesOf(file.Get(), kRetries), fault, sampling_hz);
  if (recording != nullptr) recording->Own(std::move(file));
  return recording;
}

std::unique_ptr<PingSource> MakeRecording(Handle file, const Candidates& candidates, RecordingFault& fault,
                                          int32_t sampling_hz) {
  return Make(file, candidates, fault, sampling_hz);
}

}  // namespace tw
