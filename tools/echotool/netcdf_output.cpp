#include "tools/echotool/netcdf_output.h"

#include <algorithm>
#include <cstring>

#include "base/bytes.h"
#include "playback/segy_format.h"
#include "tools/echotool/netcdf_header.h"
#include "tools/echotool/ping_values.h"

namespace tw::echotool {
namespace {

constexpr size_t kPiece = 32'768;  // samples laid out together
constexpr uint16_t kFirstLarge = 32'767;

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
  const auto time_ms = TimeOf(ping);
  if (!time_ms) return;
  first_ms = std::min(first_ms.value_or(*time_ms), *time_ms);
  last_ms = std::max(last_ms.value_or(*time_ms), *time_ms);
}

NetcdfWriter::NetcdfWriter(OutputFile& output, const NetcdfTold& told)
    : output_(output),
      channel_(told.channel),
      survey_(told.survey.channels[told.channel]),
      soundSpeed_mps_(told.recording.Kind().soundSpeed_mps),
      lowFrequency_hz_(told.recording.Told().low ? told.recording.Told().low->frequency_hz : 0),
      sampleType_(NetcdfSampleType(survey_)),
      hasRange_(NetcdfHasRange(survey_, soundSpeed_mps_)),
      contents_(NetcdfContents(told)) {}

bool NetcdfWriter::Prepare(std::string& error) {
  return LayOutCdf(contents_, layout_, error);
}

uint64_t NetcdfWriter::Size() const {
  const uint64_t range = hasRange_ ? sizeof(double) * uint64_t{survey_.longest} : 0;
  return layout_.header.size() + range + survey_.pings * layout_.recordSize;
}

bool NetcdfWriter::Begin() {
  return AppendBytes(output_, layout_.header) && (!hasRange_ || AppendRange());
}

bool NetcdfWriter::AppendRange() {
  const double step_m = static_cast<double>(soundSpeed_mps_) / 2.0 / survey_.sampling_hz;
  for (uint32_t i = 0; i < survey_.longest; ++i) {
    uint8_t* const out = output_.Room(sizeof(double));
    if (out == nullptr) return false;
    output_.Take(StoreCdfValue(out, CdfType::float64, i * step_m));
  }
  return true;
}

bool NetcdfWriter::AppendSamples(std::span<const uint16_t> samples) {
  while (!samples.empty()) {
    const auto piece = samples.first(std::min(samples.size(), kPiece));
    const size_t size = piece.size() * SizeOf(sampleType_);
    uint8_t* out = output_.Room(size);
    if (out == nullptr) return false;
    if (sampleType_ == CdfType::int16) {
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
  if (sampleType_ == CdfType::int16) samples += survey_.longest % 2;
  for (; samples != 0; --samples) {
    uint8_t* const out = output_.Room(sizeof(int32_t));
    if (out == nullptr) return false;
    output_.Take(StoreCdfValue(out, sampleType_, CdfFill(sampleType_)));
  }
  return true;
}

bool NetcdfWriter::Append(const RecordedPing& ping) {
  if (!Concerns(ping, channel_)) return true;
  changed_ = changed_ || pings_ == survey_.pings || ping.samples.size() > survey_.longest ||
             (!survey_.large && HasLargeSample(ping.samples));
  if (changed_) return true;
  ++pings_;
  uint8_t* const out = output_.Room(kNetcdfValuesSize);
  if (out == nullptr) return false;
  output_.Take(StoreNetcdfValues({ping, channel_, soundSpeed_mps_, lowFrequency_hz_}, out));
  return survey_.longest == 0 ||
         (AppendSamples(ping.samples) && AppendFill(survey_.longest - ping.samples.size()));
}

std::string NetcdfWriter::Emptiness() const {
  return changed_ || pings_ != survey_.pings ? "has changed while it was read" : "";
}

}  // namespace tw::echotool
