// Whose file is whose in a call. Which output belongs to which recording does not depend on how many are
// worked on at the same time: recordings whose outputs could meet, or of which one could be the other's
// output, are one unit, worked on by one thread in their order.
#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "platform/sync.h"
#include "tools/echotool/folders.h"

namespace tw::echotool {

// What all jobs of a call share. Files by their full paths. Any thread.
class Claims {
 public:
  // The inputs outlive it.
  explicit Claims(const std::vector<Input>& inputs);
  ~Claims() { DestroyLock(lock_); }
  Claims(const Claims&) = delete;
  Claims& operator=(const Claims&) = delete;

  // The recording that is this file; null when the call has none.
  [[nodiscard]] const Input* InputAt(const std::wstring& full) const;

  // Outputs that the call has made so far, or would make.
  void NoteMade(const std::wstring& full);
  [[nodiscard]] bool IsMade(const std::wstring& full);

 private:
  std::unordered_map<std::wstring, const Input*> inputs_;
  Lock lock_{};
  std::unordered_set<std::wstring> made_;  // under the lock
};

// The units of a call as the places of their recordings in the list, in the order of their first ones. Names
// that a file system may take for the same count as the same.
[[nodiscard]] std::vector<std::vector<size_t>> UnitsOf(const std::vector<Input>& inputs, Task task);

}  // namespace tw::echotool
