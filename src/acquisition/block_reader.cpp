#include "acquisition/block_reader.h"

#include <algorithm>
#include <cstring>

namespace tw {
namespace {

constexpr size_t kPiece = 1024;  // bytes copied at once: what stands behind a block is copied in vain
constexpr size_t kStride = 32;

// The end mark has the same byte at 0 and 2 (CR LF CR). Lines of text never do, so whole strides are passed
// over by that test alone, which compilers turn into a few vector instructions.
bool MayHoldRepeat(const uint8_t* bytes, uint8_t first) {
  uint8_t any = 0;
  for (size_t i = 0; i < kStride; ++i) {
    any = static_cast<uint8_t>(any | ((bytes[i] == first) & (bytes[i + 2] == first)));
  }
  return any != 0;
}

// The offset behind the first end mark in [from, length), or 0 when there is none.
size_t FindEnd(const uint8_t* bytes, size_t from, size_t length, std::string_view mark) {
  const auto first = static_cast<uint8_t>(mark[0]);
  const bool repeats = mark.size() > 2 && mark[2] == mark[0] && length >= kStride + 2;
  size_t at = from;
  while (at + mark.size() <= length) {
    // The last stride may begin before `at`: it ends where the bytes end.
    const size_t stride = repeats ? std::min(at, length - kStride - 2) : at;
    if (repeats && !MayHoldRepeat(bytes + stride, first)) {
      at = stride + kStride;
      continue;
    }
    const size_t stop = std::min(at + kStride, length - mark.size() + 1);
    for (; at < stop; ++at) {
      if (bytes[at] == first && std::memcmp(bytes + at, mark.data(), mark.size()) == 0) {
        return at + mark.size();
      }
    }
  }
  return 0;
}

}  // namespace

BlockReader::BlockReader(const BlockMarks& marks, size_t bufferSize)
    : marks_(marks),
      hunt_(marks.start),
      size_(std::clamp(bufferSize, marks.start.size() + marks.end.size() + 1, kBlockBufferSize)) {}

bool BlockReader::Feed(std::span<const uint8_t>& input) {
  if (complete_) BeginHunt();
  while (!input.empty()) {
    if (!collecting_) {
      if (hunt_.Take(input)) BeginBlock();
    } else if (Collect(input)) {
      return true;
    }
  }
  return false;
}

void BlockReader::Break() {
  BeginHunt();
  hunt_ = MarkHunt(marks_.start);
}

void BlockReader::BeginHunt() {
  collecting_ = false;
  complete_ = false;
  length_ = 0;
}

void BlockReader::BeginBlock() {
  std::memcpy(buffer_, marks_.start.data(), marks_.start.size());
  length_ = marks_.start.size();
  collecting_ = true;
}

// Copies a piece behind what was gathered and looks for the end mark in it, beginning where one could still
// stand across the seam.
bool BlockReader::Collect(std::span<const uint8_t>& input) {
  const size_t room = size_ - 1 - length_;
  if (room == 0) {
    BeginHunt();
    return false;
  }
  const size_t before = length_;
  const size_t count = std::min({input.size(), room, kPiece});
  std::memcpy(buffer_ + before, input.data(), count);
  const size_t seam = marks_.end.size() - 1;
  const size_t from = std::max(marks_.start.size(), before > seam ? before - seam : 0);
  const size_t end = FindEnd(buffer_, from, before + count, marks_.end);
  if (end == 0) {
    length_ = before + count;
    input = input.subspan(count);
    return false;
  }
  input = input.subspan(end - before);
  length_ = end;
  buffer_[length_] = 0;
  complete_ = true;
  return true;
}

}  // namespace tw
