// What stands under the cursor, and where the box beside it goes.
#include "display/readout.h"

#include <gtest/gtest.h>

#include <numbers>

#include "acquisition/store_ping.h"
#include "acquisition/time_lines.h"
#include "display/depth_trace.h"
#include "display/time_lines_overlay.h"
#include "tests/display/test_canvas.h"
#include "tests/display/test_ring.h"

namespace tw {
namespace {

constexpr double kDegree = std::numbers::pi / 180;

// A panel of 150 slots across 150 columns, so that each slot has a column of its own.
class ReadOut : public testing::Test {
 protected:
  static constexpr int32_t kNewest = 400;

  ReadOut() {
    panel_.place = PanelPlace::single;
    panel_.layout = LayOutPanel(0, 300, 340, 96);  // an image of 150 x 300 at (30, 20)
    panel_.source.ring = ring_.get();
    panel_.source.ringTime = 70'000;
    panel_.source.scale = {kNewest, 15, 30'000, 1'500.0f};
    panel_.source.hasEchogram = true;
    for (int32_t slot = 200; slot <= kNewest; ++slot) {
      PingHeader header{};
      header.ping = static_cast<uint32_t>(slot);
      header.timeOfWork_s = 1'700'006'300 + static_cast<uint32_t>(slot);
      header.altitude_m = slot % 100 == 50 ? 0.0f : 15.0f;
      header.gpsValid = slot % 2;
      header.gpsLatitude_rad = static_cast<float>(-35.5 * kDegree);
      header.gpsLongitude_rad = static_cast<float>((129.25 + slot * 1e-3) * kDegree);
      StorePingHeader(ring_->slots[slot], header);
      StoreSample(ring_->slots[slot], 88, 2'000, 2'048);  // at 15 m
    }
  }

  [[nodiscard]] Reading At(int32_t x, int32_t y) const {
    const auto spot = FindSpot({&panel_, 1}, {x, y});
    EXPECT_TRUE(spot.has_value());
    return ReadSpot(panel_, spot.value_or(ImageSpot{}));
  }
  [[nodiscard]] static std::wstring All(const ReadOutText& text) {
    std::wstring all;
    for (size_t i = 0; i < text.count; ++i) all += std::wstring(i == 0 ? L"" : L"|") + text.lines[i];
    return all;
  }

  TestRing ring_ = MakeRing();
  PaintedPanel panel_{};
};

TEST_F(ReadOut, TellsThePingUnderTheCursor) {
  EXPECT_EQ(All(DescribeReading(At(30 + 101, 20 + 150), kMetres)),
            L"15.00m|2023-11-15 00:04:11 UTC|Ping 351, 50%|35\u00B030.0000'S 129\u00B036.0597'E");
  EXPECT_EQ(All(DescribeReading(At(30 + 100, 20 + 75), kFeet)),
            L"24.61ft|2023-11-15 00:04:10 UTC|Ping 350, 0%");
  panel_.source.hasEchogram = false;
  EXPECT_EQ(All(DescribeReading(At(30 + 100, 20), kMetres)), L"0.00m|2023-11-15 00:04:10 UTC|Ping 350");
  panel_.source.scale.newest = 300;  // columns further left show slots without a ping
  EXPECT_EQ(All(DescribeReading(At(31, 21), kMetres)), L"0.10m|no ping");
  for (const Point outside : {Point{29, 100}, Point{180, 100}, Point{100, 19}, Point{100, 320}})
    EXPECT_FALSE(FindSpot({&panel_, 1}, outside).has_value());
  panel_.source.ring = nullptr;
  EXPECT_FALSE(FindSpot({&panel_, 1}, {100, 100}).has_value());
}

TEST_F(ReadOut, MeasuresBetweenTwoPings) {
  const Reading from = At(30 + 1, 20 + 150);
  const Reading to = At(30 + 101, 20 + 50);
  EXPECT_EQ(All(DescribeMeasure(from, to, kMetres)), L"\u0394 10.00m|\u0394 0:01:40|over ground 9072.39m");
  EXPECT_EQ(All(DescribeMeasure(to, At(30 + 100, 20), kMetres)), L"\u0394 5.00m|\u0394 1 s");
  panel_.source.scale.newest += 20;
  panel_.source.ringTime += 20;
  EXPECT_EQ(ColumnOfReading(panel_, to), 81) << "the place moves along with the picture";
  EXPECT_EQ(RowOfReading(panel_, to), 50);
}

// By the usual tables: a minute of latitude at the equator and at 60 degrees, a degree of longitude at 60.
TEST(GroundDistance, FollowsTheEllipsoid) {
  EXPECT_NEAR(GroundDistance_m(0, 10, 1.0 / 60, 10), 1'842.9, 0.1);
  EXPECT_NEAR(GroundDistance_m(60, 10, 60 + 1.0 / 60, 10), 1'856.9, 0.1);
  EXPECT_NEAR(GroundDistance_m(60, 179.5, 60, -179.5), 55'800, 1) << "over 180 degrees";
}

TEST_F(ReadOut, TheBoxNeverCoversTheNewestColumns) {
  const struct {
    const char* what;
    Point cursor;
    BoxSize size;
    Rect place;
  } rows[] = {
      {"right and below", {40, 30}, {60, 40}, {54, 44, 114, 84}},
      {"left of a cursor far right", {170, 30}, {60, 40}, {96, 44, 156, 84}},
      {"above one far down", {40, 310}, {60, 40}, {54, 256, 114, 296}},
      {"inside where neither side has room", {100, 30}, {130, 40}, {30, 44, 160, 84}},
      {"nowhere", {100, 30}, {135, 40}, {0, 0, 0, 0}},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(EdgesOf(PlaceReadOut(panel_.layout, row.cursor, row.size)), EdgesOf(row.place)) << row.what;
  }
}

TEST_F(ReadOut, BothPanelsShowTheSameTime) {
  PaintedPanel other = panel_;
  other.source.scale.timeScale_s = 30;
  other.source.scale.newest = 390;
  EXPECT_EQ(ColumnAtSameTime(panel_, 50, other), 100);
  EXPECT_EQ(ColumnAtSameTime(other, 0, panel_), -1) << "further back than the other one reaches";
}

TEST_F(ReadOut, TheTraceBreaksWhereThereIsNoBottom) {
  TestCanvas image(150, 300);
  DrawDepthTrace(*ring_, panel_.source.scale, 96, image.Whole());
  EXPECT_EQ(image.At(99, 150), kTraceColour);
  EXPECT_EQ(image.At(99, 147), 0u);
  EXPECT_EQ(image.At(100, 150), kBlack) << "slot 350 has no bottom";
  EXPECT_EQ(image.At(101, 149), kTraceColour);
}

TEST_F(ReadOut, LinesOfARunOnlyWhereTheyAreWanted) {
  auto list = std::make_unique<TimeLineList>();
  MakeLock(list->lock);
  AddTimeLine(*list, {70'000 - 500, 1, 0, L""});  // out of view
  AddTimeLine(*list, {70'000 - 100, 1'700'006'400, 0, L""});
  AddTimeLine(*list, {70'000 - 50, 1'700'006'450, 7, L"wreck"});
  const auto shown = [&](bool begins) {
    std::wstring all;
    const ShownLines lines =
        FindShownLines(*list, panel_.layout, panel_.source.scale, 70'000, {begins, false});
    for (size_t i = 0; i < lines.count; ++i)
      all += std::to_wstring(lines.lines[i].x) + L" " + lines.lines[i].label.text + L"|";
    return all;
  };
  EXPECT_EQ(shown(false), L"130 7 wreck|");
  EXPECT_EQ(shown(true), L"130 7 wreck|80 00:00:00 UTC|");
  DestroyLock(list->lock);
}

}  // namespace
}  // namespace tw
