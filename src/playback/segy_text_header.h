// The textual header of SEG-Y files (SEG-Y revision 1, bytes 1 to 3200): 40 card images of 80 characters in
// EBCDIC. It is the same for every file; what belongs to a file stands in the binary and trace headers. Pure;
// any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tw {

inline constexpr size_t kSegyTextHeaderSize = 3200;

void BuildSegyTextHeader(std::span<uint8_t, kSegyTextHeaderSize> header);

}  // namespace tw
