#include "acquisition/device_block.h"

#include <cmath>

#include "acquisition/sample_grid.h"
#include "base/bytes.h"

namespace tw {
namespace {

using namespace device_block;

constexpr size_t kLengthEnd = kTotalLength + 4;

size_t NeededBytes(std::span<const uint8_t> bytes, int32_t) {
  if (bytes.size() < kLengthEnd) return kLengthEnd;
  const size_t total = LoadLe<uint32_t>(bytes.data() + kTotalLength);
  if (total < kSamples || total > kFrameBufferSize) return kNoFrame;
  if (bytes.size() < kSamples) return kSamples;
  const auto format = LoadLe<int32_t>(bytes.data() + kSampleFormat);
  const auto count = LoadLe<int32_t>(bytes.data() + kSampleCount);
  if ((format != kWords && format != kCompanded) || count < 0) return kNoFrame;
  const size_t sampleSize = format == kWords ? sizeof(uint16_t) : sizeof(uint8_t);
  return static_cast<size_t>(count) <= (total - kSamples) / sampleSize ? total : kNoFrame;
}

void TakeFinite(const uint8_t* bytes, float& target) {
  const float value = LoadLeFloat(bytes);
  if (std::isfinite(value)) target = value;
}

// Eight codes are fetched at once; the rest goes one by one.
void Expand(const uint8_t* codes, std::span<uint16_t> samples) {
  constexpr size_t kStep = 8;
  uint16_t* out = samples.data();
  uint16_t* const end = out + samples.size();
  for (; static_cast<size_t>(end - out) >= kStep; out += kStep, codes += kStep) {
    const auto eight = LoadLe<uint64_t>(codes);
    out[0] = kCompanding[eight & 0xFF];
    out[1] = kCompanding[eight >> 8 & 0xFF];
    out[2] = kCompanding[eight >> 16 & 0xFF];
    out[3] = kCompanding[eight >> 24 & 0xFF];
    out[4] = kCompanding[eight >> 32 & 0xFF];
    out[5] = kCompanding[eight >> 40 & 0xFF];
    out[6] = kCompanding[eight >> 48 & 0xFF];
    out[7] = kCompanding[eight >> 56];
  }
  while (out != end) *out++ = kCompanding[*codes++];
}

size_t ReadSamples(std::span<const uint8_t> block, std::span<uint16_t, kMaxSlotSamples> grid) {
  const auto count = static_cast<size_t>(LoadLe<int32_t>(block.data() + kSampleCount));
  const size_t repeat = GridRepeat(LoadLe<int32_t>(block.data() + kSamplingFrequency));
  const uint8_t* const samples = block.data() + kSamples;
  if (LoadLe<int32_t>(block.data() + kSampleFormat) == kCompanded) {
    const auto expand = [samples](size_t first, std::span<uint16_t> out) { Expand(samples + first, out); };
    return DecodeOntoGrid(count, repeat, grid, expand);
  }
  const auto load = [samples](size_t first, std::span<uint16_t> out) {
    LoadLeNumbers(out, samples + 2 * first);
  };
  return DecodeOntoGrid(count, repeat, grid, load);
}

}  // namespace

const FrameFormat kDeviceBlocks{{kMagic, kMagicSize}, NeededBytes};

bool ParseDeviceBlock(std::string_view bytes, PingHeader& header, std::span<uint16_t, kMaxSlotSamples> grid) {
  const std::span<const uint8_t> block(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size());
  if (block.size() < kSamples || NeededBytes(block, 1) != block.size()) return false;
  header.deviceSeconds = LoadLe<uint32_t>(block.data() + kDeviceSeconds);
  header.deviceMilliseconds = LoadLe<uint32_t>(block.data() + kDeviceMilliseconds);
  header.ping = LoadLe<uint32_t>(block.data() + kPing);
  TakeFinite(block.data() + kAltitude, header.altitude_m);
  TakeFinite(block.data() + kTemperature, header.temperature_c);
  TakeFinite(block.data() + kPitch, header.pitch_deg);
  TakeFinite(block.data() + kRoll, header.roll_deg);
  header.txFrequency_hz = LoadLe<int32_t>(block.data() + kTxFrequency);
  header.samplingFrequency_hz = kGridFrequency_hz;
  header.sampleCount = static_cast<uint32_t>(ReadSamples(block, grid));
  return true;
}

}  // namespace tw
