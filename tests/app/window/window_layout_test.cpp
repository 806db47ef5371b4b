#include "app/window/window_layout.h"

#include <gtest/gtest.h>

#include <vector>

namespace tw {
namespace {

using Numbers = std::vector<int32_t>;

Numbers PlaceOf(const Box& box) {
  return {box.x, box.y, box.width, box.height};
}

// Worked out by hand from the window's margins.
TEST(WindowLayout, PlacesEchogramAndSlider) {
  const struct {
    const char* what;
    WindowLayout layout;
    Numbers echogram, slider;
  } rows[] = {
      {"normal view", {964, 691, false, false, 96}, {186, 6, 772, 655}, {186, 647, 772, 22}},
      {"normal view while playing", {964, 691, false, true, 96}, {186, 6, 772, 640}, {186, 647, 772, 22}},
      {"full window", {964, 691, true, false, 96}, {6, 6, 952, 655}, {6, 647, 952, 22}},
      {"full window while playing", {964, 691, true, true, 96}, {6, 6, 952, 640}, {6, 647, 952, 22}},
      {"large", {1904, 1021, false, false, 96}, {186, 6, 1712, 985}, {186, 977, 1712, 22}},
      {"half as dense again", {1446, 1036, false, true, 144}, {279, 9, 1158, 959}, {279, 970, 1158, 33}},
      {"with the playback bar", {964, 691, false, true, 96, true}, {186, 6, 772, 576}, {186, 647, 772, 22}},
      {"a bar alone", {964, 691, false, false, 96, true}, {186, 6, 772, 655}, {186, 647, 772, 22}},
      {"narrower than the controls", {100, 20, false, false, 96}, {186, 6, 0, 0}, {186, -24, 0, 22}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(PlaceOf(EchogramBox(row.layout)), row.echogram) << row.what;
    EXPECT_EQ(PlaceOf(SliderBox(row.layout)), row.slider) << row.what;
  }
  EXPECT_EQ(PlaceOf(PlaybackBarBox({964, 691, false, true, 96, true})), (Numbers{186, 583, 772, 64}));
}

// A work area is the screen without its task bar.
TEST(WindowLayout, WindowIsNeverLargerThanItsWorkAreaNorOutsideIt) {
  const struct {
    const char* what;
    Box area;
    int32_t dpi;
    Numbers smallest;
    Box window;
    Numbers placed;
  } rows[] = {
      {"1366 x 768", {0, 0, 1366, 728}, 96, {980, 728}, {193, -11, 980, 750}, {193, 0, 980, 728}},
      {"1080 rows at 150 %", {0, 0, 1920, 1020}, 144, {1470, 1020}, {9, 9, 1470, 1125}, {9, 0, 1470, 1020}},
      {"1800 rows, 200 %", {0, 0, 2880, 1704}, 192, {1960, 1500}, {9, 2, 1960, 1500}, {9, 2, 1960, 1500}},
      {"beside a task bar", {62, 0, 738, 600}, 96, {738, 600}, {-90, -75, 980, 750}, {62, 0, 738, 600}},
      {"on the left", {-1280, 0, 1280, 984}, 96, {980, 750}, {-500, 300, 980, 750}, {-980, 234, 980, 750}},
  };
  for (const auto& row : rows) {
    const WindowSize smallest = SmallestWindow(row.area, row.dpi);
    EXPECT_EQ((Numbers{smallest.width, smallest.height}), row.smallest) << row.what;
    EXPECT_EQ(PlaceOf(WithinWorkArea(row.window, row.area)), row.placed) << row.what;
  }
}

}  // namespace
}  // namespace tw
