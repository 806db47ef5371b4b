// Looks for the first of several start marks in a byte stream, byte by byte (mark_hunt.h looks for one mark
// in whole pieces). A mismatch lets the comparison begin anew with the latest bytes that still fit, so that a
// mark is found wherever it stands. A pure state machine; one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace tw {

class StartHunt {
 public:
  static constexpr size_t kMaxMark = 16;

  // `marks` outlive the hunt; each has 1 to kMaxMark characters and none begins with another.
  explicit StartHunt(std::span<const std::string_view> marks) : marks_(marks) {
    for (const std::string_view mark : marks) begins_[static_cast<uint8_t>(mark[0])] = true;
  }

  // The mark that this byte completes; empty when it completes none.
  [[nodiscard]] std::string_view Take(uint8_t byte) {
    // Most bytes neither continue nor begin a mark.
    return length_ == 0 && !begins_[byte] ? std::string_view() : Match(byte);
  }

 private:
  [[nodiscard]] std::string_view Match(uint8_t byte);

  bool begins_[256] = {};  // what a mark's first character can be
  std::span<const std::string_view> marks_;
  char tail_[kMaxMark];  // the latest bytes, as long as they begin a mark
  size_t length_ = 0;
};

}  // namespace tw
