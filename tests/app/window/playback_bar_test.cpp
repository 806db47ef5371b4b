#include "app/window/playback_bar.h"

#include <gtest/gtest.h>

#include "app/state/overview.h"
#include "display/overview_strip.h"
#include "display/palette.h"

namespace tw {
namespace {

constexpr int64_t kHour_ms = 3'600'000;

TEST(PlaybackBar, SaysHowFarTheRecordingIs) {
  const struct {
    PlayedTimes times;
    uint64_t position;
    const wchar_t* text;
  } rows[] = {
      {{5'000, 11'722'999 + 5'000, 760'500 + 5'000}, 1, L"00:12:40 of 03:15:22"},
      {{0, 101 * kHour_ms, 100 * kHour_ms - 1}, 1, L"99:59:59 of 101:00:00"},
      {{0, 60'000, kNoPingYet}, 1, L"00:00:00 of 00:01:00"},
      {{0, 60'000, 61'000}, 1, L"00:01:01 of 00:01:01"},      // it has grown
      {{50'000, 60'000, 1'000}, 1, L"00:00:00 of 00:00:10"},  // the clock was set back
      {{60'000, 0, 30'000}, 50, L"50 % of the file"},
      {{kNoRecordedTime, kNoRecordedTime, kNoPingYet}, 37, L"37 % of the file"},
      {{0, kNoRecordedTime, 1'000}, 900, L"100 % of the file"},
  };
  for (const auto& row : rows) {
    wchar_t text[kPlayedTextSize];
    FormatPlayed(text, row.times, row.position, 100);
    EXPECT_STREQ(text, row.text);
  }
}

TEST(PlaybackBar, ReadsATimeThatIsTypedIn) {
  const struct {
    const wchar_t* text;
    int64_t time_ms;  // below 0: it is none
  } rows[] = {
      {L"1:02:03", 3'723'000},
      {L"02:03", 123'000},
      {L" 90 ", 90'000},
      {L"100:00:00", 360'000'000},
      {L"1.5", 1'500},
      {L"0:0.0019", 1},
      {L"", -1},
      {L"1:", -1},
      {L"1:60", -1},
      {L"1:2:3:4", -1},
      {L"-1", -1},
      {L"1:2x", -1},
      {L":1", -1},
      {L"1000001", -1},
      {L"9999999999999", -1},
  };
  for (const auto& row : rows) EXPECT_EQ(ParseTimeOfRecording(row.text).value_or(-1), row.time_ms);
}

TEST(PlaybackBar, ItsPartsStandBesideEachOther) {
  for (const auto& [width, dpi] : {std::pair{780, 96}, {520, 96}, {1'600, 144}, {1'160, 144}}) {
    const BarLayout bar = LayOutBar(width, 64 * dpi / 96, dpi);
    const Box row[] = {bar.paceLabel, bar.pace, bar.skipGaps, bar.time, bar.goToLabel, bar.goTo};
    for (size_t i = 0; i + 1 < std::size(row); ++i) EXPECT_LE(row[i].x + row[i].width, row[i + 1].x) << i;
    for (const Box& box : row) EXPECT_LE(box.y + box.height, bar.strip.y);
    EXPECT_LE(bar.strip.y + bar.strip.height, 64 * dpi / 96);
    const bool fits = width >= 780 * dpi / 96;
    EXPECT_TRUE(!fits || bar.goTo.x + bar.goTo.width <= width);
  }
}

TEST(OverviewStrip, DrawsEchoesDepthAndPlace) {
  constexpr int32_t kWidth = 64;
  constexpr int32_t kHeight = 32;
  static DisplayPalette palette{};
  palette.entries[4'095][2] = 0xAA;
  static OverviewColumn columns[kOverviewColumns];
  for (size_t i = 0; i < kOverviewColumns; ++i) {
    columns[i] = {i < kOverviewColumns / 2, {}, i < kOverviewColumns / 4 ? 2.0f : 8.0f};
    columns[i].echoes[5] = 255;
  }
  Pixel pixels[kWidth * kHeight] = {};
  const Canvas canvas{pixels, kWidth, kHeight, kWidth};
  DrawOverview(columns, 16.0f, palette, 40, 1, canvas);
  const auto at = [&](int x, int y) { return pixels[y * kWidth + x]; };
  EXPECT_EQ(at(0, 5), 0xAA0000u) << "the echo's colour";
  EXPECT_EQ(at(0, 4), 0u);
  EXPECT_EQ(at(2, 3), 0xFFFFFFu) << "2 of 16 m, in a room of 31 pixels";
  EXPECT_EQ(at(16, 8), 0xFFFFFFu) << "on its way to";
  EXPECT_EQ(at(20, 15), 0xFFFFFFu) << "8 m";
  EXPECT_EQ(at(60, 12), 0x3E3E42u) << "no ping there";
  EXPECT_EQ(at(40, 12), 0xFFFFFFu) << "where the playback is";
  EXPECT_EQ(at(39, 12), 0u);
  DrawOverview(columns, 0.0f, palette, -1, 1, canvas);
  EXPECT_EQ(at(20, 31), 0xFFFFFFu) << "the deepest, without echoes";
  BuildPalette(palette, {kBlackOnWhite, 0, 100});
  DrawOverview(columns, 16.0f, palette, 40, 1, canvas);
  EXPECT_EQ(at(20, 15), 0u) << "on paper";

  EXPECT_EQ(StripPosition(32, kWidth, UINT64_MAX), UINT64_MAX / 2);
  EXPECT_EQ(StripPosition(-9, kWidth, 640), 0u);
  EXPECT_EQ(StripPosition(999, kWidth, 640), 630u);
  EXPECT_EQ(StripX(630, kWidth, 640), 63);
  EXPECT_EQ(StripX(UINT64_MAX, kWidth, 640), 63);
  EXPECT_EQ(StripX(7, kWidth, 0), 0);
}

}  // namespace
}  // namespace tw
