// A file that a conversion writes: bytes are laid out straight into its buffer and go to the disk together.
// After a write that failed or was short nothing more is written. The file stays its opener's. One thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include "platform/handle.h"

namespace tw {

inline constexpr size_t kOutputBufferSize = size_t{512} * 1024;

class OutputFile {
 public:
  explicit OutputFile(Handle file);

  // Room for the next `size` bytes (at most kOutputBufferSize), to be filled and then taken; what stood in
  // the buffer may be written first. Null after a failure.
  [[nodiscard]] uint8_t* Room(size_t size);
  void Take(size_t size) { used_ += size; }

  // Writes what stands in the buffer. False after a failure, now or earlier.
  [[nodiscard]] bool Flush();

  [[nodiscard]] bool Failed() const { return failed_; }
  // The system's error of the write that failed; 0 without one, and when there was no memory.
  [[nodiscard]] uint32_t Error() const { return error_; }
  [[nodiscard]] uint64_t Size() const { return written_ + used_; }

 private:
  Handle file_;
  std::unique_ptr<uint8_t[]> buffer_;
  size_t used_ = 0;
  uint64_t written_ = 0;
  uint32_t error_ = 0;
  bool failed_;
};

}  // namespace tw
