#include "display/canvas.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace tw {
namespace {

// The canvas as text, a '#' for each drawn pixel.
class Picture {
 public:
  Picture(int32_t width, int32_t height)
      : pixels_(static_cast<size_t>(width * height)), canvas_{pixels_.data(), width, height, width} {}

  const Canvas& Drawn() const { return canvas_; }
  std::string Text() const {
    std::string text;
    for (int32_t y = 0; y < canvas_.height; ++y) {
      for (int32_t x = 0; x < canvas_.width; ++x) text += canvas_.Row(y)[x] != 0 ? '#' : '.';
      text += '\n';
    }
    return text;
  }

 private:
  std::vector<Pixel> pixels_;
  Canvas canvas_;
};

TEST(Canvas, LinesIncludeBothEnds) {
  Picture picture(8, 4);
  DrawLine(picture.Drawn(), {1, 0}, {6, 0}, 1);
  DrawLine(picture.Drawn(), {7, 3}, {7, 1}, 1);
  DrawLine(picture.Drawn(), {0, 1}, {2, 3}, 1);
  DrawLine(picture.Drawn(), {4, 2}, {4, 2}, 1);
  EXPECT_EQ(picture.Text(),
            ".######.\n"
            "#......#\n"
            ".#..#..#\n"
            "..#....#\n");
}

TEST(Canvas, DashDotIsThreeOneOneOne) {
  Picture picture(14, 1);
  DrawLine(picture.Drawn(), {0, 0}, {13, 0}, 1, LineStyle::dashDot);
  EXPECT_EQ(picture.Text(), "###.#.###.#.##\n");
}

TEST(Canvas, EverythingIsClipped) {
  Picture picture(4, 3);
  DrawLine(picture.Drawn(), {-5, 1}, {2'000'000'000, 1}, 1);
  FillRect(picture.Drawn(), {3, -9, 99, 1}, 1);
  FillRect(picture.Drawn(), {2, 2, 1, 9}, 1);
  FillRect(picture.Drawn(), {4, 0, 9, 9}, 1);
  EXPECT_EQ(picture.Text(),
            "...#\n"
            "####\n"
            "....\n");
  const Canvas outside = Part(picture.Drawn(), {5, 0, 7, 2});
  EXPECT_EQ(outside.width, 0);
  EXPECT_EQ(outside.height, 0);
}

}  // namespace
}  // namespace tw
