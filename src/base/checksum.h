// The checksum of NMEA 0183 sentences (IEC 61162-1): exclusive or of the characters between '$' and '*',
// both left out. Any thread.
#pragma once

#include <cstdint>
#include <string_view>

namespace tw {

[[nodiscard]] constexpr uint8_t XorChecksum(std::string_view text) {
  uint8_t sum = 0;
  for (const char c : text) sum = static_cast<uint8_t>(sum ^ static_cast<uint8_t>(c));
  return sum;
}

}  // namespace tw
