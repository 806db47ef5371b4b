// Any bytes as a stream of frames: frame reader and the parsers of echo frames and device blocks. The first
// byte chooses the format, the channels and the pieces in which the rest arrives; the frames must be the same
// as in one piece.
#include <cmath>
#include <string>
#include <vector>

#include "acquisition/device_block.h"
#include "acquisition/echo_frame.h"
#include "fuzz/pieces.h"

namespace tw {
namespace {

void RequireFinite(const PingHeader& header) {
  for (const float value :
       {header.range_m, header.altitude_m, header.temperature_c, header.pitch_deg, header.roll_deg,
        header.gpsLatitude_rad, header.gpsLongitude_rad, header.gpsAltitude_m, header.gpsPdop}) {
    Require(std::isfinite(value));
  }
}

// On the heap and no longer than they are, so that a read or a write behind the end shows.
void ParseFrame(std::string_view text, PingHeader& header) {
  const std::vector<char> bytes(text.begin(), text.end());
  std::vector<uint16_t> samples(text.size() / 2);
  Require(ParseEchoFrame({bytes.data(), bytes.size()}, header, samples) <= samples.size());
  RequireFinite(header);
}

void ParseBlock(std::string_view text, PingHeader& header, bool mustBeOne) {
  const std::vector<char> bytes(text.begin(), text.end());
  std::vector<uint16_t> grid(kMaxSlotSamples);
  const bool whole =
      ParseDeviceBlock({bytes.data(), bytes.size()}, header, std::span<uint16_t, kMaxSlotSamples>(grid));
  Require(whole || !mustBeOne);
  if (whole) Require(header.sampleCount <= kMaxSlotSamples && header.samplingFrequency_hz == 100'000);
  RequireFinite(header);
}

}  // namespace
}  // namespace tw

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  if (size == 0) return 0;
  const tw::FrameFormat* const formats[] = {&tw::kDeviceBlocks, &tw::kEchoFrames, &tw::kDualEchoFrames};
  const size_t choice = bytes[0] % 3;
  const int32_t channels = bytes[0] / 3 % 2 + 1;
  const std::span<const uint8_t> stream(bytes + 1, size - 1);
  const auto frames = tw::BlocksOf(
      [&] { return tw::FrameReader(*formats[choice], channels); }, stream, size_t{1} + bytes[0] / 6,
      [&](std::string_view frame) {
        tw::Require(frame.starts_with(formats[choice]->magic) && frame.size() <= tw::kFrameBufferSize);
      });
  tw::PingHeader header{};
  for (const std::string& frame : frames) {
    if (choice == 0) {
      tw::ParseBlock(frame, header, true);
    } else {
      tw::ParseFrame(frame, header);
    }
  }
  const std::string_view text(reinterpret_cast<const char*>(stream.data()), stream.size());
  tw::ParseFrame(text, header);
  tw::ParseBlock(text, header, false);
  return 0;
}
