// Looks for the one mark that blocks or frames of a kind begin with; where there are several to choose from,
// see start_hunt.h. A mismatch restarts the comparison with as many of the latest bytes as can begin the
// mark, so that a mark is found wherever it stands: right behind a piece of itself too. A pure state machine;
// one thread at a time.
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

 private:
  [[nodiscard]] size_t MatchedWith(uint8_t byte) const;

  std::string_view mark_;
  size_t matched_ = 0;
};

}  // namespace tw
