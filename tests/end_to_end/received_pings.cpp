#include "tests/end_to_end/received_pings.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

#include "base/bytes.h"

namespace tw::test {
namespace {

constexpr size_t kPulseReach = 3'000;

std::vector<uint16_t> SamplesAt(const uint8_t* bytes, size_t count) {
  std::vector<uint16_t> samples(count);
  for (size_t i = 0; i < count; ++i) samples[i] = LoadLe<uint16_t>(bytes + 2 * i);
  return samples;
}

// Takes a sentence of the position off the front.
void TakeSentence(std::string_view& file, std::string_view begin) {
  const size_t end = file.find("\r\n");
  ASSERT_TRUE(end != file.npos && file.starts_with(begin)) << file.substr(0, 100);
  file.remove_prefix(end + 2);
}

}  // namespace

void RingWatch::Look(int32_t index) {
  const uint8_t* slot = ring_.slots[index];
  const std::string_view bytes(reinterpret_cast<const char*>(slot), kLooked);
  if (bytes == last_) return;
  last_ = bytes;
  Shown shown{LoadPingHeader(slot), {}};
  const bool block = form_ == RecordForm::block;
  const size_t count = size_t{shown.header.sampleCount} * (block ? 1 : kRepeat);
  shown.samples = SamplesAt(slot + kSlotSamples, std::min(count, kMaxSlotSamples));
  if (form_ == RecordForm::line || form_ == RecordForm::epoch)
    shown.samples = SamplesAt(slot + kSlotSamples, kPulseReach);
  seen.push_back(std::move(shown));
}

void ReadTexts(std::string_view file, RecordForm form, RecordedFile& out) {
  constexpr std::string_view kPosition = "$GPGGA,000000.00,";
  while (!file.empty()) {
    if (form == RecordForm::epoch) {
      ASSERT_NO_FATAL_FAILURE(TakeSentence(file, "#F "));
    }
    const size_t end = file.find(kPosition);
    ASSERT_NE(end, file.npos) << file.substr(0, 100);
    out.messages.emplace_back(file.substr(0, end));
    file.remove_prefix(end);
    ASSERT_NO_FATAL_FAILURE(TakeSentence(file, "$GPGGA,"));
    ASSERT_NO_FATAL_FAILURE(TakeSentence(file, "$GPRMC,"));
    if (form != RecordForm::text) continue;
    ASSERT_TRUE(file.starts_with("\r\n\r\n"));
    file.remove_prefix(4);
  }
}

void ReadFrames(std::string_view file, RecordedFile& out) {
  while (!file.empty()) {
    ASSERT_GE(file.size(), 88u);
    ASSERT_TRUE(file.starts_with(std::string_view("TR57\x58\0\0\0", 8)));
    const auto* frame = reinterpret_cast<const uint8_t*>(file.data());
    const PingHeader header = LoadPingHeader(frame);
    ASSERT_GE(file.size(), 88 + 2 * size_t{header.sampleCount}) << "a torn frame";
    out.frames.push_back({header, SamplesAt(frame + 88, header.sampleCount)});
    file.remove_prefix(88 + 2 * size_t{header.sampleCount});
  }
}

}  // namespace tw::test
