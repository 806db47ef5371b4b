#include "playback/file_source.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "platform/file.h"

namespace tw {
namespace {

constexpr uint32_t kBufferSize = 256 * 1024;

}  // namespace

FileSource::FileSource(Handle file)
    : file_(file), buffer_(new (std::nothrow) uint8_t[kBufferSize]), readSize_(kBufferSize) {}

void FileSource::SetReadSize(uint32_t bytes) {
  readSize_ = std::clamp<size_t>(bytes, kMaxAhead, kBufferSize);
}

size_t FileSource::ReadBehind(size_t from) {
  uint32_t got = 0;
  failed_ = !ReadFileBytes(file_, buffer_.get() + from,
                           static_cast<uint32_t>(std::min(readSize_, kBufferSize - from)), got);
  if (failed_) return 0;
  behind_ += got;
  return got;
}

bool FileSource::Fill() {
  if (!bytes_.empty()) return true;
  if (!Ready()) return false;
  bytes_ = {buffer_.get(), ReadBehind(0)};
  return !bytes_.empty();
}

std::span<const uint8_t> FileSource::Ahead(size_t count) {
  count = std::min(count, kMaxAhead);
  if (bytes_.size() < count && Ready()) {
    // What is left moves to the front, so that more fits behind it.
    const size_t left = bytes_.size();
    if (left != 0) std::memmove(buffer_.get(), bytes_.data(), left);
    bytes_ = {buffer_.get(), left + ReadBehind(left)};
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
