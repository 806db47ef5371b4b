// The checksum of NMEA 0183 sentences (IEC 61162-1): exclusive or of the characters between '$' and '*',
// both left out. Any thread.
#pragma once

#include <cstdint>
#include <cstring>
#include <string_view>

namespace tw {

// Eight characters at a time.
[[nodiscard]] inline uint8_t XorChecksum(std::string_view text) {
  uint64_t sums = 0;
  for (; text.size() >= sizeof sums; text.remove_prefix(sizeof sums)) {
    uint64_t eight = 0;
    std::memcpy(&eight, text.data(), sizeof eight);
    sums ^= eight;
  }
  for (const char c : text) sums ^= static_cast<uint8_t>(c);
  for (const int half : {32, 16, 8}) sums ^= sums >> half;
  return static_cast<uint8_t>(sums);
}

}  // namespace tw
