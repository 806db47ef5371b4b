#include "display/panel.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "tests/display/test_canvas.h"
#include "tests/display/test_ring.h"

namespace tw {
namespace {

constexpr Pixel kGrid = 0x787878;
const PanelLayout kLayout = LayOutPanel(0, 500, 300, 96);

class Panel : public testing::Test {
 protected:
  Panel() {
    globals = Globals{};
    FillViewState(*state_, *ringA_, *ringB_);
    state_->ringIndexA = 500;
    state_->ringIndexB = 400;
    state_->displayRangeLower = 20'000;
    state_->timeScaleLower = 60;
    state_->settings.thresholdLow_percent = 10;
    state_->settings.thresholdHigh_percent = 30;
    state_->settings.rangeHigh_mm = 20;  // metres, as some firmware says
  }
  ~Panel() override {
    DestroyLock(state_->ringLockA);
    DestroyLock(state_->ringLockB);
    globals = Globals{};
  }

  void DrawSingle() {
    DrawPanel(DescribePanel(*state_, PanelPlace::single), kLayout, *scratch_, canvas_.Whole());
  }
  std::wstring Status(bool isDual) {
    return CollectStatus(*state_, DescribePanel(*state_, PanelPlace::single), kLayout, isDual).text;
  }

  std::unique_ptr<AppState> state_ = std::make_unique<AppState>();
  TestRing ringA_ = MakeRing();
  TestRing ringB_ = MakeRing();
  std::unique_ptr<PanelScratch> scratch_ = std::make_unique<PanelScratch>();
  TestCanvas canvas_{500, 300, 0x123456};
};

TEST_F(Panel, SingleViewFollowsTheFrequencyInUse) {
  const struct {
    int32_t family, used_hz, threshold_percent, deviceRange_mm;
  } rows[] = {{1, 447'000, 30, 20'000},
              {1, 200'000, 10, 50'000},
              {2, 200'000, 30, 20'000},  // of one channel, whose values are the high ones
              {0, 200'000, 30, 20'000}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.family);
    globals.deviceFamily = row.family;
    state_->settings.frequencyInUse_hz = row.used_hz;
    if (row.family != 1) state_->settings.highFrequency_hz = row.used_hz;
    const PanelSource source = DescribePanel(*state_, PanelPlace::single);
    EXPECT_EQ(source.ring, ringA_.get());
    EXPECT_EQ(source.scale.newest, 500);
    EXPECT_EQ(source.scale.timeScale_s, 150);
    EXPECT_EQ(source.frequency_hz, row.used_hz);
    EXPECT_EQ(source.threshold_percent, row.threshold_percent);
    EXPECT_EQ(DeviceRangeOf(state_->settings, PanelPlace::single), row.deviceRange_mm);
  }
}

TEST_F(Panel, ChoicesThatWaitForApplyAreNotShown) {
  globals.deviceFamily = 1;
  state_->appliedSettings = state_->settings;
  state_->settings.soundSpeed_mps = 1'400.0f;
  state_->settings.thresholdHigh_percent = 99;
  state_->settings.frequencyInUse_hz = 200'000;
  for (const bool runs : {true, false}) {
    state_->devicePort = runs ? Handle{4} : Handle::invalid;
    const PanelSource source = DescribePanel(*state_, PanelPlace::single);
    EXPECT_EQ(source.scale.soundSpeed_mps, runs ? 1'500.0f : 1'400.0f);
    EXPECT_EQ(source.threshold_percent, runs ? 30 : 10);
    EXPECT_EQ(source.frequency_hz, runs ? 447'000 : 200'000);
  }
}

// Live the two channels share the ping rate, so each has pings for half the time.
TEST_F(Panel, DualPanelsShareThePingRateWhenLive) {
  const struct {
    const char* what;
    Handle fileA, fileB;
    int32_t upperScale_s, lowerScale_s, upper_hz, lower_hz;
  } rows[] = {
      {"live", Handle::invalid, Handle::invalid, 75, 30, 447'000, 200'000},
      {"a played pair of files", Handle{60}, Handle{64}, 150, 60, 430'000, 180'000},
      {"a played file of both channels", Handle{60}, Handle::invalid, 150, 60, 430'000, 180'000},
      {"the second file of a pair alone", Handle::invalid, Handle{64}, 75, 60, 447'000, 180'000},
  };
  globals.playedFrequencyA_hz = 430'000;
  globals.playedFrequencyB_hz = 180'000;
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    state_->inputFileA = row.fileA;
    state_->inputFileB = row.fileB;
    const PanelSource upper = DescribePanel(*state_, PanelPlace::upper);
    EXPECT_EQ(upper.scale.timeScale_s, row.upperScale_s);
    EXPECT_EQ(upper.labelledTimeScale_s, 150);
    EXPECT_EQ(upper.frequency_hz, row.upper_hz);
    const PanelSource lower = DescribePanel(*state_, PanelPlace::lower);
    EXPECT_EQ(lower.ring, ringB_.get());
    EXPECT_EQ(lower.scale.newest, 400);
    EXPECT_EQ(lower.scale.range_mm, 20'000);
    EXPECT_EQ(lower.scale.timeScale_s, row.lowerScale_s);
    EXPECT_EQ(lower.frequency_hz, row.lower_hz);
  }
}

TEST_F(Panel, OverwritesAllOfThePanel) {
  DrawSingle();
  for (const Pixel pixel : canvas_.Pixels()) ASSERT_NE(pixel, 0x123456u);
  const struct {
    const char* what;
    int32_t x, y;
    Pixel colour;
  } rows[] = {
      {"the colour bar's frame", 450, 20, kGrid},
      {"its strong end: entry 4,079", 455, 21, 0xFE0400},
      {"its weak end: entry 15, in colour although such echoes are black", 455, 279, 0x14002A},
      {"the profile's frame", 385, 20, kGrid},
      {"the first depth line", 30, 72, kGrid},
      {"the first time line", 65, 20, kGrid},
  };
  for (const auto& row : rows) EXPECT_EQ(canvas_.At(row.x, row.y), row.colour) << row.what;
}

// On paper nothing stays dark around the image, and all that is written can be read.
TEST_F(Panel, OnPaperIsBlackOnWhite) {
  BuildPalette(state_->palette, {.scheme = kBlackOnWhite});
  for (const int32_t enabled : {1, 0}) {
    state_->echogramEnabled = enabled;
    DrawSingle();
    for (const Point& at : {Point{0, 0}, {499, 299}, {32, 22}, {400, 100}, {383, 150}})
      EXPECT_EQ(canvas_.At(at.x, at.y), kPaper) << at.x << ", " << at.y;
  }
  const PanelSource source = DescribePanel(*state_, PanelPlace::single);
  const Labels labels = CollectLabels(source, kLayout);
  for (size_t i = 0; i < labels.count; ++i) EXPECT_EQ(labels.labels[i].colour, kBlack) << i;
  EXPECT_EQ(CollectStatus(*state_, source, kLayout, false).colour, kBlack);
}

TEST_F(Panel, NothingButTheImageBeforeTheRingsExist) {
  state_->ringA = nullptr;
  DrawSingle();
  EXPECT_EQ(canvas_.At(40, 40), kBlack);
  EXPECT_EQ(Status(false), L"");
}

// The ring is cleared, as it is until the first ping has come.
TEST_F(Panel, NeitherATimeNorAnAltitudeBeforeTheFirstPing) {
  state_->echogramEnabled = 0;
  DrawSingle();
  for (int32_t x = 0; x < 500; ++x) ASSERT_NE(canvas_.At(x, 0), 0xF00A0Au) << x;
  EXPECT_EQ(Status(false), L"");
  EXPECT_EQ(Status(true), L"");
}

TEST_F(Panel, WithoutEchogramTheImageIsBlackAndAltitudesShowInTheMarginOnly) {
  for (int32_t i = 0; i <= 500; ++i) StoreLeFloat(ringA_->slots[i] + 48, 5.0f);
  StoreLe<uint32_t>(ringA_->slots[500] + 4, 88);
  state_->timeScaleUpper = 30;
  state_->echogramEnabled = 0;
  DrawSingle();
  // 5 m of 10 m are 130 of 260 rows, in the client area's own coordinates.
  EXPECT_EQ(canvas_.At(1, 130), 0xF00A0Au);
  EXPECT_EQ(canvas_.At(29, 128), 0xF00A0Au);
  EXPECT_EQ(canvas_.At(29, 131), 0xF00A0Au);
  EXPECT_EQ(canvas_.At(29, 132), kBlack);
  EXPECT_EQ(canvas_.At(0, 130), kBlack);
  EXPECT_EQ(canvas_.At(29, 0), kBlack) << "no slot is empty";
  for (int32_t y = 20; y < 280; ++y) {
    for (int32_t x = 30; x < 380; ++x)
      ASSERT_TRUE(canvas_.At(x, y) == kBlack || canvas_.At(x, y) == kGrid) << x << ", " << y;
  }
}

TEST_F(Panel, StatusShowsTheNewestPing) {
  const std::wstring single =
      L"Time:29.02.2024 13:04:05 UTC Ping:17, Altitude:12.250m, Temperature:18.5\u00B0C";
  const std::wstring dual =
      L"Time:29.02.2024 13:04:05, Ping:17, AltitudeH:11.00m, AltitudeL:10.50m, Temperature:18.5\u00B0C";
  const std::wstring attitude = L", Pitch:449.9\u00B0, Roll:-2.5\u00B0";
  const struct {
    const char* what;
    bool isDual;
    float pitch_deg;
    int32_t attitudePresent, outputMode;
    std::wstring text;
  } rows[] = {
      {"with attitude", false, 449.9f, 1, 4, single + attitude},
      {"no attitude in this ping", false, 450.0f, 1, 4, single},
      {"no attitude in this run", false, 449.9f, 0, 4, single},
      {"dual, a mode with attitude", true, 449.9f, 0, 4, dual + attitude},
      {"dual, no attitude in this ping", true, 450.0f, 1, 4, dual},
      {"dual, another mode", true, 449.9f, 1, 5, dual},
      {"kept: dual, a played binary file", true, 449.9f, 1, 102, dual},
  };
  uint8_t* const slot = ringA_->slots[500];
  StoreLe<uint32_t>(slot + 4, 88);
  StoreLe<uint32_t>(slot + 16, 1'709'211'845);
  StoreLeFloat(slot + 48, 12.25f);
  StoreLeFloat(slot + 52, 18.5f);
  StoreLeFloat(slot + 60, -2.5f);
  globals.pingCounter = 17;  // the program's own counter, not the number in the ping
  globals.latestAltitudeHigh_m = 11.0f;
  globals.latestAltitudeLow_m = 10.5f;
  globals.deviceFamily = 1;
  for (const auto& row : rows) {
    StoreLeFloat(slot + 56, row.pitch_deg);
    globals.attitudePresent = row.attitudePresent;
    state_->settings.outputMode = row.outputMode;
    EXPECT_EQ(Status(row.isDual), row.text) << row.what;
  }
  globals.depthUnit = kFeet;
  EXPECT_NE(Status(false).find(L", Altitude:40.19ft, "), std::wstring::npos);
  EXPECT_NE(Status(true).find(L", AltitudeH:36.09ft, AltitudeL:34.45ft, "), std::wstring::npos);
}

}  // namespace
}  // namespace tw
