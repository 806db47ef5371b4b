#include "acquisition/epoch_reader.h"

#include <algorithm>
#include <utility>

namespace tw {

bool EpochReader::Feed(std::span<const uint8_t>& input) {
  if (stage_ == Stage::complete) stage_ = Stage::hunting;
  while (!input.empty()) {
    const uint8_t byte = input[0];
    input = input.subspan(1);
    Take(byte);
    if (stage_ == Stage::complete) return true;
  }
  return false;
}

void EpochReader::Break() {
  stage_ = Stage::hunting;
  hunt_ = StartHunt(form_.starts);
  broken_ = !usual_.empty();
}

void EpochReader::Take(uint8_t byte) {
  if (stage_ == Stage::hunting) {
    const std::string_view start = hunt_.Take(byte);
    if (start.empty()) return;
    std::copy(start.begin(), start.end(), buffer_);
    length_ = searched_ = start.size();
    start_ = start;
    stage_ = Stage::gathering;
    return;
  }
  if (length_ == kEpochBufferSize - 1) {
    // The byte that did not fit may already begin the next epoch.
    stage_ = Stage::hunting;
    Take(byte);
    return;
  }
  buffer_[length_++] = static_cast<char>(byte);
  if (stage_ == Stage::gathering) {
    if (!Behind(form_.end)) return;
    stage_ = Stage::ending;
    searched_ = length_;
    return;
  }
  const bool whole =
      form_.bytesBehind != 0 ? length_ - searched_ == form_.bytesBehind : Behind(form_.lineEnd);
  if (!whole) return;
  buffer_[length_] = '\0';
  const bool isRest = std::exchange(broken_, false) && start_ != usual_;
  stage_ = isRest ? Stage::hunting : Stage::complete;
  if (!isRest) usual_ = start_;
}

bool EpochReader::Behind(std::string_view mark) const {
  if (buffer_[length_ - 1] != mark.back()) return false;
  return std::string_view(buffer_ + searched_, length_ - searched_).ends_with(mark);
}

}  // namespace tw
