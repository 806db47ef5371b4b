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

struct SingleCase {
  int32_t used_hz;
  int32_t threshold_percent;
  int32_t deviceRange_mm;
};

TEST_F(Panel, SingleViewFollowsTheFrequencyInUse) {
  for (const SingleCase& c : {SingleCase{447'000, 30, 20'000}, SingleCase{200'000, 10, 50'000}}) {
    SCOPED_TRACE(c.used_hz);
    state_->settings.frequencyInUse_hz = c.used_hz;
    const PanelSource source = DescribePanel(*state_, PanelPlace::single);
    EXPECT_EQ(source.ring, ringA_.get());
    EXPECT_EQ(source.scale.newest, 500);
    EXPECT_EQ(source.scale.timeScale_s, 150);
    EXPECT_EQ(source.frequency_hz, c.used_hz);
    EXPECT_EQ(source.threshold_percent, c.threshold_percent);
    EXPECT_EQ(DeviceRangeOf(state_->settings, PanelPlace::single), c.deviceRange_mm);
  }
}

struct DualCase {
  const char* what;
  Handle fileA;
  Handle fileB;
  int32_t upperScale_s;
  int32_t lowerScale_s;
  int32_t upper_hz;
  int32_t lower_hz;
};

// Live the two channels share the ping rate, so each has pings for half the time.
constexpr DualCase kDualRuns[] = {
    {"live", Handle::invalid, Handle::invalid, 75, 30, 447'000, 200'000},
    {"a played pair of files", Handle{60}, Handle{64}, 150, 60, 430'000, 180'000},
    {"a played file of both channels", Handle{60}, Handle::invalid, 150, 60, 430'000, 180'000},
};

TEST_F(Panel, DualPanelsShareThePingRateWhenLive) {
  globals.playedFrequencyA_hz = 430'000;
  globals.playedFrequencyB_hz = 180'000;
  for (const DualCase& c : kDualRuns) {
    SCOPED_TRACE(c.what);
    state_->inputFileA = c.fileA;
    state_->inputFileB = c.fileB;
    const PanelSource upper = DescribePanel(*state_, PanelPlace::upper);
    EXPECT_EQ(upper.scale.timeScale_s, c.upperScale_s);
    EXPECT_EQ(upper.labelledTimeScale_s, 150);
    EXPECT_EQ(upper.frequency_hz, c.upper_hz);
    const PanelSource lower = DescribePanel(*state_, PanelPlace::lower);
    EXPECT_EQ(lower.ring, ringB_.get());
    EXPECT_EQ(lower.scale.newest, 400);
    EXPECT_EQ(lower.scale.range_mm, 20'000);
    EXPECT_EQ(lower.scale.timeScale_s, c.lowerScale_s);
    EXPECT_EQ(lower.frequency_hz, c.lower_hz);
  }
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
  EXPECT_EQ(At(29, 0), kBlack) << "no slot is empty";
  for (int32_t y = 20; y < 280; ++y) {
    for (int32_t x = 30; x < 380; ++x) ASSERT_TRUE(At(x, y) == kBlack || At(x, y) == kGrid);
  }
}

struct StatusCase {
  const char* what;
  bool isDual;
  float pitch_deg;
  int32_t attitudePresent;
  int32_t outputMode;
  const wchar_t* text;
};

constexpr wchar_t kSingle[] =
    L"Time:29.02.2024 13:04:05 UTC Ping:17, Altitude:12.250m, Temperature:18.5\u00B0C";
constexpr wchar_t kSingleAttitude[] =
    L"Time:29.02.2024 13:04:05 UTC Ping:17, Altitude:12.250m, Temperature:18.5\u00B0C, Pitch:449.9\u00B0, "
    L"Roll:-2.5\u00B0";
constexpr wchar_t kDual[] =
    L"Time:29.02.2024 13:04:05, Ping:17, AltitudeH:11.00m, AltitudeL:10.50m, Temperature:18.5\u00B0C";
constexpr wchar_t kDualAttitude[] =
    L"Time:29.02.2024 13:04:05, Ping:17, AltitudeH:11.00m, AltitudeL:10.50m, Temperature:18.5\u00B0C, "
    L"Pitch:449.9\u00B0, Roll:-2.5\u00B0";

constexpr StatusCase kStatus[] = {
    {"with attitude", false, 449.9f, 1, 4, kSingleAttitude},
    {"no attitude in this ping", false, 450.0f, 1, 4, kSingle},
    {"no attitude in this run", false, 449.9f, 0, 4, kSingle},
    {"dual, a mode with attitude", true, 449.9f, 0, 4, kDualAttitude},
    {"dual, no attitude in this ping", true, 450.0f, 1, 4, kDual},
    {"dual, another mode", true, 449.9f, 1, 5, kDual},
    {"dual, a played binary file", true, 449.9f, 1, 102, kDual},
};

TEST_F(Panel, StatusShowsTheNewestPing) {
  uint8_t* slot = ringA_->slots[500];
  StoreLe<uint32_t>(slot + 16, 1'709'211'845);
  StoreLeFloat(slot + 48, 12.25f);
  StoreLeFloat(slot + 52, 18.5f);
  StoreLeFloat(slot + 60, -2.5f);
  globals.pingCounter = 17;  // the program's own counter, not the number in the ping
  globals.latestAltitudeHigh_m = 11.0f;
  globals.latestAltitudeLow_m = 10.5f;
  globals.deviceFamily = 1;
  for (const StatusCase& c : kStatus) {
    SCOPED_TRACE(c.what);
    StoreLeFloat(slot + 56, c.pitch_deg);
    globals.attitudePresent = c.attitudePresent;
    state_->settings.outputMode = c.outputMode;
    const PanelSource source = DescribePanel(*state_, PanelPlace::single);
    const Label label = CollectStatus(*state_, source, LayOutPanel(0, kWidth, kHeight, 96), c.isDual);
    EXPECT_STREQ(label.text, c.text);
  }
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

}  // namespace
}  // namespace tw
