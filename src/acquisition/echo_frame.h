// Echo frames in a stream: the layout of ping_record.h with the samples right behind the header. "TR57"
// frames are what binary recordings consist of; "DUAL" frames, one channel of a dual ping, are only read.
//
//   54 52 35 37  58 00 00 00  ...  header, 88 bytes long when this program wrote it
//   0C 00 07 00  ...               samples: 12, 7, ...; all of one channel, then all of the next
//
// Getting back in step: frame_reader.h. A header is 36 to 4,096 bytes long; header, samples and the gap that
// parts them in memory come to at most 256,000 bytes. Anything else is no frame. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "acquisition/frame_reader.h"
#include "acquisition/ping_record.h"
#include "acquisition/stream_form.h"

namespace tw {

inline constexpr size_t kMinFrameHeader = 36;  // so that it tells the sample count
inline constexpr size_t kMaxFrameHeader = 4'096;

extern const FrameFormat kEchoFrames;      // "TR57", with as many channels as the reader is told
extern const FrameFormat kDualEchoFrames;  // "DUAL", always with one

extern const StreamForm kFrameStream;
extern const StreamForm kDualFrameStream;

// Reads a frame as FrameReader gives it. `header` holds the previous ping's values on entry; what a short
// header does not hold, or is no finite number, stands as it was. Copies the samples of all channels, as many
// as fit, and returns their number. A frame without a possible header gives none and leaves `header` as it
// is.
[[nodiscard]] size_t ParseEchoFrame(std::string_view bytes, PingHeader& header, std::span<uint16_t> samples);

// Lays out a "TR57" frame of one channel, header.sampleCount being the number of samples; returns its length.
// `bytes` has room for 88 bytes and the samples.
size_t LayOutEchoFrame(const PingHeader& header, std::span<const uint16_t> samples, uint8_t* bytes);

// What is recorded of a binary ping: its frame, which knows its position itself.
size_t LayOutFrameRecord(std::string_view block, const LivePing& ping, std::string_view sentences,
                         std::span<char, kMaxRecordSize> record);

}  // namespace tw
