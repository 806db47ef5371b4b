#include "playback/file_source.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/file.h"

namespace tw {
namespace {

constexpr uint32_t kBufferSize = 256 * 1024;

}  // namespace

FileSource::FileSource(Handle file) : file_(file), buffer_(new (std::nothrow) uint8_t[kBufferSize]) {}

bool FileSource::Fill() {
  if (!bytes_.empty()) return true;
  uint32_t got = 0;
  if (buffer_ == nullptr || !ReadFileBytes(file_, buffer_.get(), kBufferSize, got) || got == 0) return false;
  bytes_ = {buffer_.get(), got};
  behind_ += got;
  return true;
}

std::span<const uint8_t> FileSource::Ahead(size_t count) {
  count = std::min(count, kMaxAhead);
  if (bytes_.size() < count && buffer_ != nullptr) {
    // What is left moves to the front, so that more fits behind it.
    const size_t left = bytes_.size();
    if (left != 0) std::memmove(buffer_.get(), bytes_.data(), left);
    uint32_t got = 0;
    if (!ReadFileBytes(file_, buffer_.get() + left, static_cast<uint32_t>(kBufferSize - left), got)) got = 0;
    bytes_ = {buffer_.get(), left + got};
    behind_ += got;
  }
  return bytes_.first(std::min(count, bytes_.size()));
}

bool FileSource::Seek(uint64_t position) {
  if (!SeekFile(file_, position)) return false;
  bytes_ = {};
  behind_ = position;
  return true;
}

uint64_t FileSource::Size() const {
  uint64_t size = 0;
  return FileSize(file_, size) ? size : 0;
}

}  // namespace tw
