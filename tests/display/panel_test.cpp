#include "display/panel.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/display/test_ring.h"

namespace tw {
namespace {

constexpr int32_t kWidth = 500;
constexpr int32_t kHeight = 300;
constexpr Pixel kGrid = 0x787878;

class Panel : public testing::Test {
 protected:
  Panel() {
    AppState& state = *state_;
    MakeLock(state.ringLockA);
    MakeLock(state.ringLockB);
    state.ringA = ringA_.get();
    state.ringB = ringB_.get();
    state.ringIndexA = 500;
    state.ringIndexB = 400;
    state.inputFileA = state.inputFileB = Handle::invalid;
    state.displayRangeUpper = 10'000;
    state.displayRangeLower = 20'000;
    state.timeScaleUpper = 150;
    state.timeScaleLower = 60;
    state.echogramEnabled = 1;
    state.settings.soundSpeed_mps = 1'500.0f;
    state.settings.frequencyInUse_hz = state.settings.highFrequency_hz = 447'000;
    state.settings.lowFrequency_hz = 200'000;
    state.settings.thresholdLow_percent = 10;
    state.settings.thresholdHigh_percent = 30;
    state.settings.rangeLow_mm = 50'000;
    state.settings.rangeHigh_mm = 20;  // metres, as some firmware says
    BuildPalette(state.palette);
    globals = Globals{};
  }
  ~Panel() override {
    DestroyLock(state_->ringLockA);
    DestroyLock(state_->ringLockB);
    globals = Globals{};
  }

  void Draw(const PanelSource& source) {
    pixels_.assign(size_t{kWidth} * kHeight, 0x123456);
    DrawPanel(source, LayOutPanel(0, kWidth, kHeight, 96), *scratch_,
              Canvas{pixels_.data(), kWidth, kHeight, kWidth});
  }
  Pixel At(int32_t x, int32_t y) const { return pixels_[static_cast<size_t>(y * kWidth + x)]; }

  std::unique_ptr<AppState> state_ = std::make_unique<AppState>();
  TestRing ringA_ = MakeRing();
  TestRing ringB_ = MakeRing();
  std::unique_ptr<PanelScratch> scratch_ = std::make_unique<PanelScratch>();
  std::vector<Pixel> pixels_;
};

TEST_F(Panel, SingleViewFollowsTheFrequencyInUse) {
  const PanelSource high = DescribePanel(*state_, PanelPlace::single);
  EXPECT_EQ(high.ring, ringA_.get());
  EXPECT_EQ(high.scale.newest, 500);
  EXPECT_EQ(high.scale.timeScale_s, 150);
  EXPECT_EQ(high.frequency_hz, 447'000);
  EXPECT_EQ(high.threshold_percent, 30);
  EXPECT_EQ(DeviceRangeOf(state_->settings, PanelPlace::single), 20'000);
  state_->settings.frequencyInUse_hz = 200'000;
  const PanelSource low = DescribePanel(*state_, PanelPlace::single);
  EXPECT_EQ(low.frequency_hz, 200'000);
  EXPECT_EQ(low.threshold_percent, 10);
  EXPECT_EQ(DeviceRangeOf(state_->settings, PanelPlace::single), 50'000);
}

TEST_F(Panel, DualPanelsShareThePingRateWhenLive) {
  const PanelSource upper = DescribePanel(*state_, PanelPlace::upper);
  EXPECT_EQ(upper.scale.timeScale_s, 75);
  EXPECT_EQ(upper.labelledTimeScale_s, 150);
  const PanelSource lower = DescribePanel(*state_, PanelPlace::lower);
  EXPECT_EQ(lower.ring, ringB_.get());
  EXPECT_EQ(lower.scale.newest, 400);
  EXPECT_EQ(lower.scale.range_mm, 20'000);
  EXPECT_EQ(lower.scale.timeScale_s, 30);
  EXPECT_EQ(lower.frequency_hz, 200'000);
  state_->inputFileB = Handle{64};
  globals.playedFrequencyB_hz = 180'000;
  const PanelSource played = DescribePanel(*state_, PanelPlace::lower);
  EXPECT_EQ(played.scale.timeScale_s, 60);
  EXPECT_EQ(played.frequency_hz, 180'000);
}

TEST_F(Panel, OverwritesAllOfThePanel) {
  Draw(DescribePanel(*state_, PanelPlace::single));
  for (const Pixel pixel : pixels_) ASSERT_NE(pixel, 0x123456u);
  EXPECT_EQ(At(450, 20), kGrid);       // the colour bar's frame
  EXPECT_EQ(At(455, 21), 0xFE0400u);   // its strong end: entry 4,079
  EXPECT_EQ(At(455, 279), 0x14002Au);  // its weak end: entry 15, in colour although such echoes are black
  EXPECT_EQ(At(385, 20), kGrid);       // the profile's
  EXPECT_EQ(At(30, 72), kGrid);        // the first depth line
  EXPECT_EQ(At(65, 20), kGrid);        // the first time line
}

TEST_F(Panel, NothingButTheImageBeforeTheRingsExist) {
  state_->ringA = nullptr;
  PanelSource source = DescribePanel(*state_, PanelPlace::single);
  Draw(source);
  EXPECT_EQ(At(40, 40), kBlack);
  EXPECT_STREQ(CollectStatus(*state_, source, LayOutPanel(0, kWidth, kHeight, 96), false).text, L"");
}

TEST_F(Panel, WithoutEchogramTheImageIsBlackAndAltitudesShowInTheMarginOnly) {
  for (int32_t i = 0; i <= 500; ++i) StoreLeFloat(ringA_->slots[i] + 48, 5.0f);
  state_->timeScaleUpper = 30;
  state_->echogramEnabled = 0;
  Draw(DescribePanel(*state_, PanelPlace::single));
  // 5 m of 10 m are 130 of 260 rows, in the client area's own coordinates.
  EXPECT_EQ(At(1, 130), 0xF00A0Au);
  EXPECT_EQ(At(29, 128), 0xF00A0Au);
  EXPECT_EQ(At(29, 131), 0xF00A0Au);
  EXPECT_EQ(At(29, 132), kBlack);
  EXPECT_EQ(At(0, 130), kBlack);
  for (int32_t y = 20; y < 280; ++y) {
    for (int32_t x = 30; x < 380; ++x) ASSERT_TRUE(At(x, y) == kBlack || At(x, y) == kGrid);
  }
}

TEST_F(Panel, StatusShowsTheNewestPing) {
  uint8_t* slot = ringA_->slots[500];
  StoreLe<uint32_t>(slot + 16, 1'709'211'845);
  StoreLeFloat(slot + 48, 12.25f);
  StoreLeFloat(slot + 52, 18.5f);
  StoreLeFloat(slot + 56, 450.0f);
  globals.pingCounter = 17;  // the program's own counter, not the number in the ping
  globals.latestAltitudeHigh_m = 11.0f;
  globals.latestAltitudeLow_m = 10.5f;
  const PanelLayout layout = LayOutPanel(0, kWidth, kHeight, 96);
  const PanelSource source = DescribePanel(*state_, PanelPlace::single);
  EXPECT_STREQ(CollectStatus(*state_, source, layout, false).text,
               L"Time:29.02.2024 13:04:05 UTC Ping:17, Altitude:12.250m, Temperature:18.5\u00B0C");
  EXPECT_STREQ(CollectStatus(*state_, source, layout, true).text,
               L"Time:29.02.2024 13:04:05, Ping:17, AltitudeH:11.00m, AltitudeL:10.50m, "
               L"Temperature:18.5\u00B0C");
}

TEST_F(Panel, ModesWithAttitudeInADualRun) {
  std::string first;
  std::string second;
  for (int32_t mode = -1; mode < 200; ++mode) {
    if (DualModeHasAttitude(1, mode)) first += std::to_string(mode) + " ";
    if (DualModeHasAttitude(2, mode)) second += std::to_string(mode) + " ";
    EXPECT_EQ(DualModeHasAttitude(0, mode), DualModeHasAttitude(2, mode));
  }
  EXPECT_EQ(first, "2 3 4 9 100 101 ");
  EXPECT_EQ(second, "2 3 4 5 6 10 100 101 ");
}

TEST_F(Panel, StatusDropsAttitudeAt450Degrees) {
  uint8_t* slot = ringA_->slots[500];
  StoreLeFloat(slot + 56, 449.9f);
  const PanelLayout layout = LayOutPanel(0, kWidth, kHeight, 96);
  const PanelSource source = DescribePanel(*state_, PanelPlace::single);
  const auto hasPitch = [&](bool isDual) {
    const std::wstring text = CollectStatus(*state_, source, layout, isDual).text;
    return text.find(L"Pitch") != std::wstring::npos;
  };
  EXPECT_FALSE(hasPitch(false));
  globals.attitudePresent = 1;
  EXPECT_TRUE(hasPitch(false));
  globals.deviceFamily = 1;
  state_->settings.outputMode = 4;
  EXPECT_TRUE(hasPitch(true));
  state_->settings.outputMode = 5;
  EXPECT_FALSE(hasPitch(true));
  StoreLeFloat(slot + 56, 450.0f);
  state_->settings.outputMode = 4;
  EXPECT_FALSE(hasPitch(false));
  EXPECT_FALSE(hasPitch(true));
}

}  // namespace
}  // namespace tw
