#include "display/text_mask.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "tests/display/test_canvas.h"

namespace tw {
namespace {

// Two pixels of a text: a whole one, and half of one.
TextMask TwoPixels() {
  const TestCanvas drawn(8, 5);
  drawn.Whole().Row(1)[2] = 0xFFFFFF;
  drawn.Whole().Row(2)[4] = 0x808080;
  return MaskOf(drawn.Whole());
}

TEST(TextMask, IsAsLargeAsWhatWasDrawn) {
  const TextMask mask = TwoPixels();
  EXPECT_EQ(PlaceOf(mask.offset), (Numbers{2, 1}));
  EXPECT_EQ(mask.width, 3);
  EXPECT_EQ(mask.height, 2);
  EXPECT_EQ(mask.coverage, (std::vector<uint8_t>{255, 0, 0, 0, 0, 128}));
  EXPECT_TRUE(MaskOf(TestCanvas(3, 3).Whole()).coverage.empty());
}

TEST(TextMask, IsBlendedWhereTheTextWouldHaveStoodAndClipped) {
  const struct {
    const char* what;
    Pixel under;
    Point at;
    Pixel colour;
    Point pixel;
    Pixel blended;
    ptrdiff_t changed;  // pixels in all
  } rows[] = {
      {"whole", 0x102030, {0, 0}, 0xFFFA9D, {2, 1}, 0xFFFA9D, 2},
      {"nothing was drawn there", 0x102030, {0, 0}, 0xFFFA9D, {3, 1}, 0x102030, 2},
      {"half on black", 0x000000, {0, 0}, 0xFF00FF, {4, 2}, 0x800080, 2},
      {"half on white", 0xFFFFFF, {0, 0}, 0x000000, {4, 2}, 0x7F7F7F, 2},
      {"clipped left", 0, {-3, 0}, 0xFFFFFF, {1, 2}, 0x808080, 1},
      {"clipped left and above", 0, {-4, -2}, 0xFFFFFF, {0, 0}, 0x808080, 1},
      {"clipped right", 0, {2, 0}, 0xFFFFFF, {4, 1}, 0xFFFFFF, 1},
      {"clipped right and below", 0, {3, 2}, 0xFFFFFF, {5, 3}, 0xFFFFFF, 1},
      {"far left", 7, {-kMaxCoordinate, -kMaxCoordinate}, 1, {0, 0}, 7, 0},
      {"far right", 7, {kMaxCoordinate, kMaxCoordinate}, 1, {0, 0}, 7, 0},
  };
  const TextMask mask = TwoPixels();
  for (const auto& row : rows) {
    const TestCanvas canvas(6, 4, row.under);
    BlendMask(canvas.Whole(), mask, row.at, row.colour);
    EXPECT_EQ(canvas.At(row.pixel.x, row.pixel.y), row.blended) << row.what;
    const auto& pixels = canvas.Pixels();
    EXPECT_EQ(std::count(pixels.begin(), pixels.end(), row.under), std::ssize(pixels) - row.changed)
        << row.what;
  }
}

}  // namespace
}  // namespace tw
