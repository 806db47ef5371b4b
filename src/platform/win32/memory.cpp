#include "platform/memory.h"

#include <windows.h>
// Needs the types of the line above.
#include <psapi.h>

namespace tw {

void* AllocateZeroed(size_t size_bytes) {
  return VirtualAlloc(nullptr, size_bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
}

void FreeZeroed(void* block, size_t size_bytes) {
  (void)size_bytes;
  if (block != nullptr) VirtualFree(block, 0, MEM_RELEASE);
}

size_t ResidentBytes() {
  PROCESS_MEMORY_COUNTERS counters{};
  counters.cb = sizeof(counters);
  if (!K32GetProcessMemoryInfo(GetCurrentProcess(), &counters, sizeof(counters))) return 0;
  return counters.WorkingSetSize;
}

}  // namespace tw
