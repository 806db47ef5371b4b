#include "display/canvas.h"

#include <gtest/gtest.h>

#include <string>

#include "tests/display/test_canvas.h"

namespace tw {
namespace {

// A '#' for each drawn pixel.
std::string Text(const TestCanvas& canvas) {
  std::string text;
  for (int32_t y = 0; y < canvas.Whole().height; ++y) {
    for (int32_t x = 0; x < canvas.Whole().width; ++x) text += canvas.At(x, y) != 0 ? '#' : '.';
    text += '\n';
  }
  return text;
}

TEST(Canvas, LinesIncludeBothEnds) {
  TestCanvas canvas(8, 4);
  DrawLine(canvas.Whole(), {1, 0}, {6, 0}, 1);
  DrawLine(canvas.Whole(), {7, 3}, {7, 1}, 1);
  DrawLine(canvas.Whole(), {0, 1}, {2, 3}, 1);
  DrawLine(canvas.Whole(), {4, 2}, {4, 2}, 1);
  EXPECT_EQ(Text(canvas),
            ".######.\n"
            "#......#\n"
            ".#..#..#\n"
            "..#....#\n");
}

TEST(Canvas, DashDotIsThreeOneOneOne) {
  TestCanvas canvas(14, 1);
  DrawLine(canvas.Whole(), {0, 0}, {13, 0}, 1, LineStyle::dashDot);
  EXPECT_EQ(Text(canvas), "###.#.###.#.##\n");
}

TEST(Canvas, EverythingIsClipped) {
  TestCanvas canvas(4, 3);
  DrawLine(canvas.Whole(), {-5, 1}, {2'000'000'000, 1}, 1);
  FillRect(canvas.Whole(), {3, -9, 99, 1}, 1);
  FillRect(canvas.Whole(), {2, 2, 1, 9}, 1);
  FillRect(canvas.Whole(), {4, 0, 9, 9}, 1);
  EXPECT_EQ(Text(canvas),
            "...#\n"
            "####\n"
            "....\n");
  const Canvas outside = Part(canvas.Whole(), {5, 0, 7, 2});
  EXPECT_EQ(outside.width, 0);
  EXPECT_EQ(outside.height, 0);
}

}  // namespace
}  // namespace tw
