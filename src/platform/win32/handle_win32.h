// Our handles and the system's are the same bits.
#pragma once

#include <windows.h>

#include "platform/handle.h"

namespace tw {

[[nodiscard]] inline HANDLE ToSystem(Handle handle) {
  return reinterpret_cast<HANDLE>(static_cast<uintptr_t>(handle));
}

[[nodiscard]] inline Handle FromSystem(HANDLE handle) {
  return Handle{reinterpret_cast<uintptr_t>(handle)};
}

// Closes what is a handle at all.
inline void CloseIfOpen(Handle handle) {
  if (handle != Handle::null && handle != Handle::invalid) CloseHandle(ToSystem(handle));
}

}  // namespace tw
