// The list of serial ports that the port selectors show.
#pragma once

#include <cstddef>
#include <cstdint>

namespace tw {

inline constexpr size_t kMaxPorts = 256;
inline constexpr size_t kPortNameSize = 256;

// One serial port of the list; the list ends at the first entry with number 0.
struct PortEntry {
  uint32_t number;
  wchar_t name[kPortNameSize];
};

}  // namespace tw
