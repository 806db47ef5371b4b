// Pages of the system: what both this side and the test gear hand out.
#pragma once

#include <cstddef>

namespace tw::posix {

[[nodiscard]] void* AllocateZeroed(size_t size_bytes);

}  // namespace tw::posix
