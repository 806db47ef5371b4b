// How fast binary echoes become pings: frame reader and parsers on a stream handed over in pieces as a port
// gives them, against memcpy of the same bytes; and putting pings into a ring, against memcpy of the bytes
// that have to be written.
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "acquisition/device_block.h"
#include "acquisition/echo_frame.h"
#include "acquisition/store_ping.h"
#include "app/state/posts.h"
#include "base/bytes.h"
#include "bench/measure.h"
#include "platform/memory.h"

namespace tw {

void PostStatusText(AppState&, StatusPart, const wchar_t*) {}

namespace {

constexpr size_t kStreamSize = size_t{64} << 20;
constexpr size_t kPiece = 16'384;

uint16_t Amplitude(size_t i) {
  return static_cast<uint16_t>(i * 2'654'435'761u >> 7 & 0xFFF);
}

std::vector<uint8_t> MakeBlock(size_t count, int32_t format, int32_t frequency_hz) {
  using namespace device_block;
  const size_t size = format == kWords ? 2 : 1;
  std::vector<uint8_t> block(kSamples + count * size);
  std::memcpy(block.data(), kMagic, kMagicSize);
  StoreLe(block.data() + kTotalLength, static_cast<uint32_t>(block.size()));
  StoreLe(block.data() + kSampleFormat, format);
  StoreLe(block.data() + kSampleCount, static_cast<int32_t>(count));
  StoreLe(block.data() + kSamplingFrequency, frequency_hz);
  for (size_t i = 0; i < count; ++i) {
    uint8_t* const at = block.data() + kSamples + i * size;
    if (size == 2) {
      StoreLe(at, Amplitude(i));
    } else {
      *at = static_cast<uint8_t>(Amplitude(i));
    }
  }
  return block;
}

std::vector<uint8_t> MakeFrame(size_t count) {
  std::vector<uint16_t> samples(count);
  for (size_t i = 0; i < count; ++i) samples[i] = Amplitude(i);
  PingHeader header{};
  header.sampleCount = static_cast<uint32_t>(count);
  std::vector<uint8_t> frame(frame::kWrittenHeaderLength + 2 * count);
  LayOutEchoFrame(header, samples, frame.data());
  return frame;
}

struct Parsed {
  PingHeader header;
  uint16_t samples[kFrameBufferSize / 2];
};

size_t ParseFrame(std::string_view frame, Parsed& parsed) {
  return ParseEchoFrame(frame, parsed.header, parsed.samples);
}
size_t ParseBlock(std::string_view block, Parsed& parsed) {
  const std::span<uint16_t, kMaxSlotSamples> grid(parsed.samples, kMaxSlotSamples);
  return ParseDeviceBlock(block, parsed.header, grid) ? parsed.header.sampleCount : 0;
}

void MeasureReading(const char* name, const std::vector<uint8_t>& frame, const FrameFormat& format,
                    size_t (*parse)(std::string_view, Parsed&)) {
  std::vector<uint8_t> stream;
  while (stream.size() < kStreamSize) stream.insert(stream.end(), frame.begin(), frame.end());
  std::vector<uint8_t> copy(stream.size(), 1);
  const auto parsed = std::make_unique<Parsed>();
  const double copying = MedianMilliseconds([&] { std::memcpy(copy.data(), stream.data(), stream.size()); });
  size_t frames = 0;
  size_t samples = 0;
  const double reading = MedianMilliseconds([&] {
    FrameReader reader(format);
    frames = samples = 0;
    for (size_t at = 0; at < stream.size(); at += kPiece) {
      std::span<const uint8_t> piece(stream.data() + at, std::min(kPiece, stream.size() - at));
      while (reader.Feed(piece)) {
        samples += parse(reader.Block(), *parsed);
        ++frames;
      }
    }
  });
  std::printf("%-46s %6zu frames: memcpy %4.1f ms, %5.1f ms, %4.1f x; %4.1f bytes written for each read\n",
              name, frames, copying, reading, reading / copying,
              2.0 * static_cast<double>(samples) / static_cast<double>(stream.size()));
}

// Pings a tenth of a second apart: each fills the slot at the index and the next one.
void MeasureStoring(PingRing& ring, size_t count, uint32_t frequency_hz, uint16_t factor) {
  constexpr uint32_t kPings = 3'000;
  std::vector<uint16_t> samples(count);
  for (size_t i = 0; i < count; ++i) samples[i] = Amplitude(i);
  PingHeader header{};
  header.samplingFrequency_hz = frequency_hz;
  header.sampleCount = static_cast<uint32_t>(count);
  Lock lock;
  MakeLock(lock);
  int32_t index = 0;
  int64_t time = 0;
  std::vector<uint16_t> reach(kRingSlots);
  RingWriter writer{&ring, &index, &time, &lock, reach.data()};
  const auto image = std::make_unique<SlotImage>();
  uint32_t now_ms = 0;
  const auto store = [&] {
    for (uint32_t i = 0; i < kPings; ++i) {
      image->Build(header, samples, factor);
      StorePing(writer, *image, now_ms += kTick_ms);
    }
  };
  for (int i = 0; i < 5; ++i) store();  // the ring's memory has been touched
  int32_t slot = 0;
  const double copying = MedianMilliseconds([&] {
    for (uint32_t i = 0; i < kPings; ++i) {
      std::memcpy(ring.slots[slot], image->bytes, image->reach);
      slot = (slot + 1) % kRingSlots;
      std::memcpy(ring.slots[slot], image->bytes, image->reach);
    }
  });
  const double storing = MedianMilliseconds(store);
  // What must be written: two slots, or with the image aside three times the same.
  std::printf(
      "store %5zu samples at %6u Hz x %d, %5zu bytes: memcpy %5.2f us, %5.2f us, %4.2f x, with image %4.2f "
      "x\n",
      count, frequency_hz, factor, image->reach, copying * 1e3 / kPings, storing * 1e3 / kPings,
      storing / copying, storing / (1.5 * copying));
  DestroyLock(lock);
}

int Main() {
  MeasureReading("frames of 1,000 samples", MakeFrame(1'000), kEchoFrames, ParseFrame);
  MeasureReading("frames of 12,000 samples", MakeFrame(12'000), kEchoFrames, ParseFrame);
  for (const int32_t frequency_hz : {100'000, 50'000, 25'000}) {
    for (const int32_t format : {device_block::kWords, device_block::kCompanded}) {
      const std::string name = std::string(format == device_block::kWords ? "16-bit" : "companded") +
                               " blocks of 1,000 samples, " + std::to_string(frequency_hz) + " Hz";
      MeasureReading(name.c_str(), MakeBlock(1'000, format, frequency_hz), kDeviceBlocks, ParseBlock);
    }
  }
  auto* const ring = static_cast<PingRing*>(AllocateZeroed(kRingSize));
  if (ring == nullptr) return 1;
  MeasureStoring(*ring, 1'000, 25'000, 1);
  MeasureStoring(*ring, 1'000, 25'000, 4);
  MeasureStoring(*ring, 12'000, 50'000, 1);
  MeasureStoring(*ring, kMaxSlotSamples, 100'000, 1);
  MeasureStoring(*ring, 1'000, 100'000, 1);
  FreeZeroed(ring, kRingSize);
  return 0;
}

}  // namespace
}  // namespace tw

int main() {
  return tw::Main();
}
