// The main window's selectors: what they offer and what becomes of a choice.
#include "app/settings/family_controls.h"

#include <algorithm>

#include "app/window/commands.h"
#include "base/shared_value.h"
#include "device/device_link.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {
namespace {

using Items = std::vector<std::wstring>;

class SettingsSelectors : public RunControlTest {
 protected:
  SettingsSelectors() {
    DeviceSettings& settings = state_->settings;
    settings.lowFrequency_hz = 200'000;
    settings.highFrequency_hz = settings.frequencyInUse_hz = 450'000;
    settings.rangeLow_mm = 50'000;
    settings.rangeHigh_mm = 10'000;
    settings.maxRangeLow_mm = 100'000;
    settings.maxRangeHigh_mm = 20'000;
    settings.outputMode = 4;
    settings.pingInterval_ms = 100;
    settings.preset = kNoPreset;
    Be(1, false);
  }

  void Be(int32_t family, bool dual) {
    StoreShared(globals.deviceFamily, family);
    StoreShared(globals.dualMode, dual ? 1 : 0);
    state_->link->facts.presetCapable = family != 0;
  }

  void ChooseItem(int id, const std::wstring& text) {
    ASSERT_NE(std::find(Of(id).items.begin(), Of(id).items.end(), text), Of(id).items.end());
    Ui().Choose(id, text);
    TakeSettingsChoice(*state_, id);
  }

  // As a click does: the button has changed before its owner hears of it.
  void Tick(int id, bool checked) {
    Of(id).checked = checked;
    TakeSettingsChoice(*state_, id);
  }

  // Those that are ticked.
  static std::string Frequencies() {
    return std::string(Of(ID_LOW_FREQUENCY).checked ? "low " : "") +
           (Of(ID_HIGH_FREQUENCY).checked ? "high " : "") + (Of(ID_DUAL_MODE).checked ? "both " : "");
  }
};

TEST_F(SettingsSelectors, OfferWhatTheDeviceCanDo) {
  RefreshSettingsControls(*state_);
  EXPECT_EQ(Of(ID_RANGE).items, (Items{L"1", L"2", L"3", L"5", L"10", L"15", L"20"}));
  EXPECT_EQ(Of(ID_RANGE).text, L"10");
  EXPECT_EQ(Of(ID_OUTPUT).items.front(), L"Simple Altimeter");
  EXPECT_EQ(Of(ID_OUTPUT).text, L"Echo Txt 12bit");
  EXPECT_EQ(Of(ID_INTERVAL).items.front(), L"Auto");
  EXPECT_EQ(Of(ID_INTERVAL).text, L"0.10");
  EXPECT_EQ(Of(ID_PRESET).text, L"Off");
  EXPECT_EQ(Frequencies(), "high ");
  Be(0, false);
  RefreshSettingsControls(*state_);
  EXPECT_TRUE(Of(ID_PRESET).items.empty()) << "a family without presets";
  EXPECT_EQ(Of(ID_OUTPUT).text, L"Echo txt Fixed 200 Samples");
}

TEST_F(SettingsSelectors, ChoicesEditTheSettingsAlone) {
  RefreshSettingsControls(*state_);
  ChooseItem(ID_RANGE, L"15");
  ChooseItem(ID_OUTPUT, L"DESO-25(M)");
  ChooseItem(ID_INTERVAL, L"Auto");
  ChooseItem(ID_PRESET, L"Auto");
  EXPECT_EQ(state_->settings.rangeHigh_mm, 15'000);
  EXPECT_EQ(state_->settings.rangeLow_mm, 50'000);
  EXPECT_EQ(state_->settings.outputMode, 6);
  EXPECT_EQ(state_->settings.pingInterval_ms, 0);
  EXPECT_EQ(state_->settings.preset, kAutomaticPreset);
  EXPECT_FALSE(Ui().timers.contains(ID_TIMER_CHANGES)) << "no device is there that could be told";
}

TEST_F(SettingsSelectors, TheOtherFrequencyBringsItsOwnRange) {
  RefreshSettingsControls(*state_);
  Tick(ID_LOW_FREQUENCY, true);
  EXPECT_EQ(state_->settings.frequencyInUse_hz, 200'000);
  EXPECT_EQ(Of(ID_RANGE).text, L"50");
  EXPECT_EQ(Of(ID_RANGE).items.back(), L"100");
  ChooseItem(ID_RANGE, L"100");
  EXPECT_EQ(state_->settings.rangeLow_mm, 100'000);
  EXPECT_EQ(state_->settings.rangeHigh_mm, 10'000);
}

TEST_F(SettingsSelectors, LowHighAndBothExcludeEachOther) {
  RefreshSettingsControls(*state_);
  Tick(ID_DUAL_MODE, true);
  EXPECT_EQ(state_->settings.simultaneous, 1);
  EXPECT_EQ(Frequencies(), "both ");
  RefreshSettingsControls(*state_);
  EXPECT_EQ(Frequencies(), "both ");
  Tick(ID_DUAL_MODE, false);
  EXPECT_EQ(Frequencies(), "high ");
  Tick(ID_DUAL_MODE, true);
  Tick(ID_LOW_FREQUENCY, true);
  EXPECT_EQ(state_->settings.simultaneous, 0);
  EXPECT_EQ(Frequencies(), "low ");
}

// One selector stands for both channels; a channel that cannot reach so far keeps its own range.
TEST_F(SettingsSelectors, WhileDualModeIsTickedTheRangeIsThatOfBothChannels) {
  state_->settings.frequencyInUse_hz = 200'000;
  state_->settings.maxRangeHigh_mm = 100'000;
  state_->settings.maxRangeLow_mm = 30'000;
  RefreshSettingsControls(*state_);
  EXPECT_EQ(Of(ID_RANGE).text, L"50");
  Tick(ID_DUAL_MODE, true);
  EXPECT_EQ(Of(ID_RANGE).text, L"10") << "both will run with the high one";
  ChooseItem(ID_RANGE, L"30");
  EXPECT_EQ(state_->settings.rangeHigh_mm, 30'000);
  EXPECT_EQ(state_->settings.rangeLow_mm, 30'000);
  ChooseItem(ID_RANGE, L"40");
  EXPECT_EQ(state_->settings.rangeHigh_mm, 40'000);
  EXPECT_EQ(state_->settings.rangeLow_mm, 30'000);
}

// Feet are a face: what is chosen, remembered and sent stays metric.
TEST_F(SettingsSelectors, RangesInFeetAreTheSameRanges) {
  state_->settings.rangeHigh_mm = 10'001;  // in feet the same figure as 10 m
  RefreshSettingsControls(*state_);
  wchar_t before[64];
  GetChosenText(*state_, ID_RANGE, before);
  state_->options.depthUnit = kFeet;
  TakeDepthUnit(*state_);
  EXPECT_EQ(Of(ID_RANGE).items, (Items{L"3.3", L"6.6", L"9.8", L"16.4", L"32.8", L"32.8", L"49.2", L"65.6"}));
  EXPECT_EQ(Of(ID_RANGE_UNIT).text, L"ft");
  wchar_t text[64];
  GetChosenText(*state_, ID_RANGE, text);
  EXPECT_STREQ(text, before) << "a unit is no other range, which would be sent";
  SelectComboItem(*state_, ID_RANGE, 4);
  TakeSettingsChoice(*state_, ID_RANGE);
  EXPECT_EQ(state_->settings.rangeHigh_mm, 10'000);
  ChooseItem(ID_RANGE, L"49.2");
  EXPECT_EQ(state_->settings.rangeHigh_mm, 15'000);
  state_->options.depthUnit = kMetres;
  TakeDepthUnit(*state_);
  EXPECT_EQ(Of(ID_RANGE).text, L"15");
  EXPECT_EQ(Of(ID_RANGE_UNIT).text, L"m");
}

// Record files tell the high values, whichever frequency they were recorded with.
TEST_F(SettingsSelectors, APlayedFileShowsItsRange) {
  state_->playbackActive = 1;
  state_->settings.frequencyInUse_hz = 200'000;
  state_->settings.outputMode = 102;
  RefreshSettingsControls(*state_);
  EXPECT_EQ(Of(ID_RANGE).text, L"10");
  EXPECT_EQ(Of(ID_OUTPUT).text, L"Echo Bin");
}

TEST_F(SettingsSelectors, ChoicesThatWaitForApplyAreMarked) {
  const auto shown = [this] {
    HandleTimer(*state_, ID_TIMER_REPAINT);
    std::string dots;
    for (int id = ID_WAITS_FREQUENCY; id <= ID_WAITS_PRESET; ++id) {
      if (Of(id).visible) dots += std::to_string(id - ID_WAITS_FREQUENCY);
    }
    return dots + (Of(ID_APPLY).bold ? " bold" : "");
  };
  for (int id = ID_WAITS_FREQUENCY; id <= ID_WAITS_PRESET; ++id) Of(id).visible = false;  // as they are made
  EXPECT_EQ(shown(), "") << "without a device nothing waits";
  state_->settings = {};
  StartQuickRun(2);
  EXPECT_EQ(shown(), "");
  Of(ID_RECORD).checked = false;
  ChooseItem(ID_INTERVAL, L"0.20");
  EXPECT_EQ(shown(), "4 bold");
  Tick(ID_DUAL_MODE, true);
  EXPECT_EQ(shown(), "14 bold");
  ApplySettings(*state_);
  EXPECT_EQ(shown(), "");
  ChooseItem(ID_INTERVAL, L"0.50");
  EXPECT_EQ(shown(), "4 bold");
  StopRun(*state_);
  EXPECT_EQ(shown(), "");
}

}  // namespace
}  // namespace tw::test
