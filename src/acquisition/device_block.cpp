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

size_t ReadSamples(std::span<const uint8_t> block, std::span<uint16_t, kMaxSlotSamples> grid) {
  const auto count = static_cast<size_t>(LoadLe<int32_t>(block.data() + kSampleCount));
  const size_t repeat = GridRepeat(LoadLe<int32_t>(block.data() + kSamplingFrequency));
  const uint8_t* const samples = block.data() + kSamples;
  const GridNumbers out{grid.data()};
  if (LoadLe<int32_t>(block.data() + kSampleFormat) == kCompanded) {
    const auto expanded = [samples](size_t i) { return kCompanding[samples[i]]; };
    return SpreadOntoGrid(count, repeat, grid.size(), expanded, out);
  }
  const auto word = [samples](size_t i) { return LoadLe<uint16_t>(samples + 2 * i); };
  return SpreadOntoGrid(count, repeat, grid.size(), word, out);
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
