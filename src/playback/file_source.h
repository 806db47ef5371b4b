// A buffered source of bytes over a record file that knows the position of each byte. Used by one thread; the
// file stays its opener's.
#pragma once

#include <cstdint>
#include <memory>
#include <span>

#include "platform/handle.h"

namespace tw {

class FileSource {
 public:
  explicit FileSource(Handle file);

  // Makes sure that Bytes() holds at least one byte. False at the end of the file, when the file cannot be
  // read any further, and when there was no memory for the buffer.
  [[nodiscard]] bool Fill();

  // What has been read and not been used yet; whoever uses bytes takes them off the front.
  [[nodiscard]] std::span<const uint8_t>& Bytes() { return bytes_; }

  // The place in the file of the first byte of Bytes().
  [[nodiscard]] uint64_t Position() const { return behind_ - bytes_.size(); }

  // The next bytes, up to `count` of them (at most kMaxAhead), without using them: fewer at the file's end.
  [[nodiscard]] std::span<const uint8_t> Ahead(size_t count);
  static constexpr size_t kMaxAhead = 4'096;

  // Goes on at another place; what stood in the buffer is dropped.
  [[nodiscard]] bool Seek(uint64_t position);

  // How many bytes are read at once: from kMaxAhead to as many as the buffer holds.
  void SetReadSize(uint32_t bytes);

  // True once the system has refused to read: what was taken for the end was none.
  [[nodiscard]] bool Failed() const { return failed_; }

  // False when there was no memory for the buffer.
  [[nodiscard]] bool Ready() const { return buffer_ != nullptr; }

  // As the system tells it now: a file may still be growing. 0 when it cannot tell.
  [[nodiscard]] uint64_t Size() const;

 private:
  // Reads behind what stands in the buffer up to `from`; returns how many bytes came.
  [[nodiscard]] size_t ReadBehind(size_t from);

  Handle file_;
  std::unique_ptr<uint8_t[]> buffer_;
  std::span<const uint8_t> bytes_;
  uint64_t behind_ = 0;  // the place behind the last byte read
  bool failed_ = false;
  size_t readSize_;
};

}  // namespace tw
