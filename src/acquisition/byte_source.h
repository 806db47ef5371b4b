// A buffered source of bytes over a serial line. It asks the line how many bytes wait and reads that many at
// once, or one byte when none wait, so that the line's own time-out rules an idle line. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "acquisition/stream_reader.h"
#include "platform/handle.h"
#include "platform/serial_line.h"

namespace tw {

enum class ReadResult : uint8_t {
  complete = 0,
  failed = 2,   // the line failed
  nothing = 3,  // no byte within the line's time-out; a partial block is kept
  pending = 4,  // bytes came, but no block was completed within kPollInterval_ms; a partial block is kept
};

inline constexpr uint32_t kPollInterval_ms = 100;

class ByteSource {
 public:
  explicit ByteSource(Handle line) : line_(line) {}

  // Goes on with another line; bytes of the one before are dropped.
  void Hear(Handle line) {
    line_ = line;
    bytes_ = {};
  }

  // Makes sure that Bytes() holds at least one byte: complete, failed or nothing.
  [[nodiscard]] ReadResult Fill();

  // What has been read and not been used yet; whoever uses bytes takes them off the front.
  [[nodiscard]] std::span<const uint8_t>& Bytes() { return bytes_; }

  // False when nothing is behind the line any more, though its reads may not fail.
  [[nodiscard]] bool IsThere() const { return IsLineThere(line_); }

  // Losses of input that the line has reported so far.
  [[nodiscard]] uint32_t Overruns() const { return overruns_; }

 private:
  Handle line_;
  uint32_t overruns_ = 0;
  std::span<const uint8_t> bytes_;
  uint8_t buffer_[16'384];
};

// Reads until the reader has a whole block.
[[nodiscard]] ReadResult ReadBlock(ByteSource& source, StreamReader& reader);

}  // namespace tw
