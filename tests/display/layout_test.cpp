#include "display/layout.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "display/scaling.h"

namespace tw {
namespace {

using Texts = std::vector<std::wstring>;

void ExpectLabels(const Labels& labels, const Texts& texts) {
  ASSERT_EQ(labels.count, texts.size());
  for (size_t i = 0; i < labels.count; ++i) EXPECT_EQ(labels.labels[i].text, texts[i]);
}

void ExpectPlaces(const Labels& labels, const std::vector<Point>& places) {
  for (size_t i = 0; i < places.size(); ++i) {
    EXPECT_EQ(labels.labels[i].at.x, places[i].x) << i;
    EXPECT_EQ(labels.labels[i].at.y, places[i].y) << i;
  }
}

void ExpectRect(const Rect& rect, const Rect& expected) {
  EXPECT_EQ(rect.left, expected.left);
  EXPECT_EQ(rect.top, expected.top);
  EXPECT_EQ(rect.right, expected.right);
  EXPECT_EQ(rect.bottom, expected.bottom);
}

// 794 x 714: the client area of a small window.
TEST(Layout, PanelParts) {
  const PanelLayout layout = LayOutPanel(0, 794, 714, 96);
  ExpectRect(layout.image, {30, 20, 674, 694});
  ExpectRect(layout.colourBar, {744, 20, 754, 694});
  ExpectRect(layout.profile, {679, 20, 739, 694});
  EXPECT_EQ(layout.statusLine.y, 694);
}

TEST(Layout, LowerPanelIsTheSameOneFurtherDown) {
  const PanelLayout lower = LayOutPanel(400, 900, 400, 96);
  ExpectRect(lower.image, {30, 420, 780, 780});
  Labels labels{};
  AddTimeLabels(lower, 150, labels);
  AddDepthLabels(lower, 10'000, labels);
  AddColourBarLabels(lower, labels);
  EXPECT_EQ(labels.labels[0].at.y, 400);
  EXPECT_EQ(labels.labels[11].at.y, 400 + 8 + 72);
  EXPECT_EQ(labels.labels[16].at.y, 400 + 400 - 34);
}

struct DepthCase {
  const char* what;
  int32_t height;  // of the panel
  int32_t range_mm;
  Texts texts;
};

const DepthCase kDepths[] = {
    {"five divisions up to 700 rows", 740, 10'000, {L"  2m", L"  4m", L"  6m", L"  8m", L" 10m"}},
    {"ten above",
     741,
     10'000,
     {L"  1m", L"  2m", L"  3m", L"  4m", L"  5m", L"  6m", L"  7m", L"  8m", L"  9m", L" 10m"}},
    {"a decimal below 10 m", 500, 3'000, {L"0.6m", L"1.2m", L"1.8m", L"2.4m", L"3.0m"}},
    {"just below 10 m", 500, 9'999, {L"2.0m", L"4.0m", L"6.0m", L"8.0m", L"10.0m"}},
    {"three digits", 500, 200'000, {L" 40m", L" 80m", L"120m", L"160m", L"200m"}},
};

TEST(Layout, DepthLabels) {
  for (const DepthCase& c : kDepths) {
    SCOPED_TRACE(c.what);
    Labels labels{};
    AddDepthLabels(LayOutPanel(0, 900, c.height, 96), c.range_mm, labels);
    ExpectLabels(labels, c.texts);
  }
  Labels labels{};
  AddDepthLabels(LayOutPanel(0, 900, 540, 96), 10'000, labels);
  ExpectPlaces(labels, {{2, 108}, {2, 208}, {2, 308}});
  EXPECT_EQ(labels.labels[0].height_px, 10);
  EXPECT_EQ(labels.labels[0].colour, 0xFFFA9Du);
}

TEST(Layout, TimeLabelsRunFromRightToLeft) {
  Labels labels{};
  AddTimeLabels(LayOutPanel(0, 1'150, 500, 96), 15, labels);
  ExpectLabels(labels, {L"  0s", L"  1s", L"  3s", L"  4s", L"  6s", L"  7s", L"  9s", L" 10s", L" 12s",
                        L" 13s", L" 15s"});
  ExpectPlaces(labels, {{1'010, 0}, {910, 0}, {810, 0}});
}

TEST(Layout, ColourBarLabelsRunUpwards) {
  Labels labels{};
  AddColourBarLabels(LayOutPanel(0, 900, 545, 96), labels);  // 505 rows
  ExpectLabels(labels,
               {L"0%", L"10%", L"20%", L"30%", L"40%", L"50%", L"60%", L"70%", L"80%", L"90%", L"100%"});
  ExpectPlaces(labels, {{860, 511}, {860, 461}, {860, 411}});
  EXPECT_EQ(ColourBarEntry(0, 500), 4'095);
  EXPECT_EQ(ColourBarEntry(499, 500), 8);  // 4095 - 4086.81
}

TEST(Layout, FrequencyLabel) {
  Labels labels{};
  const PanelLayout layout = LayOutPanel(0, 900, 500, 96);
  AddFrequencyLabel(layout, 447'999, labels);
  AddFrequencyLabel(layout, 1'200'000, labels);
  ExpectLabels(labels, {L" 447 kHz", L"1200 kHz"});
  ExpectPlaces(labels, {{800, 0}});
  EXPECT_EQ(labels.labels[0].height_px, 14);
}

TEST(Layout, GridLines) {
  const GridLines grid = LayOutGrid(LayOutPanel(0, 1'150, 540, 96));
  ASSERT_EQ(grid.count, 4u + 9u);
  EXPECT_EQ(grid.lines[0].from.x, 30);
  EXPECT_EQ(grid.lines[0].to.x, 1'030);
  EXPECT_EQ(grid.lines[3].from.y, 420);
  EXPECT_EQ(grid.lines[4].from.x, 130);
  EXPECT_EQ(grid.lines[12].to.x, 930);
  EXPECT_EQ(grid.lines[12].to.y, 520);
  EXPECT_EQ(LayOutGrid(LayOutPanel(0, 1'150, 741, 96)).count, 9u + 9u);
}

TEST(Layout, SurvivesHostileValues) {
  constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
  for (const int32_t size : {0, 1, 39, 149, 151}) {
    const PanelLayout layout = LayOutPanel(0, size, size, 96);
    const GridLines grid = LayOutGrid(layout);
    EXPECT_LE(grid.count, kMaxGridLines);
    Labels labels{};
    for (int i = 0; i < 3; ++i) {
      AddDepthLabels(layout, kMax, labels);
      AddTimeLabels(layout, kMax, labels);
      AddColourBarLabels(layout, labels);
      AddFrequencyLabel(layout, -kMax, labels);
    }
    EXPECT_EQ(labels.count, kMaxLabels);
  }
}

TEST(Layout, ScalesWithTheScreensResolution) {
  EXPECT_EQ(ScalePixels(30, 96), 30);
  EXPECT_EQ(ScalePixels(30, 144), 45);
  EXPECT_EQ(ScalePixels(13, 120), 16);  // 16.25
  EXPECT_EQ(ScalePixels(10, 120), 13);  // 12.5
  EXPECT_EQ(ScalePixels(-10, 120), -13);
  EXPECT_EQ(ScalePixels(30, 0), 30);
  EXPECT_EQ(LayOutPanel(0, 1'800, 1'000, 192).image.left, 60);
}

}  // namespace
}  // namespace tw
