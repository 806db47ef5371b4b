#include "acquisition/mark_hunt.h"

#include <cstring>

namespace tw {

// How much of the mark the bytes that matched so far and this one end with.
size_t MarkHunt::MatchedWith(uint8_t byte) const {
  const std::string_view matched = mark_.substr(0, matched_);
  for (size_t length = matched_ + 1; length > 0; --length) {
    if (byte == static_cast<uint8_t>(mark_[length - 1]) && matched.ends_with(mark_.substr(0, length - 1))) {
      return length;
    }
  }
  return 0;
}

bool MarkHunt::Take(std::span<const uint8_t>& input) {
  const auto first = static_cast<uint8_t>(mark_[0]);
  while (!input.empty()) {
    if (matched_ == 0) {
      const void* found = std::memchr(input.data(), first, input.size());
      if (found == nullptr) {
        input = {};
        return false;
      }
      input = input.subspan(static_cast<size_t>(static_cast<const uint8_t*>(found) - input.data()));
    }
    const uint8_t byte = input[0];
    input = input.subspan(1);
    matched_ = MatchedWith(byte);
    if (matched_ == mark_.size()) {
      matched_ = 0;
      return true;
    }
  }
  return false;
}

}  // namespace tw
