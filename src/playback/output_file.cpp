#include "playback/output_file.h"

#include <new>

#include "platform/file.h"
#include "platform/system_error.h"

namespace tw {

OutputFile::OutputFile(Handle file)
    : file_(file), buffer_(new (std::nothrow) uint8_t[kOutputBufferSize]), failed_(buffer_ == nullptr) {}

uint8_t* OutputFile::Room(size_t size) {
  if (size > kOutputBufferSize - used_ && !Flush()) return nullptr;
  return failed_ ? nullptr : buffer_.get() + used_;
}

bool OutputFile::Flush() {
  if (failed_) return false;
  if (used_ == 0) return true;
  uint32_t written = 0;
  failed_ = !WriteFileBytes(file_, buffer_.get(), static_cast<uint32_t>(used_), written);
  if (failed_) error_ = LastSystemError();
  written_ += written;
  used_ = 0;
  return !failed_;
}

}  // namespace tw
