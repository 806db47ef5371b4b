#include "display/ring_view.h"

#include <algorithm>

#include "base/bytes.h"

// On functions that read bytes which a worker may be writing. Such a function composes its values itself:
// what it calls would be checked again.
#define SHARED_BYTES __attribute__((no_sanitize("thread")))

namespace tw {

namespace {

constexpr uint32_t kMinHeaderLength = 36;
constexpr uint32_t kMaxHeaderLength = 4'096;

SHARED_BYTES void CopySlotBytes(const uint8_t* slot, size_t size, uint8_t* copy) {
  for (size_t i = 0; i < size; ++i) copy[i] = slot[i];
}

SHARED_BYTES inline size_t SampleAt(const uint8_t* sample) {
  return static_cast<size_t>(sample[0] | sample[1] << 8);
}

}  // namespace

const uint8_t* SlotAt(const PingRing& ring, int32_t index) {
  return ring.slots[index < 0 ? 0 : index % kRingSlots];
}

bool HoldsPing(const uint8_t* slot) {
  uint8_t length[sizeof(uint32_t)];
  CopySlotBytes(slot + frame::kHeaderLength, sizeof length, length);
  return LoadLe<uint32_t>(length) != 0;
}

ShownPing ReadShownPing(const uint8_t* slot) {
  uint8_t header[frame::kWrittenHeaderLength];
  CopySlotBytes(slot, sizeof header, header);
  return {.time_s = LoadLe<uint32_t>(header + frame::kTimeOfWork),
          .altitude_m = LoadLeFloat(header + frame::kAltitude),
          .temperature_c = LoadLeFloat(header + frame::kTemperature),
          .pitch_deg = LoadLeFloat(header + frame::kPitch),
          .roll_deg = LoadLeFloat(header + frame::kRoll)};
}

PingHeader ReadHeader(const uint8_t* slot) {
  uint8_t header[frame::kWrittenHeaderLength];
  CopySlotBytes(slot, sizeof header, header);
  return LoadPingHeader(header);
}

uint16_t ReadSample(const uint8_t* slot, size_t index) {
  const SlotSamples samples = FindSamples(slot);
  if (index >= samples.count) return 0;
  uint8_t bytes[2];
  CopySlotBytes(samples.first + 2 * index, sizeof bytes, bytes);
  return LoadLe<uint16_t>(bytes);
}

SlotSamples FindSamples(const uint8_t* slot) {
  uint8_t bytes[sizeof(uint32_t)];
  CopySlotBytes(slot + frame::kHeaderLength, sizeof bytes, bytes);
  uint32_t length = LoadLe<uint32_t>(bytes);
  if (length < kMinHeaderLength || length > kMaxHeaderLength) length = frame::kWrittenHeaderLength;
  const size_t start = length + frame::kSampleGap;
  return {slot + start, std::min((kSlotSize - start) / 2, kMaxSlotSamples)};
}

SHARED_BYTES void PaintColumns(const SlotSamples* slots, const int32_t* columns, const uint32_t* offsets,
                               int32_t rows, const Pixel* pixels, Pixel* out, ptrdiff_t stride) {
  const uint8_t* const a = slots[0].first;
  const uint8_t* const b = slots[1].first;
  const uint8_t* const c = slots[2].first;
  const uint8_t* const d = slots[3].first;
  const ptrdiff_t toB = columns[1] - columns[0];
  const ptrdiff_t toC = columns[2] - columns[0];
  const ptrdiff_t toD = columns[3] - columns[0];
  out += columns[0];
  for (int32_t i = 0; i < rows; ++i, out += stride) {
    const size_t at = offsets[i];
    out[0] = pixels[SampleAt(a + at)];
    out[toB] = pixels[SampleAt(b + at)];
    out[toC] = pixels[SampleAt(c + at)];
    out[toD] = pixels[SampleAt(d + at)];
  }
}

SHARED_BYTES void PaintColumn(const SlotSamples& slot, const uint32_t* offsets, int32_t rows,
                              const Pixel* pixels, Pixel* out, ptrdiff_t stride) {
  for (int32_t i = 0; i < rows; ++i, out += stride) *out = pixels[SampleAt(slot.first + offsets[i])];
}

void CopyAmplitudes(const SlotSamples& samples, size_t count, uint16_t* amplitudes) {
  const size_t readable = std::min(count, samples.count);
  for (size_t i = 0; i < readable; ++i) {
    uint8_t bytes[2];
    CopySlotBytes(samples.first + 2 * i, sizeof bytes, bytes);
    amplitudes[i] = LoadLe<uint16_t>(bytes);
  }
  std::fill(amplitudes + readable, amplitudes + count, uint16_t{0});
}

}  // namespace tw
