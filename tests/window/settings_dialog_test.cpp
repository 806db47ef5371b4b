// The settings dialogs of a running device: filled in with good and bad values, and what the device makes of
// it.
#include <gtest/gtest.h>
#include <windows.h>
// Needs the types of windows.h.
#include <commctrl.h>

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
class DetailSettings : public SettingsDialogs {
 protected:
  // The output's name ends where the selector is still white, ahead of the arrow.
  void ExpectWholeInSelector(const wchar_t* name) const {
    const HWND combo = program_->Control(ID_OUTPUT);
    const LRESULT chosen = SendMessageW(combo, CB_GETCURSEL, 0, 0);
    const LRESULT item =
        SendMessageW(combo, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(name));
    SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(item), 0);
    Sleep(500);  // until it is painted
    COMBOBOXINFO parts{};
    parts.cbSize = sizeof(parts);
    ASSERT_TRUE(GetComboBoxInfo(combo, &parts));
    const Picture picture = PictureOf(combo);
    for (int y = parts.rcItem.top + 1; y < parts.rcItem.bottom - 1; ++y) {
      EXPECT_EQ(picture.At(parts.rcItem.right - 2, y),
                picture.At(parts.rcItem.left + 1, parts.rcItem.top + 1))
          << y;
    }
    SendMessageW(combo, CB_SETCURSEL, static_cast<WPARAM>(chosen), 0);
  }
};

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
  first.Enter(L"Threshold [%]", L"23");
  first.Enter(L"Gain [dB]", L"-12.5");
  first.Enter(L"Transmit length [\u00B5s]", L"77");
  first.Enter(L"Dead zone [mm]", L"321");
  first.Enter(L"Speed of sound [m/s]", L"1481.5");
  Confirm();
  EXPECT_EQ(program_->Text(ID_RANGE), L"20");
  EXPECT_EQ(program_->Text(ID_INTERVAL), L"0.50");

  const Dialog& second = Open();
  EXPECT_EQ(second.Value(L"Range [m]"), L"20");
  EXPECT_EQ(second.Value(L"Ping interval [s]"), L"0.50");
  EXPECT_EQ(second.Value(L"Threshold [%]"), L"23");
  EXPECT_EQ(second.Value(L"Gain [dB]"), L"-12.5");
  EXPECT_EQ(second.Value(L"Transmit length [\u00B5s]"), L"77");
  EXPECT_EQ(second.Value(L"Dead zone [mm]"), L"321");
  EXPECT_EQ(second.Value(L"Speed of sound [m/s]"), L"1481.5");
  second.Press(VK_ESCAPE);
  EXPECT_TRUE(second.CloseHasCome());
  EXPECT_EQ(program_->Exit(), 0);
}

struct BadValue {
  const wchar_t* label;
  const wchar_t* text;
  const wchar_t* good;
  const wchar_t* message;
};
constexpr BadValue kBadValues[] = {
    {L"Gain [dB]", L"60.1", L"60", L"Value of Gain must be from -60.0 to 60.0."},
    {L"Gain [dB]", L"1,5", L"1.5", L"Value of Gain must be from -60.0 to 60.0."},
    {L"Threshold [%]", L"", L"100", L"Value of Threshold must be a whole number from 0 to 100."},
    {L"Dead zone [mm]", L"30001", L"30000", L"Value of Dead zone must be a whole number from 0 to 30000."},
    {L"Offset [mm]", L"-10001", L"-10000", L"Value of Offset must be a whole number from -10000 to 10000."},
    {L"Speed of sound [m/s]", L"1700.5", L"1700", L"Value of Speed of sound must be from 1300.0 to 1700.0."},
};

TEST_F(SingleSettings, BadValuesAreSaidAndKeepTheDialogOpen) {
  const Dialog& dialog = Open();
  dialog.Select(L"Range [m]", L"30");
  for (const BadValue& row : kBadValues) {
    dialog.Enter(row.label, row.text);
    dialog.Press(VK_RETURN);
    EXPECT_EQ(program_->AnswerBox(10, dialog.Window()), (MessageBoxContent{L"Error", row.message}));
    ASSERT_TRUE(dialog.IsOpen());
    EXPECT_TRUE(dialog.FocusComesTo(dialog.Field(row.label)));
    dialog.Enter(row.label, row.good);
  }
  Confirm();
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

// A recording that has just been made, played: the file's settings, which cannot be changed.
TEST_F(SingleSettings, APlayedFilesSettingsAreShownDisabled) {
  ASSERT_TRUE(WaitUntil([this] { return program_->Status(3).starts_with(L"File size: "); }, kStart_s));
  Sleep(2000);  // some pings
  const std::wstring interval = program_->Text(ID_INTERVAL);
  program_->Click(ID_STOP);
  ASSERT_TRUE(WaitUntil([this] { return program_->IsEnabled(ID_START); }, kStart_s));
  program_->Click(ID_PLAYBACK);
  const HWND files = program_->FindDialog(20);
  ASSERT_NE(files, nullptr);
  constexpr int kName = 1148;
  const auto edit = reinterpret_cast<HWND>(SendDlgItemMessageW(files, kName, CBEM_GETEDITCONTROL, 0, 0));
  SendMessageW(edit, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(folder_.Files().front().c_str()));
  PostMessageW(files, WM_COMMAND, IDOK, 0);
  ASSERT_TRUE(WaitUntil([&] { return !IsWindow(files) && program_->IsEnabled(ID_SHOW_SETTINGS); }, 20));
  program_->Click(ID_SHOW_SETTINGS);
  const Dialog dialog(*program_);
  EXPECT_EQ(dialog.Caption(), L"Settings (Single)");
  ExpectWellMade(dialog);
  SavePicture(dialog.Window(), "settings-played");
  EXPECT_EQ(dialog.Value(L"Ping interval [s]"), interval);
  for (const ControlPlace& control : dialog.Controls()) {
    const bool isField = control.className == L"Edit" || control.className == L"ComboBox";
    EXPECT_EQ(IsWindowEnabled(control.window) != FALSE, !isField) << control.id;
  }
  dialog.Press(VK_ESCAPE);
  EXPECT_TRUE(dialog.CloseHasCome());
  EXPECT_EQ(program_->Exit(), 0);
}

TEST_F(DualSettings, BothChannelsStandSideBySide) {
  const Dialog& first = Open();
  EXPECT_EQ(first.Caption(), L"Settings (Dual)");
  ExpectWellMade(first);
  SavePicture(program_->Window(), "main-window-dual");
  SavePicture(first.Window(), "settings-dual");
  EXPECT_FALSE(IsWindowEnabled(first.Field(L"Range [m]", 0))) << "the high one is that of both";
  EXPECT_TRUE(IsWindowEnabled(first.Field(L"TVG mode")));
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
  ExpectWholeInSelector(L"Echo txt Fixed 1000 Samples");
  SendMessageW(first.Field(L"Range [m]"), WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), 0);
  EXPECT_EQ(first.Value(L"Range [m]"), L"30") << "no matter for the wheel";
  first.Select(L"Range [m]", L"20");
  first.Enter(L"Gain [dB]", L"-12.5");
  first.Enter(L"Threshold [%]", L"101");
  first.Press(VK_RETURN);
  EXPECT_EQ(program_->AnswerBox(10, first.Window()),
            (MessageBoxContent{L"Error", L"Value of Threshold must be a whole number from 0 to 100."}));
  first.Enter(L"Threshold [%]", L"23");
  first.Enter(L"Dead zone [mm]", L"321");
  first.Enter(L"Speed of sound [m/s]", L"1481");
  Confirm();
  EXPECT_EQ(program_->Text(ID_RANGE), L"20");

  const Dialog& second = Open();
  EXPECT_EQ(second.Value(L"Range [m]"), L"20");
  EXPECT_EQ(second.Value(L"Gain [dB]"), L"-12.5");
  EXPECT_EQ(second.Value(L"Threshold [%]"), L"23");
  EXPECT_EQ(second.Value(L"Dead zone [mm]"), L"321");
  EXPECT_EQ(second.Value(L"Speed of sound [m/s]"), L"1481.0");
  second.Press(VK_ESCAPE);
  EXPECT_TRUE(second.CloseHasCome());
  EXPECT_EQ(program_->Exit(), 0);
}

}  // namespace
}  // namespace tw
