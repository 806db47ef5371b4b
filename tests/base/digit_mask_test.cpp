#include "base/digit_mask.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string_view>

namespace tw {
namespace {

TEST(DigitMask, AllButTheTenDigits) {
  uint8_t bytes[kMaskedBytes];
  for (unsigned first = 0; first < 256; first += kMaskedBytes) {
    uint64_t expected = 0;
    for (unsigned i = 0; i < kMaskedBytes; ++i) {
      bytes[i] = static_cast<uint8_t>(first + i);
      const bool digit =
          std::string_view("0123456789").find(static_cast<char>(first + i)) != std::string_view::npos;
      expected |= uint64_t{!digit} << i;
    }
    EXPECT_EQ(NonDigits(bytes), expected) << "from " << first;
    EXPECT_EQ(NonDigitsByWords(bytes), expected) << "from " << first;
  }
}

TEST(DigitMask, NoByteTellsOfItsNeighbour) {
  uint8_t bytes[kMaskedBytes];
  for (const uint8_t other : {0x00, 0x2F, 0x3A, 0x7F, 0x80, 0xB5, 0xFF}) {
    for (unsigned i = 0; i < kMaskedBytes; ++i) {
      std::memset(bytes, '9', sizeof bytes);
      bytes[i] = other;
      EXPECT_EQ(NonDigits(bytes), uint64_t{1} << i) << int{other};
      EXPECT_EQ(NonDigitsByWords(bytes), uint64_t{1} << i) << int{other};
    }
  }
}

}  // namespace
}  // namespace tw
