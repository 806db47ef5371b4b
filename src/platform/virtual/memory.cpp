#include "platform/memory.h"

#include "platform/posix/pages.h"
#include "platform/virtual/fault_points.h"

namespace tw {

void* AllocateZeroed(size_t size_bytes) {
  return FaultAt(FaultPoint::allocate, {}) ? nullptr : posix::AllocateZeroed(size_bytes);
}

}  // namespace tw
