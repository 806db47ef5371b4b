// Any bytes as a device's stream: block reader and echo text parser. The first byte says in which pieces the
// rest arrives; the blocks must be the same as in one piece.
#include <cmath>
#include <string>
#include <vector>

#include "acquisition/block_reader.h"
#include "acquisition/echo_text.h"
#include "fuzz/pieces.h"

namespace tw {
namespace {

constexpr size_t kSmallBuffer = 2'000;  // so that blocks outgrow it

void Parse(EchoTextKeys keys, const std::string& text, EchoTextHeader& header) {
  // Without the zero behind it, so that a read behind the end shows.
  const std::vector<char> block(text.begin(), text.end());
  const ParsedEchoText parsed =
      ParseEchoTextHeader(keys, {block.data(), block.size()}, 25'000, 200'000, header);
  Require(header.sampleCount >= 0 && header.sampleCount <= kMaxTextSamples);
  Require(std::isfinite(header.altitude_m) && std::isfinite(header.temperature_c));
  Require(std::isfinite(header.pitch_deg) && std::isfinite(header.roll_deg));
  Require(std::isfinite(header.resolution_mm));
  std::vector<uint16_t> samples(static_cast<size_t>(header.sampleCount), 7);
  const size_t lines = ReadSampleLines(parsed.dataLines, samples);
  Require(lines <= samples.size());

  // One sample at a time: what a line says does not depend on its neighbours.
  std::string_view rest = parsed.dataLines;
  for (size_t i = 0; i < lines; ++i) {
    rest.remove_prefix(rest.find("\r\n"));
    uint16_t sample = 7;
    Require(ReadSampleLines(rest, {&sample, 1}) == 1 && sample == samples[i]);
    rest.remove_prefix(2);
  }
}

}  // namespace
}  // namespace tw

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  if (size == 0) return 0;
  const std::span<const uint8_t> stream(bytes + 1, size - 1);
  const auto blocks = tw::BlocksOf(
      [] { return tw::BlockReader(tw::kEchoTextMarks, tw::kSmallBuffer); }, stream, size_t{1} + bytes[0],
      [](std::string_view block) {
        tw::Require(block.starts_with(tw::kEchoTextMarks.start) && block.ends_with(tw::kEchoTextMarks.end));
      });
  for (const auto keys : {tw::EchoTextKeys::firstFamily, tw::EchoTextKeys::otherFamilies}) {
    tw::EchoTextHeader header{};
    for (const std::string& block : blocks) tw::Parse(keys, block, header);
  }
  return 0;
}
