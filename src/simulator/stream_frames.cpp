// Echo samples in binary, little-endian. The device's own block, one channel of a ping:
//
//    0  "TIDEWRITEC"
//   10  uint32  length of the whole block
//   14  uint32  device time, seconds         18  uint32  milliseconds
//   22  uint32  ping number
//   26  float   altitude, m                  30  float   temperature
//   34  float   pitch, degrees               38  float   roll
//   42  int32   0: 16-bit samples, 1: 8-bit companded samples
//   46  int32   number of samples
//   50  int32   range, mm
//   54  int32   transmit frequency, Hz       58  int32   sampling frequency, Hz
//   62  samples
//
// The frame of recordings, which a device can be told to send instead ("TR57" for one or both channels, the
// samples channel by channel; "DUAL" for one channel of a device with two):
//
//    0  "TR57"                                4  uint32  header length: 88
//   16  uint32  time, seconds since 1970     20  uint32  ping number
//   24  uint32  sampling frequency, Hz       32  uint32  samples of one channel
//   36  float   range, m                     40  int32   transmit frequency, Hz
//   48  float   altitude, m                  52  float   temperature
//   56  float   pitch, degrees               60  float   roll
//   64  position, 24 bytes: zero, the device knows none; so is all else
//   88  samples
//
// Companding: codes up to 63 are the amplitude itself; above, each 32 codes double what the 32 before them
// covered: 95 is 127, 127 is 255, 223 is 2047, 255 is 4095.
#include <array>

#include "base/bytes.h"
#include "simulator/stream_forms.h"

namespace tw::sim {
namespace {

constexpr size_t kBlockHeader = 62;
constexpr size_t kFrameHeader = 88;

constexpr auto kExpanded = [] {
  std::array<uint16_t, 256> table{};
  uint32_t value = 0;
  for (uint32_t code = 0; code < table.size(); ++code) {
    table[code] = static_cast<uint16_t>(value);
    value += code < 63 ? 1u : 2u << ((code - 63) / 32);
  }
  return table;
}();
static_assert(kExpanded[63] == 63 && kExpanded[64] == 65 && kExpanded[95] == 127 && kExpanded[96] == 131);
static_assert(kExpanded[127] == 255 && kExpanded[223] == 2'047 && kExpanded[255] == 4'095);

// The loudest code that is not above the amplitude.
constexpr auto kCompanded = [] {
  std::array<uint8_t, 4'096> table{};
  uint32_t code = 0;
  for (uint32_t amplitude = 0; amplitude < table.size(); ++amplitude) {
    while (code < 255 && kExpanded[code + 1] <= amplitude) ++code;
    table[amplitude] = static_cast<uint8_t>(code);
  }
  return table;
}();

// Writes the fields of a header by their offsets.
class HeaderWriter {
 public:
  HeaderWriter(std::string_view magic, size_t length, StreamMessage& out) : out_(out) {
    out.binary = true;
    out.bytes.assign(magic.begin(), magic.end());
    out.bytes.resize(length);
  }

  void Plain(size_t offset, uint32_t value) { StoreLe<uint32_t>(out_.bytes.data() + offset, value); }
  void Count(size_t offset, size_t value) {
    Plain(offset, static_cast<uint32_t>(value));
    out_.fields.push_back({offset, sizeof(uint32_t), FieldKind::count});
  }
  // The nearest float of a decimal value.
  void Decimal(size_t offset, int32_t value, double scale) {
    StoreLeFloat(out_.bytes.data() + offset, static_cast<float>(value / scale));
    out_.fields.push_back({offset, sizeof(float), FieldKind::decimal});
  }

 private:
  StreamMessage& out_;
};

void AppendWords(std::span<const uint16_t> samples, std::vector<uint8_t>& out) {
  const size_t begin = out.size();
  out.resize(begin + samples.size() * 2);
  uint8_t* at = out.data() + begin;
  for (const uint16_t sample : samples) {
    StoreLe<uint16_t>(at, sample);
    at += 2;
  }
}

void BeginBlock(const PingReport& ping, uint32_t format, size_t bytesPerSample, StreamMessage& out) {
  HeaderWriter header("TIDEWRITEC", kBlockHeader, out);
  header.Count(10, kBlockHeader + ping.samples.size() * bytesPerSample);
  header.Plain(14, ping.time_s);
  header.Plain(18, ping.time_ms);
  header.Plain(22, ping.number);
  header.Decimal(26, ping.altitude_mm, 1'000.0);
  header.Decimal(30, ping.temperature_centi, 100.0);
  header.Decimal(34, ping.pitch_centi, 100.0);
  header.Decimal(38, ping.roll_centi, 100.0);
  header.Count(42, format);
  header.Count(46, ping.samples.size());
  header.Plain(50, static_cast<uint32_t>(ping.range_mm));
  header.Plain(54, static_cast<uint32_t>(ping.txFrequency_hz));
  header.Count(58, static_cast<size_t>(ping.samplingFrequency_hz));
}

void AppendAnyFrame(std::string_view magic, const PingReport& ping, StreamMessage& out) {
  HeaderWriter header(magic, kFrameHeader, out);
  header.Count(4, kFrameHeader);
  header.Plain(16, ping.time_s);
  header.Plain(20, ping.number);
  header.Count(24, static_cast<size_t>(ping.samplingFrequency_hz));
  header.Count(32, ping.samples.size() / static_cast<size_t>(ping.channels));
  header.Decimal(36, ping.range_mm, 1'000.0);
  header.Plain(40, static_cast<uint32_t>(ping.txFrequency_hz));
  header.Decimal(48, ping.altitude_mm, 1'000.0);
  header.Decimal(52, ping.temperature_centi, 100.0);
  header.Decimal(56, ping.pitch_centi, 100.0);
  header.Decimal(60, ping.roll_centi, 100.0);
  AppendWords(ping.samples, out.bytes);
}

void AppendDeviceBlock(const PingReport& ping, const BlockShape& /*shape*/, StreamMessage& out) {
  BeginBlock(ping, 0, 2, out);
  AppendWords(ping.samples, out.bytes);
}

void AppendCompandedBlock(const PingReport& ping, const BlockShape& /*shape*/, StreamMessage& out) {
  BeginBlock(ping, 1, 1, out);
  const size_t begin = out.bytes.size();
  out.bytes.resize(begin + ping.samples.size());
  uint8_t* at = out.bytes.data() + begin;
  for (const uint16_t sample : ping.samples) *at++ = Compand(sample);
}

void AppendFrame(const PingReport& ping, const BlockShape& /*shape*/, StreamMessage& out) {
  AppendAnyFrame("TR57", ping, out);
}

void AppendDualFrame(const PingReport& ping, const BlockShape& /*shape*/, StreamMessage& out) {
  AppendAnyFrame("DUAL", ping, out);
}

constexpr StreamMode kFirstFamily[] = {
    {100, StreamKind::block, AppendDeviceBlock, 12, 0, true, false},
    {101, StreamKind::compandedBlock, AppendCompandedBlock, 12, 0, true, false},
};

constexpr StreamMode kOtherFamilies[] = {
    {100, StreamKind::block, AppendDeviceBlock, 10, 0, true, false},
    {101, StreamKind::compandedBlock, AppendCompandedBlock, 12, 0, true, false},
};

}  // namespace

const StreamRows kBlockRows{kFirstFamily, kOtherFamilies};

const StreamMode kFrame = {100, StreamKind::frame, AppendFrame, 12, 0, true, true};
const StreamMode kDualFrame = {100, StreamKind::frame, AppendDualFrame, 12, 0, true, false};

uint8_t Compand(uint16_t amplitude) {
  return kCompanded[amplitude & 0xFFF];
}

uint16_t Expand(uint8_t code) {
  return kExpanded[code];
}

}  // namespace tw::sim
