#include "base/bytes.h"

#include <gtest/gtest.h>

#include <cmath>

#include "base/checksum.h"

namespace tw {
namespace {

TEST(Bytes, LoadsAndStoresInBothOrders) {
  const uint8_t bytes[] = {0x01, 0x82, 0x03, 0xF4};
  EXPECT_EQ(LoadLe<uint32_t>(bytes), 0xF4038201u);
  EXPECT_EQ(LoadLe<int16_t>(bytes + 2), -3069);
  uint8_t out[4];
  StoreLe<int32_t>(out, -2);
  EXPECT_EQ(out[0], 0xFE);
  EXPECT_EQ(out[3], 0xFF);
  StoreBe<uint16_t>(out, 0x1234);
  EXPECT_EQ(out[0], 0x12);
  EXPECT_EQ(out[1], 0x34);
}

TEST(Bytes, FloatIsIeeeSinglePrecision) {
  uint8_t out[4];
  StoreLeFloat(out, 1.5f);
  EXPECT_EQ(LoadLe<uint32_t>(out), 0x3FC00000u);
  StoreLe<uint32_t>(out, 0x7FC00000u);
  EXPECT_TRUE(std::isnan(LoadLeFloat(out)));
}

TEST(Checksum, MatchesAPublishedSentence) {
  EXPECT_EQ(XorChecksum("GPGGA,123519,4807.038,N,01131.000,E,1,08,0.9,545.4,M,46.9,M,,"), 0x47);
}

}  // namespace
}  // namespace tw
