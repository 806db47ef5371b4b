// A handle of the operating system: a pointer-sized value that fits into the plain state record. On Windows
// it is the bits of a HANDLE. Two values are special: `null` (no thread) and `invalid` (no file, no port).
#pragma once

#include <cstdint>

namespace tw {

enum class Handle : uintptr_t { null = 0, invalid = ~uintptr_t{0} };

}  // namespace tw
