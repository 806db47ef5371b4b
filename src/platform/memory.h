// Big zero-filled blocks whose pages become resident only when they are touched.
#pragma once

#include <cstddef>

namespace tw {

// A zero-filled block, page-aligned; null when the system cannot give it, and LastSystemError() tells why.
[[nodiscard]] void* AllocateZeroed(size_t size_bytes);
void FreeZeroed(void* block, size_t size_bytes);

// Resident memory of this process in bytes; 0 when that cannot be told.
[[nodiscard]] size_t ResidentBytes();

}  // namespace tw
