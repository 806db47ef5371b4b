#include "display/layout.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

#include "display/no_data_overlay.h"
#include "display/scaling.h"
#include "tests/display/test_canvas.h"

namespace tw {
namespace {

using Texts = std::vector<std::wstring>;

Texts TextsOf(const Labels& labels) {
  Texts texts;
  for (size_t i = 0; i < labels.count; ++i) texts.emplace_back(labels.labels[i].text);
  return texts;
}

// Of the first labels.
void ExpectPlaces(const Labels& labels, const std::vector<Numbers>& places) {
  for (size_t i = 0; i < places.size(); ++i) EXPECT_EQ(PlaceOf(labels.labels[i].at), places[i]) << i;
}

// 794 x 714: the client area of a small window.
TEST(Layout, PanelParts) {
  const PanelLayout layout = LayOutPanel(0, 794, 714, 96);
  EXPECT_EQ(EdgesOf(layout.image), (Numbers{30, 20, 674, 694}));
  EXPECT_EQ(EdgesOf(layout.colourBar), (Numbers{744, 20, 754, 694}));
  EXPECT_EQ(EdgesOf(layout.profile), (Numbers{679, 20, 739, 694}));
  EXPECT_EQ(layout.statusLine.y, 694);
}

TEST(Layout, LowerPanelIsTheSameOneFurtherDown) {
  const PanelLayout lower = LayOutPanel(400, 900, 400, 96);
  EXPECT_EQ(EdgesOf(lower.image), (Numbers{30, 420, 780, 780}));
  Labels labels{};
  AddTimeLabels(lower, 150, labels);
  AddDepthLabels(lower, 10'000, labels);
  AddColourBarLabels(lower, labels);
  EXPECT_EQ(labels.labels[0].at.y, 400);
  EXPECT_EQ(labels.labels[11].at.y, 400 + 8 + 72);
  EXPECT_EQ(labels.labels[16].at.y, 400 + 400 - 34);
}

TEST(Layout, DepthLabels) {
  const struct {
    const char* what;
    int32_t height;  // of the panel
    int32_t range_mm;
    Texts texts;
    DepthUnit unit = kMetres;
  } rows[] = {
      {"five divisions up to 700 rows", 740, 10'000, {L"  2m", L"  4m", L"  6m", L"  8m", L" 10m"}},
      {"ten above",
       741,
       10'000,
       {L"  1m", L"  2m", L"  3m", L"  4m", L"  5m", L"  6m", L"  7m", L"  8m", L"  9m", L" 10m"}},
      {"a decimal below 10 m", 500, 3'000, {L"0.6m", L"1.2m", L"1.8m", L"2.4m", L"3.0m"}},
      {"just below 10 m", 500, 9'999, {L"2.0m", L"4.0m", L"6.0m", L"8.0m", L"10.0m"}},
      {"three digits", 500, 200'000, {L" 40m", L" 80m", L"120m", L"160m", L"200m"}},
      {"feet", 500, 30'000, {L"19.7ft", L"39.4ft", L"59.1ft", L"78.7ft", L"98.4ft"}, kFeet},
      {"from 100 ft on whole ones", 500, 200'000, {L"131ft", L"262ft", L"394ft", L"525ft", L"656ft"}, kFeet},
  };
  for (const auto& row : rows) {
    Labels labels{};
    AddDepthLabels(LayOutPanel(0, 900, row.height, 96), row.range_mm, labels, row.unit);
    EXPECT_EQ(TextsOf(labels), row.texts) << row.what;
  }
  Labels labels{};
  AddDepthLabels(LayOutPanel(0, 900, 540, 96), 10'000, labels);
  ExpectPlaces(labels, {{2, 108}, {2, 208}, {2, 308}});
}

TEST(Layout, TimeLabelsRunFromRightToLeft) {
  Labels labels{};
  AddTimeLabels(LayOutPanel(0, 1'150, 500, 96), 15, labels);
  EXPECT_EQ(TextsOf(labels), (Texts{L"  0s", L"  1s", L"  3s", L"  4s", L"  6s", L"  7s", L"  9s", L" 10s",
                                    L" 12s", L" 13s", L" 15s"}));
  ExpectPlaces(labels, {{1'010, 0}, {910, 0}, {810, 0}});
}

TEST(Layout, ClockLabelsEndAtTheirLines) {
  constexpr uint32_t kMidnight = 1'700'006'400;
  GridClock clock{};
  for (uint32_t k = 0; k < kGridTimes; ++k) clock.time_s[k] = k == 4 ? 0 : kMidnight + 15 - 15 * k;
  Labels labels{};
  AddClockLabels(LayOutPanel(0, 780, 500, 96), clock, labels);
  EXPECT_EQ(TextsOf(labels), (Texts{L"00:00:15", L"00:00:00", L"23:59:45", L"23:59:30", L"23:59:00",
                                    L"23:58:45", L"23:58:30", L"23:58:15", L"UTC"}))
      << "no ping at the fifth, no room at the tenth";
  ExpectPlaces(labels, {{606, 0}, {543, 0}});
}

TEST(Layout, ColourBarLabelsRunUpwards) {
  Labels labels{};
  AddColourBarLabels(LayOutPanel(0, 900, 545, 96), labels);  // 505 rows
  EXPECT_EQ(TextsOf(labels),
            (Texts{L"0%", L"10%", L"20%", L"30%", L"40%", L"50%", L"60%", L"70%", L"80%", L"90%", L"100%"}));
  ExpectPlaces(labels, {{860, 511}, {860, 461}, {860, 411}});
  EXPECT_EQ(ColourBarEntry(0, 500), 4'095);
  EXPECT_EQ(ColourBarEntry(499, 500), 8);  // 4095 - 4086.81
}

TEST(Layout, FrequencyLabel) {
  Labels labels{};
  const PanelLayout layout = LayOutPanel(0, 900, 500, 96);
  AddFrequencyLabel(layout, 447'999, labels);
  AddFrequencyLabel(layout, 1'200'000, labels);
  EXPECT_EQ(TextsOf(labels), (Texts{L" 447 kHz", L"1200 kHz"}));
  ExpectPlaces(labels, {{800, 0}});
}

// One label of each kind, at the resolution of the figures and at twice that.
TEST(Layout, SizesAndColoursOfLabels) {
  const struct {
    const char* what;
    size_t label;  // of all
    Numbers place, placeOnFineScreen;
    int32_t height;
    Pixel colour;
  } rows[] = {
      {"depth", 0, {2, 108}, {4, 216}, 10, 0xFFFA9D},
      {"time", 5, {1'010, 0}, {1'920, 0}, 12, 0xFFFA9D},
      {"colour bar", 5 + 11, {1'110, 506}, {2'120, 1'012}, 12, 0xFFFA9D},
      {"frequency", 5 + 11 + 11, {1'050, 0}, {2'000, 0}, 14, 0xFFFFFF},
      {"status", 5 + 11 + 11 + 1, {30, 520}, {60, 1'040}, 13, 0xFFFFFF},
  };
  for (const bool fine : {false, true}) {
    const PanelLayout layout = fine ? LayOutPanel(0, 2'200, 1'080, 192) : LayOutPanel(0, 1'150, 540, 96);
    Labels labels{};
    AddDepthLabels(layout, 10'000, labels);
    AddTimeLabels(layout, 15, labels);
    AddColourBarLabels(layout, labels);
    AddFrequencyLabel(layout, 1, labels);
    labels.labels[labels.count] = StatusLabel(layout, L"");
    for (const auto& row : rows) {
      SCOPED_TRACE(std::string(row.what) + (fine ? ", 192 dots per inch" : ""));
      const Label& label = labels.labels[row.label];
      EXPECT_EQ(PlaceOf(label.at), fine ? row.placeOnFineScreen : row.place);
      EXPECT_EQ(label.height_px, fine ? 2 * row.height : row.height);
      EXPECT_EQ(label.colour, row.colour);
    }
  }
}

TEST(Layout, GridLines) {
  const GridLines grid = LayOutGrid(LayOutPanel(0, 1'150, 540, 96));
  ASSERT_EQ(grid.count, 4u + 9u);
  EXPECT_EQ(PlaceOf(grid.lines[0].from), (Numbers{30, 120}));
  EXPECT_EQ(PlaceOf(grid.lines[0].to), (Numbers{1'030, 120}));
  EXPECT_EQ(grid.lines[3].from.y, 420);
  EXPECT_EQ(PlaceOf(grid.lines[4].from), (Numbers{130, 20}));
  EXPECT_EQ(PlaceOf(grid.lines[12].to), (Numbers{930, 520}));
  EXPECT_EQ(LayOutGrid(LayOutPanel(0, 1'150, 741, 96)).count, 9u + 9u);
}

TEST(Layout, SurvivesHostileValues) {
  constexpr int32_t kMax = std::numeric_limits<int32_t>::max();
  for (const int32_t size : {0, 1, 39, 149, 151}) {
    const PanelLayout layout = LayOutPanel(0, size, size, 96);
    EXPECT_LE(LayOutGrid(layout).count, kMaxGridLines);
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
  const PanelLayout fine = LayOutPanel(0, 1'588, 1'428, 192);  // twice the small window's
  EXPECT_EQ(EdgesOf(fine.image), (Numbers{60, 40, 1'348, 1'388}));
  EXPECT_EQ(EdgesOf(fine.colourBar), (Numbers{1'488, 40, 1'508, 1'388}));
  EXPECT_EQ(EdgesOf(fine.profile), (Numbers{1'358, 40, 1'478, 1'388}));
  EXPECT_EQ(LayOutGrid(fine).count, 5u - 1 + 9) << "ten depth divisions above 1,400 rows";
}

// Its board ends with the newest column and grows with the text; a narrow image has none.
TEST(Layout, TheSignOfNoDataStandsOverTheNewestColumns) {
  for (const int32_t dpi : {96, 192}) {
    const PanelLayout layout = LayOutPanel(0, 794 * dpi / 96, 714 * dpi / 96, dpi);
    const NoDataSign sign = LayOutNoData(layout, 12);
    EXPECT_STREQ(sign.label.text, L"NO DATA 12 s");
    EXPECT_EQ(sign.board.right, layout.image.right);
    EXPECT_EQ(sign.board.Width(), 148 * dpi / 96);
    EXPECT_GT(LayOutNoData(layout, 4'000'000'000).board.Width(), sign.board.Width());
    EXPECT_GE(sign.board.left, layout.image.left);
  }
  EXPECT_TRUE(LayOutNoData(LayOutPanel(0, 290, 714, 96), 12).board.IsEmpty());
}

}  // namespace
}  // namespace tw
