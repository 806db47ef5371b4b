#include "acquisition/device_block.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <cmath>

#include "acquisition/echo_frame.h"
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

#if defined(__SSE2__)

// Eight codes at once. The slope of the curve is 1 at first and doubles where a segment begins, so the
// amplitude is the code, and for each segment what of the code lies behind its beginning times the slope that
// it adds. Returns how many codes were taken.
size_t ExpandFast(const uint8_t* codes, std::span<uint16_t> samples) {
  constexpr size_t kLanes = 8;
  size_t i = 0;
  for (; i + kLanes <= samples.size(); i += kLanes) {
    const __m128i bytes = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(codes + i));
    const __m128i code = _mm_unpacklo_epi8(bytes, _mm_setzero_si128());
    const auto behind = [code](short begin) { return _mm_subs_epu16(code, _mm_set1_epi16(begin)); };
    const auto twice = [](__m128i value) { return _mm_add_epi16(value, value); };
    __m128i added = behind(223);
    added = _mm_add_epi16(twice(added), behind(191));
    added = _mm_add_epi16(twice(added), behind(159));
    added = _mm_add_epi16(twice(added), behind(127));
    added = _mm_add_epi16(twice(added), behind(95));
    added = _mm_add_epi16(twice(added), behind(63));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(samples.data() + i), _mm_add_epi16(code, added));
  }
  return i;
}

#else

size_t ExpandFast(const uint8_t*, std::span<uint16_t>) {
  return 0;
}

#endif

void Expand(const uint8_t* codes, std::span<uint16_t> samples) {
  for (size_t i = ExpandFast(codes, samples); i < samples.size(); ++i) samples[i] = kCompanding[codes[i]];
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

std::unique_ptr<StreamReader> MakeReader() {
  return NewReader<FrameReader>(kDeviceBlocks);
}

bool ParseBlock(std::string_view block, const LiveContext& context, LivePing& ping) {
  PingHeader& header = ping.header;
  const std::span<uint16_t, kMaxSlotSamples> grid(ping.buffers[0], kMaxSlotSamples);
  if (!ParseDeviceBlock(block, header, grid)) return false;
  ping.secondChannel = context.IsSecondChannel(header.txFrequency_hz);
  ping.samples = grid.first(header.sampleCount);
  ping.factor = 1;
  header.timeOfWork_s = header.deviceSeconds;
  ping.hasDeviceTime = true;
  ping.deviceSeconds = header.deviceSeconds;
  ping.deviceMilliseconds = header.deviceMilliseconds;
  return true;
}

}  // namespace

static_assert(kMaxSlotSamples <= kMaxPingSamples);
static_assert(frame::kWrittenHeaderLength + 2 * kMaxSlotSamples <= kMaxRecordSize);

const FrameFormat kDeviceBlocks{{kMagic, kMagicSize}, NeededBytes};

const StreamForm kBlockStream{.name = "binary device blocks",
                              .makeReader = MakeReader,
                              .parse = ParseBlock,
                              .layOutRecord = LayOutFrameRecord,
                              .isText = false,
                              .dualAttitude = true,
                              .emptyRun = EmptyRun::leaveOneByte};

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
