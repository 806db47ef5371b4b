#include "acquisition/mark_hunt.h"

#include <cstring>

namespace tw {

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
    if (byte == static_cast<uint8_t>(mark_[matched_])) {
      ++matched_;
    } else {
      matched_ = byte == first ? 1 : 0;
    }
    if (matched_ == mark_.size()) {
      matched_ = 0;
      return true;
    }
  }
  return false;
}

}  // namespace tw
