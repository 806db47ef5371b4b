// Looks for the one mark that blocks or frames of a kind begin with; where there are several to choose from,
// see start_hunt.h. A mismatch restarts the comparison, counting the byte as a first match when it equals the
// mark's first byte. A pure state machine; one thread at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace tw {

class MarkHunt {
 public:
  // `mark` outlives the hunt and is not empty.
  explicit MarkHunt(std::string_view mark) : mark_(mark) {}

  // Takes bytes off the front of `input` until the mark is complete (true; the next call looks for another
  // one) or the input is used up.
  [[nodiscard]] bool Take(std::span<const uint8_t>& input);

  // Forgets a mark that has begun.
  void Reset() { matched_ = 0; }

 private:
  std::string_view mark_;
  size_t matched_ = 0;
};

}  // namespace tw
