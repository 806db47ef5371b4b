// What a list of time marks holds, entry by entry.
#pragma once

#include <algorithm>
#include <span>

#include "app/state/app_state.h"

namespace tw {

// The text of the ping that came `age` pings ago (0 = newest). False when the list does not reach so far.
[[nodiscard]] inline bool CopyMark(MarkList& marks, int32_t age, std::span<char, kMarkTextSize> text) {
  Locked held(marks.lock);
  if (age < 0 || age >= marks.count) return false;
  const auto entry = static_cast<size_t>(marks.newest + age) % kMaxMarks;
  std::copy_n(marks.entries[entry].text, kMarkTextSize, text.begin());
  return true;
}

}  // namespace tw
