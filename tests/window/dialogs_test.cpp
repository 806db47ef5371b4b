// The dialogs that need no device, as an operator meets them.
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <optional>
#include <utility>

#include "app/window/control_ids.h"
#include "tests/window/dialog.h"
#include "tests/window/stored_choices.h"
#include "tests/window/view_picture.h"

namespace tw {
namespace {

constexpr wchar_t kFolderLabel[] = L"Folder for recordings and pictures";
constexpr wchar_t kSpeedLabel[] = L"Speed [bit/s]";
const MessageBoxContent kNotConnected{L"Error", L"Echosounder is not connected"};

class Dialogs : public ::testing::Test {
 protected:
  Dialogs() { StoreRunChoices(folder_.Path()); }

  Dialog& Open(int menuEntry) {
    program_.emplace();
    program_->Choose(menuEntry);
    return dialog_.emplace(*program_);
  }

  // A folder that is not there, its name of so many characters.
  [[nodiscard]] std::wstring NameOf(size_t length) const {
    const std::wstring begin = folder_.Path() + L"\\made";
    return begin + std::wstring(length - begin.size(), L'x');
  }

  OwnFolder folder_;
  std::optional<Program> program_;
  std::optional<Dialog> dialog_;
};

HWND Switch(const Dialog& page, const wchar_t* text) {
  return FindWindowExW(page.Window(), nullptr, L"Button", text);
}

bool IsOn(HWND button) {
  return SendMessageW(button, BM_GETCHECK, 0, 0) == BST_CHECKED;
}

struct NamedDialog {
  int menuEntry;
  const wchar_t* caption;
  const char* picture;
  int control = 0;  // one that tells what it does
  const wchar_t* tip = L"";
};
constexpr NamedDialog kDialogs[] = {
    {ID_MENU_FOLDER, L"Working folder change", "working-folder", ID_FOLDER_EDIT, L"Recordings, pictures"},
    {ID_MENU_BAUD, L"Change Device Baudrate", "change-baudrate", ID_BAUD_SPEED, L"What device and program"},
    {ID_MENU_ABOUT, L"About Tidewriter", "about"},
    {ID_MENU_SHORTCUTS, L"Keyboard Shortcuts", "shortcuts"},
};

TEST_F(Dialogs, AreWellMadeAndLeftWithEscape) {
  for (const NamedDialog& row : kDialogs) {
    const Dialog& dialog = Open(row.menuEntry);
    EXPECT_EQ(dialog.Caption(), row.caption);
    ExpectWellMade(dialog);
    SavePicture(dialog.Window(), row.picture);
    RestOn(GetDlgItem(dialog.Window(), row.control));
    EXPECT_TRUE(program_->TipComes(row.tip, L"")) << row.picture;
    dialog.Press(VK_ESCAPE);
    EXPECT_TRUE(dialog.CloseHasCome()) << row.picture;
    EXPECT_EQ(program_->Exit(), 0);
  }
}

TEST_F(Dialogs, FolderThatIsNotThereIsMade) {
  const std::wstring wanted = NameOf(129);
  const Dialog& dialog = Open(ID_MENU_FOLDER);
  EXPECT_EQ(dialog.Value(kFolderLabel), folder_.Path());
  dialog.Enter(kFolderLabel, wanted);
  dialog.Press(VK_RETURN);
  ASSERT_TRUE(dialog.CloseHasCome());
  EXPECT_TRUE(std::filesystem::is_directory(wanted));
  EXPECT_EQ(StoredText(L"WorkingFolder"), wanted);
  program_->Choose(ID_MENU_FOLDER);
  EXPECT_EQ(Dialog(*program_).Value(kFolderLabel), wanted) << "read back";
}

TEST_F(Dialogs, FolderThatCannotBeMadeKeepsTheDialogOpen) {
  const Dialog& dialog = Open(ID_MENU_FOLDER);
  const std::wstring tooLong = NameOf(130);
  for (const std::wstring& bad :
       {folder_.Path() + L"\\no\\such\\place", std::wstring(L"Q:\\x"), std::wstring(), tooLong}) {
    dialog.Enter(kFolderLabel, bad);
    dialog.Press(VK_RETURN);
    const MessageBoxContent box = program_->AnswerBox(10, dialog.Window());
    EXPECT_EQ(box.caption, L"GetLastError");
    EXPECT_FALSE(box.text.empty());
    EXPECT_TRUE(dialog.FocusComesTo(dialog.Field(kFolderLabel)));
  }
  dialog.Press(VK_ESCAPE);
  ASSERT_TRUE(dialog.CloseHasCome());
  EXPECT_EQ(StoredText(L"WorkingFolder"), folder_.Path());
  EXPECT_FALSE(std::filesystem::exists(tooLong));
}

constexpr wchar_t kKeepGoing[] = L"&Keep the run going when the link is lost";
constexpr wchar_t kEventLog[] = L"Event &log in the working folder (events.csv)";
constexpr wchar_t kSilence[] = L"Lost without data for";

TEST_F(Dialogs, OptionsHoldWhatIsEnteredWithinItsBounds) {
  const Dialog& sheet = Open(ID_MENU_OPTIONS);
  EXPECT_EQ(sheet.Caption(), L"Options");
  const char* const pictures[] = {"options-link", "options-recording", "options-outputs", "options-sentences",
                                  "options-display"};
  for (int i = 4; i >= 0; --i) {
    ExpectWellMade(PageOf(sheet, i));
    SavePicture(sheet.Window(), pictures[i]);
  }
  const Dialog link = PageOf(sheet, 0);
  EXPECT_FALSE(IsWindowEnabled(link.Field(kSilence)));
  RestOn(link.Field(kSilence));
  EXPECT_TRUE(program_->TipComes(L"Longer", L"\nTick \"Keep the run going when the link is lost\" first."));
  SavePicture(sheet.Window(), "options-tip");
  SendMessageW(Switch(link, kKeepGoing), BM_CLICK, 0, 0);
  EXPECT_TRUE(IsWindowEnabled(link.Field(kSilence)));
  for (const wchar_t* const bad : {L"61", L""}) {
    link.Enter(kSilence, bad);
    sheet.Press(VK_RETURN);
    EXPECT_EQ(
        program_->AnswerBox(10, sheet.Window()),
        (MessageBoxContent{L"Error", L"\"Lost without data for\" must be a whole number from 5 to 60 s."}));
    EXPECT_TRUE(sheet.FocusComesTo(link.Field(kSilence)));
  }
  link.Enter(kSilence, L"12");
  SendMessageW(Switch(PageOf(sheet, 1), kEventLog), BM_CLICK, 0, 0);
  sheet.Press(VK_RETURN);
  ASSERT_TRUE(sheet.CloseHasCome());

  int leave = VK_ESCAPE;
  for (const bool kept : {true, true, false}) {
    program_->Choose(ID_MENU_OPTIONS);
    const Dialog again(*program_);
    EXPECT_TRUE(IsOn(Switch(PageOf(again, 1), kEventLog)));
    const Dialog page = PageOf(again, 0);
    EXPECT_EQ(IsOn(Switch(page, kKeepGoing)), kept);
    EXPECT_EQ(page.Value(kSilence), kept ? L"12" : L"10");
    SendMessageW(Switch(page, L"Defa&ults"), BM_CLICK, 0, 0);
    EXPECT_FALSE(IsOn(Switch(page, kKeepGoing)));
    again.Press(std::exchange(leave, VK_RETURN));
    ASSERT_TRUE(again.CloseHasCome());
  }
}

// The sheet covers the upper left of the window.
TEST_F(Dialogs, ColoursAndUnitAreShownAtOnceAndCancelTakesThemBack) {
  const Dialog& sheet = Open(ID_MENU_OPTIONS);
  const auto corner = [this] {
    const Picture view = PictureOf(program_->Control(ID_ECHOGRAM));
    return view.At(view.width - 3, view.height - 3);
  };
  const Dialog page = PageOf(sheet, 4);
  page.Select(L"Colours", L"Black on white");
  EXPECT_TRUE(WaitUntil([&] { return corner() == 0xFFFFFF; }, 10));
  page.Select(L"Depths in", L"Feet");
  EXPECT_EQ(program_->Text(ID_RANGE_UNIT), L"ft");
  sheet.Press(VK_ESCAPE);
  EXPECT_TRUE(WaitUntil([&] { return corner() == 0; }, 10));
  EXPECT_EQ(program_->Text(ID_RANGE_UNIT), L"m");
}

// What stands in the field is lost meanwhile, so that it can only come back from the browser.
TEST_F(Dialogs, FolderBrowserTakesTheFolderItOpensWith) {
  const Dialog& dialog = Open(ID_MENU_FOLDER);
  PostMessageW(GetDlgItem(dialog.Window(), 1005), BM_CLICK, 0, 0);
  const HWND browser = program_->FindDialog(20, dialog.Window());
  ASSERT_NE(browser, nullptr);
  const std::wstring name = std::filesystem::path(folder_.Path()).filename();
  EXPECT_TRUE(
      WaitUntil([&] { return TextOf(FindWindowExW(browser, nullptr, L"Edit", nullptr)) == name; }, 10));
  EXPECT_TRUE(WaitUntil([&] { return IsWindowEnabled(GetDlgItem(browser, IDOK)) != FALSE; }, 10));
  dialog.Enter(kFolderLabel, L"lost");
  PostMessageW(browser, WM_COMMAND, IDOK, 0);
  ASSERT_TRUE(WaitUntil([&] { return dialog.Value(kFolderLabel) != L"lost"; }, 10));
  const std::filesystem::path chosen = dialog.Value(kFolderLabel);
  std::error_code failure;
  EXPECT_TRUE(std::filesystem::equivalent(chosen, folder_.Path(), failure)) << chosen;
}

using FindDevice = Dialogs;

// One that sends pings at another speed than the selected one.
TEST_F(FindDevice, IsFoundAndGoesIntoTheSelectors) {
  StoreChoice(L"DeviceCOMSpeed", 115'200);
  const Dialog& dialog = Open(ID_MENU_FIND);
  const auto says = [&](const wchar_t* text) {
    return WaitUntil([&] { return TextOf(GetDlgItem(dialog.Window(), ID_FIND_STATE)) == text; }, 60);
  };
  const auto click = [&](int id) { PostMessageW(GetDlgItem(dialog.Window(), id), BM_CLICK, 0, 0); };
  EXPECT_EQ(dialog.Caption(), L"Find device");
  ExpectWellMade(dialog);
  EXPECT_FALSE(IsWindowEnabled(GetDlgItem(dialog.Window(), IDOK)));
  RestOn(GetDlgItem(dialog.Window(), IDOK));
  EXPECT_TRUE(program_->TipComes(L"Puts port and speed", L"none has answered there yet."));
  for (const wchar_t* const text : {L"Searching...", L"The search was cancelled.", L"Searching..."}) {
    click(ID_FIND_SEARCH);
    EXPECT_TRUE(says(text));
  }
  EXPECT_TRUE(says(L"One device was found."));
  SavePicture(dialog.Window(), "find-device");
  click(IDOK);
  ASSERT_TRUE(dialog.CloseHasCome());
  EXPECT_EQ(program_->Text(ID_DEVICE_PORT), L"COM5");
  EXPECT_EQ(program_->Text(ID_DEVICE_SPEED), L"921600");

  program_->Choose(ID_MENU_FIND);
  const Dialog again(*program_);
  PostMessageW(GetDlgItem(again.Window(), ID_FIND_SEARCH), BM_CLICK, 0, 0);
  again.Press(VK_ESCAPE);
  EXPECT_TRUE(again.CloseHasCome());
  EXPECT_EQ(program_->Exit(), 0);
}

TEST_F(Dialogs, SpeedNeedsADevice) {
  const Dialog& dialog = Open(ID_MENU_BAUD);
  EXPECT_EQ(ItemsOf(dialog.Field(kSpeedLabel)), program_->Items(ID_DEVICE_SPEED));
  SendMessageW(dialog.Field(kSpeedLabel), WM_MOUSEWHEEL, MAKEWPARAM(0, WHEEL_DELTA), 0);
  EXPECT_EQ(dialog.Value(kSpeedLabel), L"921600");
  dialog.Select(kSpeedLabel, L"9600");
  dialog.Press(VK_RETURN);
  EXPECT_EQ(program_->AnswerBox(10, dialog.Window()), kNotConnected);
  EXPECT_TRUE(dialog.CloseHasCome());
  EXPECT_EQ(StoredNumber(L"DeviceCOMSpeed"), 921'600u);
}

}  // namespace
}  // namespace tw
