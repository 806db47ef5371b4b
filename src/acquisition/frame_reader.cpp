#include "acquisition/frame_reader.h"

#include <algorithm>
#include <cstring>

namespace tw {

FrameReader::FrameReader(const FrameFormat& format, int32_t channels)
    : format_(format), channels_(channels), hunt_(format.magic) {}

bool FrameReader::Feed(std::span<const uint8_t>& input) {
  if (complete_) {
    complete_ = false;
    collecting_ = false;
  }
  while (!input.empty()) {
    if (!collecting_) {
      if (!hunt_.Take(input)) return false;
      BeginFrame();
    } else {
      const size_t count = std::min(needed_ - length_, input.size());
      std::memcpy(buffer_ + length_, input.data(), count);
      input = input.subspan(count);
      length_ += count;
      if (length_ < needed_) return false;
    }
    if (Advance()) return true;
  }
  return false;
}

void FrameReader::Break() {
  complete_ = false;
  collecting_ = false;
  hunt_ = MarkHunt(format_.magic);
}

void FrameReader::BeginFrame() {
  std::memcpy(buffer_, format_.magic.data(), format_.magic.size());
  length_ = format_.magic.size();
  collecting_ = true;
}

// Asks the format what is needed next. True when the frame is complete.
bool FrameReader::Advance() {
  while (collecting_) {
    needed_ = format_.neededBytes({buffer_, length_}, channels_);
    complete_ = needed_ == length_;
    if (needed_ >= length_) return complete_;
    collecting_ = HuntAgain();
  }
  return false;
}

// Looks for another magic in the bytes behind the one that was none, and goes on from there.
bool FrameReader::HuntAgain() {
  const size_t magic = format_.magic.size();
  std::span<const uint8_t> rest(buffer_ + magic, length_ - magic);
  if (!hunt_.Take(rest)) return false;
  std::memmove(buffer_ + magic, rest.data(), rest.size());
  length_ = magic + rest.size();
  return true;
}

}  // namespace tw
