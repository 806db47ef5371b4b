#include "acquisition/echo_text.h"

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

#include <algorithm>
#include <bit>

#include "base/bytes.h"
#include "base/text_scan.h"

namespace tw {
namespace {

constexpr std::string_view kDataStart = "##DataStart";
constexpr std::string_view kLineEnd = "\r\n";

enum class Value : uint8_t {
  timeWork,
  sampleCount,
  resolution,
  outputMode,
  samplingFrequency,
  altitude,
  temperature,
  pitch,
  roll,
  ping,
  txFrequency,
};

struct KeyRow {
  Value value;
  std::string_view key;  // with its trailing blank
};

constexpr KeyRow kFirstFamilyKeys[] = {
    {Value::timeWork, "#TimeWork "},
    {Value::sampleCount, "#NSamples "},
    {Value::outputMode, "#OutputMode "},
    {Value::samplingFrequency, "#Sampling_Frequency,Hz "},
    {Value::altitude, "#Altitude "},
    {Value::temperature, "#Temperature "},
    {Value::pitch, "#Pitch,deg "},
    {Value::roll, "#Roll,deg "},
    {Value::ping, "#Ping "},
    {Value::txFrequency, "#Tx_Frequency,Hz "},
};

// The two halves of the temperature's key stand apart: "\xB0" would take the C for a third digit.
constexpr KeyRow kOtherFamiliesKeys[] = {
    {Value::timeWork, "#TimeWork "},
    {Value::sampleCount, "#NSamples "},
    {Value::resolution, "#Resolution,mm "},
    {Value::outputMode, "#OutputMode "},
    {Value::altitude, "#Altitude,m "},
    {Value::temperature,
     "#Temperature,\xB0"
     "C "},
    {Value::pitch, "#Pitch,deg "},
    {Value::roll, "#Roll,deg "},
    {Value::ping, "#Ping "},
    {Value::txFrequency, "#Tx_Frequency,Hz "},
};

std::span<const KeyRow> RowsOf(EchoTextKeys keys) {
  switch (keys) {
    case EchoTextKeys::firstFamily:
      return kFirstFamilyKeys;
    case EchoTextKeys::otherFamilies:
      return kOtherFamiliesKeys;
  }
  return {};
}

// Whole seconds and milliseconds; a value without milliseconds leaves those as they were.
bool ReadTimeWork(std::string_view text, EchoTextHeader& header) {
  uint32_t milliseconds = 0;
  if (!ScanUint(text, header.deviceSeconds)) return false;
  if (ScanLiteral(text, ".") && ScanUint(text, milliseconds)) header.deviceMilliseconds = milliseconds;
  return true;
}

bool ReadSampleCount(std::string_view text, EchoTextHeader& header) {
  int32_t count = 0;
  if (!ScanInt(text, count) || count < 0 || count > kMaxTextSamples) return false;
  header.sampleCount = count;
  return true;
}

// Reads the value that `text` begins with; false leaves it as it was.
bool ReadValue(Value value, std::string_view text, EchoTextHeader& header) {
  switch (value) {
    case Value::timeWork:
      return ReadTimeWork(text, header);
    case Value::sampleCount:
      return ReadSampleCount(text, header);
    case Value::resolution:
      return ScanFloat(text, header.resolution_mm);
    case Value::outputMode:
      return ScanInt(text, header.outputMode);
    case Value::samplingFrequency:
      return ScanInt(text, header.samplingFrequency_hz);
    case Value::altitude:
      return ScanFloat(text, header.altitude_m);
    case Value::temperature:
      return ScanFloat(text, header.temperature_c);
    case Value::pitch:
      return ScanFloat(text, header.pitch_deg);
    case Value::roll:
      return ScanFloat(text, header.roll_deg);
    case Value::ping:
      return ScanUint(text, header.ping);
    case Value::txFrequency:
      return ScanInt(text, header.txFrequency_hz);
  }
  return false;
}

constexpr size_t kStride = 64;

// Where things stand in 64 bytes, the first byte in the lowest bit.
struct StrideMasks {
  uint64_t returns;
  uint64_t feeds;
  uint64_t digits;
};

StrideMasks MasksOf(const char* bytes) {
  StrideMasks masks{};
#if defined(__SSE2__)
  const auto bits = [](__m128i equal) { return uint64_t{static_cast<uint32_t>(_mm_movemask_epi8(equal))}; };
  for (size_t i = 0; i < kStride; i += 16) {
    const __m128i part = _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes + i));
    const __m128i digit = _mm_xor_si128(part, _mm_set1_epi8('0'));
    masks.returns |= bits(_mm_cmpeq_epi8(part, _mm_set1_epi8('\r'))) << i;
    masks.feeds |= bits(_mm_cmpeq_epi8(part, _mm_set1_epi8('\n'))) << i;
    masks.digits |= bits(_mm_cmpeq_epi8(_mm_min_epu8(digit, _mm_set1_epi8(9)), digit)) << i;
  }
#else
  for (size_t i = 0; i < kStride; ++i) {
    masks.returns |= uint64_t{bytes[i] == '\r'} << i;
    masks.feeds |= uint64_t{bytes[i] == '\n'} << i;
    masks.digits |= uint64_t{bytes[i] >= '0' && bytes[i] <= '9'} << i;
  }
#endif
  return masks;
}

constexpr size_t kShortLine = 4;
constexpr uint32_t kDigitsOf[kShortLine + 1] = {0, 0x0F000000, 0x0F0F0000, 0x0F0F0F00, 0x0F0F0F0F};

// The number in the `length` (1 to 4) digits before `end`, where four bytes are readable: the line's own
// digits stand at the top of a word and the bytes in front of it count as zeroes; neighbours are added up to
// pairs, and the pairs to the number.
uint16_t ShortNumber(const char* end, size_t length) {
  const auto word = LoadLe<uint32_t>(reinterpret_cast<const uint8_t*>(end) - kShortLine);
  const uint32_t digits = word & kDigitsOf[length];
  const uint32_t pairs = (digits * 10 + (digits >> 8)) & 0x00FF00FF;
  return static_cast<uint16_t>((pairs * 0x00640001u) >> 16);
}

void ReadAnyLine(std::string_view line, uint16_t& sample) {
  int32_t number = 0;
  if (ScanInt(line, number) && number >= 0 && number <= UINT16_MAX) sample = static_cast<uint16_t>(number);
}

// Reads sample lines one after another.
class SampleLines {
 public:
  SampleLines(std::string_view text, size_t start, std::span<uint16_t> samples)
      : text_(text), start_(start), samples_(samples) {}

  // Strides of 64 bytes that hold nothing but digits and whole line ends (the last one's LF may stand behind
  // the stride): all ends of a stride are known before its lines are read, so no line waits for the one
  // before it. Everything else goes line by line.
  size_t Read() {
    size_t stride = start_;
    uint64_t carry = 0;  // the last byte of the stride before was a CR
    while (stride + kStride < text_.size() && samples_.size() - count_ >= kStride / kLineEnd.size()) {
      const StrideMasks masks = MasksOf(text_.data() + stride);
      const uint64_t lastReturn = masks.returns >> 63;
      const bool plain = masks.feeds == (masks.returns << 1 | carry) &&
                         (masks.returns | masks.feeds | masks.digits) == ~uint64_t{0} &&
                         (lastReturn == 0 || text_[stride + kStride] == '\n');
      if (plain) {
        ReadStride(stride, masks.returns);
        carry = lastReturn;
        stride += kStride;
        continue;
      }
      while (start_ < stride + kStride && ReadOne()) {
      }
      stride = start_;
      carry = 0;
    }
    while (ReadOne()) {
    }
    return count_;
  }

 private:
  void ReadStride(size_t stride, uint64_t ends) {
    const char* const text = text_.data();
    uint16_t* sample = samples_.data() + count_;
    size_t start = start_;
    for (; ends != 0; ends &= ends - 1) {
      const size_t end = stride + static_cast<size_t>(std::countr_zero(ends));
      const size_t length = end - start;
      if (length - 1 < kShortLine && end >= kShortLine) {
        *sample = ShortNumber(text + end, length);
      } else {
        ReadAnyLine(text_.substr(start, length), *sample);
      }
      ++sample;
      start = end + kLineEnd.size();
    }
    count_ = static_cast<size_t>(sample - samples_.data());
    start_ = start;
  }

  bool ReadOne() {
    if (count_ == samples_.size() || start_ >= text_.size()) return false;
    const size_t end = std::min(text_.find(kLineEnd, start_), text_.size());
    ReadAnyLine(text_.substr(start_, end - start_), samples_[count_]);
    ++count_;
    start_ = end + kLineEnd.size();
    return true;
  }

  std::string_view text_;
  size_t start_;  // of the line that is next
  std::span<uint16_t> samples_;
  size_t count_ = 0;
};

}  // namespace

ParsedEchoText ParseEchoTextHeader(EchoTextKeys keys, std::string_view block, int32_t configuredSampling_hz,
                                   int32_t configuredTx_hz, EchoTextHeader& header) {
  const size_t data = block.find(kDataStart);
  const std::string_view text = block.substr(0, data);
  ParsedEchoText parsed{};
  for (const KeyRow& row : RowsOf(keys)) {
    const size_t at = text.find(row.key);
    if (at == text.npos || !ReadValue(row.value, text.substr(at + row.key.size()), header)) continue;
    parsed.hasSampling = parsed.hasSampling || row.value == Value::samplingFrequency;
    parsed.hasTxFrequency = parsed.hasTxFrequency || row.value == Value::txFrequency;
  }
  if (!parsed.hasSampling) header.samplingFrequency_hz = configuredSampling_hz;
  if (!parsed.hasTxFrequency) header.txFrequency_hz = configuredTx_hz;
  if (data != block.npos) parsed.dataLines = block.substr(data + kDataStart.size());
  return parsed;
}

EchoTextKeys KeysOfBlock(std::string_view block, EchoTextKeys otherwise) {
  const std::string_view text = block.substr(0, block.find(kDataStart));
  const auto holds = [&](std::string_view key) { return text.find(key) != text.npos; };
  if (holds("#Altitude,m ") || holds("#Resolution,mm ")) return EchoTextKeys::otherFamilies;
  if (holds("#Altitude ") || holds("#Sampling_Frequency,Hz ")) return EchoTextKeys::firstFamily;
  return otherwise;
}

size_t ReadSampleLines(std::string_view dataLines, std::span<uint16_t> samples) {
  const size_t first = dataLines.find(kLineEnd);
  if (first == dataLines.npos) return 0;
  return SampleLines(dataLines, first + kLineEnd.size(), samples).Read();
}

}  // namespace tw
