// Where the calls of this side ask whether a fault was put there. Any thread.
#pragma once

#include <cstdint>
#include <string_view>

#include "platform/virtual/faults.h"

namespace tw {

// Counts the call. True when it is to fail: then the system error is set, and `taken` (when given) is what a
// write takes all the same.
[[nodiscard]] bool FaultAt(FaultPoint point, std::wstring_view subject, uint32_t* taken = nullptr);

// How many of `size` bytes the disk still takes; they count as written.
[[nodiscard]] uint32_t TakeDiskSpace(uint32_t size);
[[nodiscard]] uint64_t DiskSpaceLeft();

struct LineAllowance {
  uint32_t bytes;  // as many may be delivered now, at most
  bool silent;     // what has arrived is lost
  bool hungUp;
  bool blocked;  // nothing is taken
};
[[nodiscard]] LineAllowance AllowedOnLine(std::wstring_view name, uint32_t wanted);
void CountDelivered(std::wstring_view name, uint32_t bytes);

}  // namespace tw
