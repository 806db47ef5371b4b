#include "acquisition/start_hunt.h"

#include <algorithm>
#include <cstring>

namespace tw {

std::string_view StartHunt::Match(uint8_t byte) {
  tail_[length_++] = static_cast<char>(byte);
  while (length_ > 0) {
    const std::string_view tail(tail_, length_);
    const auto mark = std::find_if(marks_.begin(), marks_.end(),
                                   [&](std::string_view each) { return each.starts_with(tail); });
    if (mark != marks_.end()) {
      if (mark->size() != length_) return {};
      length_ = 0;
      return *mark;
    }
    --length_;
    std::memmove(tail_, tail_ + 1, length_);
  }
  return {};
}

}  // namespace tw
