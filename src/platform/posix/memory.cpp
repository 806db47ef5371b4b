#include "platform/memory.h"

#include "platform/posix/pages.h"

namespace tw {

void* AllocateZeroed(size_t size_bytes) {
  return posix::AllocateZeroed(size_bytes);
}

}  // namespace tw
