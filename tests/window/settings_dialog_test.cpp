// The settings dialogs of a running device: filled in with good and bad values, and what the device makes of
// it.
#include <gtest/gtest.h>
#include <windows.h>
#include <optional>

#include "app/window/control_ids.h"
#include "tests/window/dialog.h"
#include "tests/window/stored_choices.h"
#include "tests/window/view_picture.h"

namespace tw {
namespace {

constexpr int kStart_s = 60;

// The device lives as long as the session: a test finds what the one before it has left.

class SettingsDialogs : public ::testing::Test {
 protected:
  SettingsDialogs() {
    StoreRunChoices(folder_.Path());
    program_.emplace();
    program_->Click(ID_START);
  }

  [[nodiscard]] bool Runs() const {
    return WaitUntil([this] { return program_->IsEnabled(ID_DETAIL); }, kStart_s);
  }

  Dialog& Open() {
    EXPECT_TRUE(Runs());
    program_->Click(ID_DETAIL);
    return dialog_.emplace(*program_);
  }

  // With Enter; the device is told and the run goes on.
  void Confirm() {
    dialog_->Press(VK_RETURN);
    ASSERT_TRUE(dialog_->CloseHasCome());
    SendMessageW(program_->Window(), WM_NULL, 0, 0);  // answered when the device has been told
    ASSERT_TRUE(Runs());
  }

  OwnFolder folder_;
  std::optional<Program> program_;
  std::optional<Dialog> dialog_;
};

class SingleSettings : public SettingsDialogs {};
class DualSettings : public SettingsDialogs {};

// The second and third family.
class DetailSettings : public SettingsDialogs {};

// What every device takes.
constexpr struct {
  const wchar_t* label;
  const wchar_t* text;
} kEntered[] = {{L"Threshold [%]", L"23"},
                {L"Gain [dB]", L"-12.5"},
                {L"Dead zone [mm]", L"321"},
                {L"Speed of sound [m/s]", L"1481.0"}};

TEST_F(SingleSettings, WhatIsEnteredReachesTheDevice) {
  const Dialog& first = Open();
  EXPECT_EQ(first.Caption(), L"Settings (Single)");
  ExpectWellMade(first);
  SavePicture(program_->Window(), "main-window-single");
  SavePicture(first.Window(), "settings-single");
  EXPECT_EQ(first.Value(L"Identity"), L"VIRTUAL-0001");
  EXPECT_FALSE(IsWindowEnabled(first.Field(L"TVG mode"))) << "each start sets it";
  first.Select(L"Range [m]", L"20");
  first.Select(L"Ping interval [s]", L"0.50");
  for (const auto& row : kEntered) first.Enter(row.label, row.text);
  Confirm();
  EXPECT_EQ(program_->Text(ID_RANGE), L"20");
  EXPECT_EQ(program_->Text(ID_INTERVAL), L"0.50");

  const Dialog& second = Open();
  EXPECT_EQ(second.Value(L"Range [m]"), L"20");
  EXPECT_EQ(second.Value(L"Ping interval [s]"), L"0.50");
  for (const auto& row : kEntered) EXPECT_EQ(second.Value(row.label), row.text);
  second.Press(VK_ESCAPE);
  EXPECT_TRUE(second.CloseHasCome());
  EXPECT_EQ(program_->Exit(), 0);
}

TEST_F(SingleSettings, TheKeyboardReachesEveryField) {
  const Dialog& dialog = Open();
  EXPECT_TRUE(dialog.FocusComesTo(dialog.Field(L"Range [m]"))) << "the first one";
  for (const ControlPlace& control : dialog.Controls()) {
    if ((control.style & WS_TABSTOP) == 0 || IsWindowEnabled(control.window) == FALSE) continue;
    EXPECT_TRUE(dialog.FocusComesTo(control.window)) << control.id;
    dialog.Press(VK_TAB);
  }
  EXPECT_TRUE(dialog.FocusComesTo(dialog.Field(L"Range [m]"))) << "and round";
  dialog.PressWithAlt(L'g');
  EXPECT_TRUE(dialog.FocusComesTo(dialog.Field(L"Gain [dB]")));
  dialog.Press(VK_ESCAPE);
  EXPECT_TRUE(dialog.CloseHasCome());
}

TEST_F(SingleSettings, APresetInForceRulesOutputRangeAndInterval) {
  ASSERT_TRUE(Runs());
  program_->Select(ID_PRESET, L"3");
  program_->Click(ID_APPLY);
  ASSERT_TRUE(WaitUntil([this] { return !program_->IsEnabled(ID_RANGE); }, kStart_s));
  const Dialog& dialog = Open();
  for (const wchar_t* const label : {L"Output mode", L"Range [m]", L"Ping interval [s]"}) {
    EXPECT_FALSE(IsWindowEnabled(dialog.Field(label))) << label;
  }
  EXPECT_TRUE(IsWindowEnabled(dialog.Field(L"Gain [dB]")));
  EXPECT_FALSE(program_->IsEnabled(ID_OUTPUT));
  EXPECT_FALSE(program_->IsEnabled(ID_INTERVAL));
  dialog.Press(VK_ESCAPE);
  ASSERT_TRUE(dialog.CloseHasCome());
  program_->Select(ID_PRESET, L"Off");
  program_->Click(ID_APPLY);
  EXPECT_TRUE(WaitUntil([this] { return program_->IsEnabled(ID_RANGE); }, kStart_s));
}

// Nothing but the new text of the selector tells the device, a second later.
TEST_F(SingleSettings, TheRangeSelectorIsHeededByItself) {
  ASSERT_TRUE(Runs());
  program_->Select(ID_RANGE, L"50");
  EXPECT_TRUE(WaitUntil([this] { return folder_.Files().size() == 2; }, 10)) << "Apply begins a fresh file";
  EXPECT_EQ(Open().Value(L"Range [m]"), L"50");
}

TEST_F(DualSettings, BothChannelsStandSideBySide) {
  const Dialog& first = Open();
  EXPECT_EQ(first.Caption(), L"Settings (Dual)");
  ExpectWellMade(first);
  SavePicture(program_->Window(), "main-window-dual");
  SavePicture(first.Window(), "settings-dual");
  EXPECT_FALSE(IsWindowEnabled(first.Field(L"Range [m]", 0))) << "the high one is that of both";
  EXPECT_TRUE(IsWindowEnabled(first.Field(L"TVG mode")));
  RestOn(first.Field(L"Range [m]", 0));
  EXPECT_TRUE(program_->TipComes(L"", L"takes the high range for both."));
  first.Enter(L"Gain [dB]", L"3", 0);
  first.Enter(L"Gain [dB]", L"61", 1);
  first.Press(VK_RETURN);
  EXPECT_EQ(program_->AnswerBox(10, first.Window()),
            (MessageBoxContent{L"Error", L"Value of Gain (high) must be from -60.0 to 60.0."}));
  EXPECT_TRUE(first.FocusComesTo(first.Field(L"Gain [dB]", 1)));
  first.Enter(L"Gain [dB]", L"-4.5", 1);
  first.Select(L"Range [m]", L"40", 1);
  Confirm();

  const Dialog& second = Open();
  EXPECT_EQ(second.Value(L"Gain [dB]", 0), L"3.0");
  EXPECT_EQ(second.Value(L"Gain [dB]", 1), L"-4.5");
  EXPECT_EQ(second.Value(L"Range [m]", 1), L"40");
  EXPECT_EQ(second.Value(L"Range [m]", 0), L"40") << "a dual run starts with the high range for both";
}

TEST_F(DetailSettings, WhatIsEnteredReachesTheDevice) {
  const Dialog& first = Open();
  EXPECT_EQ(first.Caption(), L"Detail Setting");
  ExpectWellMade(first);
  const bool hasFilters = first.Field(L"Median filter [pings]") != nullptr;  // the second family
  SavePicture(program_->Window(), hasFilters ? "main-window-second" : "main-window-third");
  SavePicture(first.Window(), hasFilters ? "detail-second" : "detail-third");
  EXPECT_FALSE(IsWindowVisible(program_->Control(ID_LOW_FREQUENCY)));
  EXPECT_FALSE(IsWindowVisible(program_->Control(ID_DUAL_MODE)));
  EXPECT_EQ(IsWindowVisible(program_->Control(ID_PRESET)) != FALSE, hasFilters);
  SendMessageW(first.Field(L"Range [m]"), WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), 0);
  EXPECT_EQ(first.Value(L"Range [m]"), L"30") << "no matter for the wheel";
  first.Select(L"Range [m]", L"20");
  first.Enter(L"Threshold [%]", L"101");
  first.Press(VK_RETURN);
  EXPECT_EQ(program_->AnswerBox(10, first.Window()),
            (MessageBoxContent{L"Error", L"Value of Threshold must be a whole number from 0 to 100."}));
  for (const auto& row : kEntered) first.Enter(row.label, row.text);
  Confirm();
  EXPECT_EQ(program_->Text(ID_RANGE), L"20");

  const Dialog& second = Open();
  EXPECT_EQ(second.Value(L"Range [m]"), L"20");
  for (const auto& row : kEntered) EXPECT_EQ(second.Value(row.label), row.text);
  second.Press(VK_ESCAPE);
  EXPECT_TRUE(second.CloseHasCome());
  EXPECT_EQ(program_->Exit(), 0);
}

}  // namespace
}  // namespace tw
