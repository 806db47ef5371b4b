#include "acquisition/echo_frame.h"

#include <algorithm>
#include <cmath>
#include <cstring>

#include "base/bytes.h"

namespace tw {
namespace {

constexpr size_t kLengthEnd = frame::kHeaderLength + 4;

size_t NeededBytes(std::span<const uint8_t> bytes, uint64_t channels) {
  if (bytes.size() < kLengthEnd) return kLengthEnd;
  const uint64_t header = LoadLe<uint32_t>(bytes.data() + frame::kHeaderLength);
  if (header < kMinFrameHeader || header > kMaxFrameHeader) return kNoFrame;
  if (bytes.size() < kMinFrameHeader) return kMinFrameHeader;
  const uint64_t samples = LoadLe<uint32_t>(bytes.data() + frame::kSampleCount) * channels;
  const uint64_t total = header + samples * sizeof(uint16_t);
  return total + frame::kSampleGap <= kFrameBufferSize ? total : kNoFrame;
}

size_t NeededOfFrame(std::span<const uint8_t> bytes, int32_t channels) {
  return NeededBytes(bytes, channels == 2 ? 2 : 1);
}

size_t NeededOfDualFrame(std::span<const uint8_t> bytes, int32_t) {
  return NeededBytes(bytes, 1);
}

constexpr float PingHeader::*kNumbers[] = {
    &PingHeader::range_m,          &PingHeader::altitude_m,    &PingHeader::temperature_c,
    &PingHeader::pitch_deg,        &PingHeader::roll_deg,      &PingHeader::gpsLatitude_rad,
    &PingHeader::gpsLongitude_rad, &PingHeader::gpsAltitude_m, &PingHeader::gpsPdop};

// The header's values; what it does not hold, or is no finite number, as it was.
PingHeader HeaderOver(const PingHeader& previous, std::span<const uint8_t> bytes) {
  uint8_t whole[frame::kWrittenHeaderLength];
  StorePingHeader(whole, previous);
  std::memcpy(whole, bytes.data(), std::min(bytes.size(), sizeof whole));
  PingHeader header = LoadPingHeader(whole);
  for (const auto number : kNumbers) {
    if (!std::isfinite(header.*number)) header.*number = previous.*number;
  }
  return header;
}

template <const FrameFormat& format>
std::unique_ptr<StreamReader> MakeReader() {
  return NewReader<FrameReader>(format);
}

// The device's time stands in frames that were made of its blocks; others tell the time of work.
bool ParseFrame(std::string_view block, const LiveContext& context, LivePing& ping) {
  const PingHeader& header = ping.header;
  const size_t count = ParseEchoFrame(block, ping.header, std::span<uint16_t>(ping.buffers[0]));
  ping.samples = std::span<const uint16_t>(ping.buffers[0]).first(count);
  ping.factor = 1;
  ping.secondChannel = context.IsSecondChannel(header.txFrequency_hz);
  const bool device = header.deviceSeconds != 0 || header.deviceMilliseconds != 0;
  ping.hasDeviceTime = true;
  ping.deviceSeconds = device ? header.deviceSeconds : header.timeOfWork_s;
  ping.deviceMilliseconds = device ? header.deviceMilliseconds : 0;
  return true;
}

template <const FrameFormat& format>
constexpr StreamForm FrameStream(const char* name) {
  return {.name = name,
          .makeReader = MakeReader<format>,
          .parse = ParseFrame,
          .layOutRecord = LayOutFrameRecord,
          .isText = false,
          .dualAttitude = true,
          .emptyRun = EmptyRun::leaveOneByte};
}

}  // namespace

const FrameFormat kEchoFrames{{frame::kMagic, frame::kMagicSize}, NeededOfFrame};
const FrameFormat kDualEchoFrames{{frame::kDualMagic, frame::kMagicSize}, NeededOfDualFrame};

const StreamForm kFrameStream = FrameStream<kEchoFrames>("binary echo frames");
const StreamForm kDualFrameStream = FrameStream<kDualEchoFrames>("binary echo frames of one channel");

size_t ParseEchoFrame(std::string_view bytes, PingHeader& header, std::span<uint16_t> samples) {
  const std::span<const uint8_t> frame(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  if (frame.size() < kMinFrameHeader) return 0;
  const size_t length = LoadLe<uint32_t>(frame.data() + frame::kHeaderLength);
  if (length < kMinFrameHeader || length > frame.size()) return 0;
  header = HeaderOver(header, frame.first(length));
  const uint8_t* const first = frame.data() + length;
  const size_t count = std::min((frame.size() - length) / 2, samples.size());
  LoadLeNumbers(samples.first(count), first);
  return count;
}

size_t LayOutEchoFrame(const PingHeader& header, std::span<const uint16_t> samples, uint8_t* bytes) {
  StorePingHeader(bytes, header);
  StoreLeNumbers(bytes + frame::kWrittenHeaderLength, samples);
  return frame::kWrittenHeaderLength + 2 * samples.size();
}

size_t LayOutFrameRecord(std::string_view, const LivePing& ping, std::string_view,
                         std::span<char, kMaxRecordSize> record) {
  return LayOutEchoFrame(ping.header, ping.samples, reinterpret_cast<uint8_t*>(record.data()));
}

}  // namespace tw
