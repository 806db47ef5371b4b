#include "playback/segy_format.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>

#include "base/bytes.h"
#include "base/calendar.h"

namespace tw {
namespace {

struct Field16 {
  uint16_t byte;  // as the standard counts
  int16_t value;
};
struct Field32 {
  uint16_t byte;
  int32_t value;
};

constexpr uint16_t kBinaryHeaderStart = 3201;

constexpr Field32 kBinaryReel{3209, 1};
constexpr Field16 kBinaryFixed[] = {
    {3213, 1},    // data traces per ensemble
    {3225, 3},    // sample format: 2-byte two's complement integer
    {3227, 1},    // ensemble fold
    {3229, 1},    // trace sorting: as recorded
    {3231, 1},    // vertical sum
    {3233, 20},   // sweep frequency at start, Hz
    {3235, 150},  // sweep frequency at end, Hz
    {3237, 20},   // sweep length, ms
    {3239, 4},    // sweep type
    {3247, 3},    // taper type
    {3253, 1},    // amplitude recovery method
    {3255, 1},    // measurement system: metres
    {3257, 2},    // impulse signal polarity
    {3259, 1},    // vibratory polarity
};
constexpr uint16_t kBinaryIntervals[] = {3217, 3219};
constexpr uint16_t kBinaryLengths[] = {3221, 3223};
constexpr uint16_t kBinaryFixedLengthFlag = 3503;

constexpr Field16 kTraceFixed[] = {
    {29, 1},      // trace identification: time domain data
    {31, 1},      // vertically summed traces
    {33, 1},      // horizontally stacked traces
    {35, 1},      // data use: production
    {69, -1000},  // scalar for elevations and depths
    {71, -1000},  // scalar for coordinates
    {89, 2},      // coordinate units: seconds of arc
    {167, 4},     // time basis: UTC
    {201, 1},     // scalar for the shotpoint number
    {215, 1},     // time scalar
};
constexpr Field32 kTraceInEnsemble{25, 1};
constexpr uint16_t kTracePing[] = {1, 9, 13, 17, 21};
constexpr uint16_t kTraceNumber = 5;
constexpr uint16_t kTraceX[] = {73, 81, 181};  // source, group, ensemble
constexpr uint16_t kTraceY[] = {77, 85, 185};
constexpr uint16_t kTraceVelocity = 91;
constexpr uint16_t kTraceLength = 115;
constexpr uint16_t kTraceInterval = 117;
constexpr uint16_t kTraceYear = 157;
constexpr uint16_t kTraceInline = 189;
constexpr uint16_t kTraceCrossline = 193;

// A header under its standard byte numbers.
class HeaderWriter {
 public:
  HeaderWriter(std::span<uint8_t> bytes, uint16_t first) : bytes_(bytes), first_(first) {
    std::fill(bytes.begin(), bytes.end(), uint8_t{0});
  }

  void Put16(uint16_t byte, int16_t value) { StoreBe(bytes_.data() + (byte - first_), value); }
  void Put32(uint16_t byte, int32_t value) { StoreBe(bytes_.data() + (byte - first_), value); }
  void Put(const Field32& field) { Put32(field.byte, field.value); }
  void Put(std::span<const Field16> fields) {
    for (const Field16& field : fields) Put16(field.byte, field.value);
  }
  void Put16(std::span<const uint16_t> bytes, int16_t value) {
    for (const uint16_t byte : bytes) Put16(byte, value);
  }
  void Put32(std::span<const uint16_t> bytes, int32_t value) {
    for (const uint16_t byte : bytes) Put32(byte, value);
  }

 private:
  std::span<uint8_t> bytes_;
  uint16_t first_;
};

int16_t Clamped16(uint32_t value) {
  return static_cast<int16_t>(std::min(value, kMaxSegyField));
}

int16_t SampleInterval_us(uint32_t samplingFrequency_hz) {
  return Clamped16(1'000'000 / samplingFrequency_hz);
}

int16_t WholeMetresPerSecond(float speed) {
  if (!(speed > 0.0f)) return 0;
  return static_cast<int16_t>(std::min(speed, static_cast<float>(kMaxSegyField)));
}

// Milliseconds of arc, towards zero.
int32_t Coordinate(float radians) {
  if (!std::isfinite(radians)) return 0;
  const double degrees = static_cast<double>(radians) * 180.0 / std::acos(-1.0);
  const double whole = std::trunc(degrees);
  const double minutes = (degrees - whole) * 60.0;
  const double arc = (whole + minutes / 60.0) * 3600.0 * 1000.0;
  constexpr double kLowest = std::numeric_limits<int32_t>::min();
  constexpr double kHighest = std::numeric_limits<int32_t>::max();
  return static_cast<int32_t>(std::clamp(arc, kLowest, kHighest));
}

int16_t DayOfYear(const CalendarTime& time) {
  constexpr int16_t kDaysBefore[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};
  const bool leap = (time.year % 4 == 0 && time.year % 100 != 0) || time.year % 400 == 0;
  const int32_t days = kDaysBefore[time.month - 1] + time.day + (leap && time.month > 2 ? 1 : 0);
  return static_cast<int16_t>(days);
}

void PutTime(HeaderWriter& out, uint32_t unixSeconds) {
  const CalendarTime time = CalendarFromUnixSeconds(unixSeconds);
  const int16_t fields[] = {static_cast<int16_t>(time.year), DayOfYear(time), static_cast<int16_t>(time.hour),
                            static_cast<int16_t>(time.minute), static_cast<int16_t>(time.second)};
  uint16_t byte = kTraceYear;
  for (const int16_t field : fields) {
    out.Put16(byte, field);
    byte += 2;
  }
}

}  // namespace

void BuildSegyBinaryHeader(std::span<uint8_t, kSegyBinaryHeaderSize> header, uint32_t samplingFrequency_hz,
                           uint32_t sampleCount, bool fixedLength) {
  HeaderWriter out(header, kBinaryHeaderStart);
  out.Put(kBinaryReel);
  out.Put(kBinaryFixed);
  out.Put16(kBinaryIntervals, SampleInterval_us(samplingFrequency_hz));
  out.Put16(kBinaryLengths, Clamped16(sampleCount));
  out.Put16(kBinaryFixedLengthFlag, fixedLength ? 1 : 0);
}

void BuildSegyTraceHeader(std::span<uint8_t, kSegyTraceHeaderSize> header, const PingHeader& ping,
                          const SegyTrace& trace) {
  HeaderWriter out(header, 1);
  out.Put(kTraceFixed);
  out.Put(kTraceInEnsemble);
  out.Put32(kTracePing, static_cast<int32_t>(ping.ping));
  out.Put32(kTraceNumber, static_cast<int32_t>(trace.number));
  out.Put32(kTraceX, Coordinate(ping.gpsLongitude_rad));
  out.Put32(kTraceY, Coordinate(ping.gpsLatitude_rad));
  out.Put16(kTraceVelocity, WholeMetresPerSecond(trace.soundSpeed_mps));
  out.Put16(kTraceLength, Clamped16(trace.sampleCount));
  out.Put16(kTraceInterval, SampleInterval_us(ping.samplingFrequency_hz));
  PutTime(out, ping.timeOfWork_s);
  if (!trace.numbered) return;
  out.Put32(kTraceInline, 1);
  out.Put32(kTraceCrossline, static_cast<int32_t>(trace.number));
}

// Four at a time: one by one they would cost a quarter of a conversion.
void StoreSegySamples(std::span<const uint16_t> samples, uint8_t* out) {
  constexpr uint64_t kLowBytes = 0x00FF'00FF'00FF'00FF;
  for (uint64_t four; std::endian::native == std::endian::little && samples.size_bytes() >= sizeof four;) {
    std::memcpy(&four, samples.data(), sizeof four);
    four = (four & kLowBytes) << 8 | (four >> 8 & kLowBytes);
    std::memcpy(out, &four, sizeof four);
    out += sizeof four;
    samples = samples.subspan(sizeof four / sizeof samples[0]);
  }
  for (const uint16_t sample : samples) {
    StoreBe(out, sample);
    out += sizeof sample;
  }
}

}  // namespace tw
