#include "tools/echotool/netcdf_output.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "base/bytes.h"
#include "platform/file.h"
#include "playback/segy_format.h"
#include "tools/echotool/file_sum.h"
#include "tools/echotool/netcdf_header.h"
#include "tools/echotool/ping_copy.h"
#include "tools/echotool/ping_values.h"

namespace tw::echotool {
namespace {

constexpr size_t kPiece = 32'768;  // samples laid out together
constexpr uint16_t kFirstLarge = 32'767;
constexpr size_t kSumDigits = 64;
constexpr const char* kUnread = "cannot be read";
constexpr const char* kChanged = "has changed while it was read";

bool AppendBytes(OutputFile& output, std::string_view bytes) {
  while (!bytes.empty()) {
    const std::string_view piece = bytes.substr(0, kPiece);
    uint8_t* const out = output.Room(piece.size());
    if (out == nullptr) return false;
    std::memcpy(out, piece.data(), piece.size());
    output.Take(piece.size());
    bytes.remove_prefix(piece.size());
  }
  return true;
}

// Four at a time: a sample of 32,768 or more has the highest bit, and one of 32,767 gets it from one more.
bool HasLargeSample(std::span<const uint16_t> samples) {
  constexpr uint64_t kHighest = 0x8000'8000'8000'8000;
  constexpr uint64_t kOnes = 0x0001'0001'0001'0001;
  uint64_t seen = 0;
  for (uint64_t four; samples.size_bytes() >= sizeof four; samples = samples.subspan(4)) {
    std::memcpy(&four, samples.data(), sizeof four);
    seen |= four | ((four & ~kHighest) + kOnes);
  }
  for (const uint16_t sample : samples) seen |= sample >= kFirstLarge ? kHighest : 0;
  return (seen & kHighest) != 0;
}

}  // namespace

void ChannelSurvey::Add(const RecordedPing& ping) {
  if (pings++ == 0) sampling_hz = ping.header.samplingFrequency_hz;
  sameSampling = sameSampling && ping.header.samplingFrequency_hz == sampling_hz;
  longest = std::max(longest, static_cast<uint32_t>(ping.samples.size()));
  large = large || HasLargeSample(ping.samples);
}

bool Concerns(const RecordedPing& ping, int32_t channel) {
  return ping.channel == channel || (channel == 1 && ping.bothChannels);
}

void RecordingSurvey::Add(const RecordedPing& ping) {
  for (int32_t channel = 0; channel < 2; ++channel)
    if (Concerns(ping, channel)) channels[channel].Add(ping);
  const auto time_ms = clock.TimeOf(ping);
  if (!time_ms) return;
  first_ms = std::min(first_ms.value_or(*time_ms), *time_ms);
  last_ms = std::max(last_ms.value_or(*time_ms), *time_ms);
}

bool ChannelSurvey::Holds(const ChannelSurvey& other) const {
  return other.longest <= longest && (large || !other.large) && (!sameSampling || other.sameSampling) &&
         (!sameSampling || other.pings == 0 || other.sampling_hz == sampling_hz);
}

NetcdfWriter::NetcdfWriter(OutputFile& output, const NetcdfTold& told, NetcdfFiles files)
    : output_(output),
      recording_(told.recording),
      name_(told.name),
      channel_(told.channel),
      files_(std::move(files)),
      lowFrequency_hz_(told.recording.Told().low ? told.recording.Told().low->frequency_hz : 0),
      survey_(told.survey) {}

bool NetcdfWriter::Prepare(std::string& error) {
  if (survey_.sha256.empty()) survey_.sha256.assign(kSumDigits, '0');  // as long as the sum
  return LayOutCdf(NetcdfContents({recording_, survey_, name_, channel_}), layout_, error);
}

uint64_t NetcdfWriter::Size() const {
  const bool hasRange = NetcdfHasRange(Laid(), SoundSpeed_mps());
  return layout_.header.size() + (hasRange ? sizeof(double) * uint64_t{Laid().longest} : 0) +
         Laid().pings * layout_.recordSize;
}

bool NetcdfWriter::Begin() {
  found_ = {};
  clock_ = {};
  fits_ = true;
  return AppendBytes(output_, layout_.header) && AppendRange();
}

bool NetcdfWriter::Append(const RecordedPing& ping) {
  if (!Concerns(ping, channel_)) return true;
  found_.Add(ping);
  fits_ = fits_ && Laid().Holds(found_);
  if (!fits_) return true;
  uint8_t* const out = output_.Room(kNetcdfValuesSize);
  if (out == nullptr) return false;
  output_.Take(
      StoreNetcdfValues({ping, clock_.TimeOf(ping), channel_, SoundSpeed_mps(), lowFrequency_hz_}, out));
  return Laid().longest == 0 ||
         (AppendSamples(ping.samples) && AppendFill(Laid().longest - ping.samples.size()));
}

bool NetcdfWriter::End() {
  if (!survey_.whole) return Complete();
  if (!fits_ || found_.pings != Laid().pings) fault_ = kChanged;
  return output_.Flush();
}

// Now that all pings are known.
bool NetcdfWriter::Complete() {
  survey_.whole = true;
  survey_.channels[channel_] = found_;
  survey_.samplingAssumed = recording_.IsSamplingAssumed();
  const auto sum = SumOfFile(files_.recording, files_.interrupted);
  if (!sum || sum->size != recording_.Size()) {
    fault_ = sum ? kChanged : kUnread;
    return true;
  }
  survey_.sha256 = sum->digits;
  const size_t size = layout_.header.size();
  if (!Prepare(fault_)) return true;
  return fits_ && layout_.header.size() == size ? CompleteHeader() : WriteAnew();
}

bool NetcdfWriter::CompleteHeader() {
  return output_.Flush() && SeekFile(files_.output, 0) && AppendBytes(output_, layout_.header) &&
         output_.Flush();
}

bool NetcdfWriter::WriteAnew() {
  if (!output_.Flush() || !SeekFile(files_.output, 0) || !TruncateFile(files_.output, 0) || !Begin())
    return false;
  RecordingFault fault = RecordingFault::none;
  const auto recording = OpenRecording(files_.recording.c_str(), fault);
  if (recording != nullptr) recording->SetInterruption(InterruptionBy(files_.interrupted));
  for (RecordedPing ping{}; recording != nullptr && !files_.interrupted.load() && recording->Next(ping);) {
    if (!Append(ping)) return false;
  }
  if (recording == nullptr || recording->Failed()) fault_ = kUnread;
  return fault_.empty() ? End() : true;
}

bool NetcdfWriter::AppendRange() {
  if (!NetcdfHasRange(Laid(), SoundSpeed_mps())) return true;
  const double step_m = static_cast<double>(SoundSpeed_mps()) / 2.0 / Laid().sampling_hz;
  for (uint32_t i = 0; i < Laid().longest; ++i) {
    uint8_t* const out = output_.Room(sizeof(double));
    if (out == nullptr) return false;
    output_.Take(StoreCdfValue(out, CdfType::float64, i * step_m));
  }
  return true;
}

bool NetcdfWriter::AppendSamples(std::span<const uint16_t> samples) {
  const CdfType type = NetcdfSampleType(Laid());
  while (!samples.empty()) {
    const auto piece = samples.first(std::min(samples.size(), kPiece));
    const size_t size = piece.size() * SizeOf(type);
    uint8_t* out = output_.Room(size);
    if (out == nullptr) return false;
    if (type == CdfType::int16) {
      StoreSegySamples(piece, out);
    } else {
      for (const uint16_t sample : piece) {
        StoreBe(out, int32_t{sample});
        out += sizeof(int32_t);
      }
    }
    output_.Take(size);
    samples = samples.subspan(piece.size());
  }
  return true;
}

// The padding of a record of shorts is filled as well.
bool NetcdfWriter::AppendFill(size_t samples) {
  const CdfType type = NetcdfSampleType(Laid());
  if (type == CdfType::int16) samples += Laid().longest % 2;
  for (; samples != 0; --samples) {
    uint8_t* const out = output_.Room(sizeof(int32_t));
    if (out == nullptr) return false;
    output_.Take(StoreCdfValue(out, type, CdfFill(type)));
  }
  return true;
}

}  // namespace tw::echotool
