#include "display/text_mask.h"

#include <gtest/gtest.h>

#include <vector>

namespace tw {
namespace {

class TextMaskTest : public testing::Test {
 protected:
  TextMaskTest() {
    drawn_[1 * 8 + 2] = 0xFFFFFF;
    drawn_[2 * 8 + 4] = 0x808080;
    mask_ = MaskOf({drawn_.data(), 8, 5, 8});
  }

  Pixel Blended(Pixel under, Point at, Point pixel, Pixel colour) {
    std::vector<Pixel> pixels(6 * 4, under);
    BlendMask({pixels.data(), 6, 4, 6}, mask_, at, colour);
    return pixels[static_cast<size_t>(pixel.y * 6 + pixel.x)];
  }

  std::vector<Pixel> drawn_ = std::vector<Pixel>(8 * 5);
  TextMask mask_;
};

TEST_F(TextMaskTest, IsAsLargeAsWhatWasDrawn) {
  EXPECT_EQ(mask_.offset.x, 2);
  EXPECT_EQ(mask_.offset.y, 1);
  EXPECT_EQ(mask_.width, 3);
  EXPECT_EQ(mask_.height, 2);
  EXPECT_EQ(mask_.coverage, (std::vector<uint8_t>{255, 0, 0, 0, 0, 128}));
  std::vector<Pixel> nothing(9);
  EXPECT_TRUE(MaskOf({nothing.data(), 3, 3, 3}).coverage.empty());
}

TEST_F(TextMaskTest, BlendsWhereTheTextWouldHaveStood) {
  EXPECT_EQ(Blended(0x102030, {0, 0}, {2, 1}, 0xFFFA9D), 0xFFFA9Du);
  EXPECT_EQ(Blended(0x102030, {0, 0}, {3, 1}, 0xFFFA9D), 0x102030u) << "nothing was drawn there";
  EXPECT_EQ(Blended(0x000000, {0, 0}, {4, 2}, 0xFF00FF), 0x800080u);
  EXPECT_EQ(Blended(0xFFFFFF, {0, 0}, {4, 2}, 0x000000), 0x7F7F7Fu);
}

TEST_F(TextMaskTest, IsClippedOnAllSides) {
  EXPECT_EQ(Blended(0, {-4, -2}, {0, 0}, 0xFFFFFF), 0x808080u);
  EXPECT_EQ(Blended(0, {3, 2}, {5, 3}, 0xFFFFFF), 0xFFFFFFu);
  for (const int32_t far : {-kMaxCoordinate, kMaxCoordinate})
    EXPECT_EQ(Blended(7, {far, far}, {0, 0}, 1), 7u);
}

}  // namespace
}  // namespace tw
