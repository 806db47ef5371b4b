#include "playback/converter.h"

#include <algorithm>

#include "acquisition/sample_grid.h"
#include "playback/segy_format.h"
#include "playback/text_block.h"

namespace tw {

SegyConverter::SegyConverter(OutputFile& output, std::span<const uint8_t, kSegyTextHeaderSize> textHeader,
                             float soundSpeed_mps, const SegyOptions& options)
    : output_(output), textHeader_(textHeader), soundSpeed_mps_(soundSpeed_mps), options_(options) {}

// The binary header tells the first ping's sampling and length.
bool SegyConverter::AppendFileHeaders(const PingHeader& ping, uint32_t length) {
  constexpr size_t kSize = kSegyTextHeaderSize + kSegyBinaryHeaderSize;
  uint8_t* const out = output_.Room(kSize);
  if (out == nullptr) return false;
  std::copy(textHeader_.begin(), textHeader_.end(), out);
  BuildSegyBinaryHeader(
      std::span<uint8_t, kSegyBinaryHeaderSize>(out + kSegyTextHeaderSize, kSegyBinaryHeaderSize),
      ping.samplingFrequency_hz, length, options_.paddedLength != 0);
  output_.Take(kSize);
  return true;
}

bool SegyConverter::Append(const RecordedPing& recorded) {
  const PingHeader& ping = recorded.header;
  const std::span<const uint16_t> samples = recorded.samples;
  if (ping.samplingFrequency_hz == 0) return !output_.Failed();
  const uint32_t length = SegyTraceLength(options_.paddedLength != 0 ? options_.paddedLength
                                                                     : static_cast<uint32_t>(samples.size()));
  if (traces_ == 0 && !AppendFileHeaders(ping, length)) return false;

  const size_t size = kSegyTraceHeaderSize + sizeof(uint16_t) * size_t{length};
  uint8_t* const out = output_.Room(size);
  if (out == nullptr) return false;
  ++traces_;
  if (samples.size() > length) ++cutTraces_;
  BuildSegyTraceHeader(std::span<uint8_t, kSegyTraceHeaderSize>(out, kSegyTraceHeaderSize), ping,
                       {traces_, length, soundSpeed_mps_, options_.numbered});
  const auto own = samples.first(std::min<size_t>(length, samples.size()));
  uint8_t* const behindOwn = out + kSegyTraceHeaderSize + own.size_bytes();
  StoreSegySamples(own, out + kSegyTraceHeaderSize);
  std::fill(behindOwn, out + size, uint8_t{0});
  output_.Take(size);
  return true;
}

bool TextConverter::Append(const RecordedPing& ping) {
  if (repeat_ == 0) repeat_ = GridRepeat(ping.header.samplingFrequency_hz);
  uint8_t* const out = output_.Room(kTextBlockSize);
  if (out == nullptr) return false;
  output_.Take(
      LayOutTextBlock(ping.header, repeat_ == 1 ? ping.samples : std::span<const uint16_t>{},
                      std::span<char, kTextBlockSize>(reinterpret_cast<char*>(out), kTextBlockSize)));
  return true;
}

}  // namespace tw
