// Finds frames in a byte stream: a magic, a length, and as many bytes as the lengths in the frame say. Which
// bytes those are is the format's business (echo_frame.h, device_block.h).
//
//   ...noise... magic | length | header ... | samples ... | magic | length | ...
//
// Getting back in step: bytes outside a frame are dropped. Frames carry no checksum, so a false length that
// is possible swallows what stands within it. One that is not is noticed as soon as it has come; the hunt
// then goes on behind the magic it stood at, so that a frame that begins right there is not lost.
//
// A pure state machine over bytes of a port or a file; one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "acquisition/mark_hunt.h"
#include "acquisition/stream_reader.h"

namespace tw {

inline constexpr size_t kFrameBufferSize = 256'000;

// What NeededBytes answers when the bytes cannot begin a frame.
inline constexpr size_t kNoFrame = 0;

struct FrameFormat {
  std::string_view magic;

  // Given the first bytes of a frame, its magic at least: how many are needed before more can be told; as
  // many as were given when the frame is complete; kNoFrame when they begin none. Never more than
  // kFrameBufferSize, and it refuses before the smallest frame could have ended.
  size_t (*neededBytes)(std::span<const uint8_t> bytes, int32_t channels);
};

class FrameReader final : public StreamReader {
 public:
  // `channels` (1 or 2): how many of them stand in each frame, where the format leaves that open.
  explicit FrameReader(const FrameFormat& format, int32_t channels = 1);

  [[nodiscard]] bool Feed(std::span<const uint8_t>& input) override;
  void Break() override;

  // From the magic through the last sample, as it stood in the stream.
  [[nodiscard]] std::string_view Block() const override {
    return {reinterpret_cast<const char*>(buffer_), length_};
  }

 private:
  void BeginFrame();
  bool Advance();
  bool HuntAgain();

  const FrameFormat& format_;
  const int32_t channels_;
  MarkHunt hunt_;
  size_t length_ = 0;
  size_t needed_ = 0;
  bool collecting_ = false;
  bool complete_ = false;
  uint8_t buffer_[kFrameBufferSize];
};

}  // namespace tw
