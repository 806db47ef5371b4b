// What the main window does for the operator beside its buttons: tips, keys, names.
#include <gtest/gtest.h>
#include <windows.h>

#include <commctrl.h>
#include <oleacc.h>

#include <optional>
#include <set>
#include <string>
#include <vector>

#include "app/window/control_ids.h"
#include "tests/window/dialog.h"
#include "tests/window/program.h"
#include "tests/window/stored_choices.h"
#include "tests/window/view_picture.h"

namespace tw {
namespace {

class Operating : public ::testing::Test {
 protected:
  Operating() {
    StoreRunChoices(folder_.Path());
    program_.emplace();
  }

  // A key with those that are held down meanwhile.
  void Press(BYTE key, const std::vector<BYTE>& held = {}) const {
    SetForegroundWindow(program_->Window());
    for (const BYTE with : held) keybd_event(with, 0, 0, 0);
    keybd_event(key, 0, 0, 0);
    keybd_event(key, 0, KEYEVENTF_KEYUP, 0);
    for (const BYTE with : held) keybd_event(with, 0, KEYEVENTF_KEYUP, 0);
  }

  // The control that a key of the keyboard's way leads to.
  HWND FocusBehind(BYTE key, const std::vector<BYTE>& held) const {
    const Dialog window(program_->Window());
    const HWND before = window.Focus();
    Press(key, held);
    EXPECT_TRUE(WaitUntil([&] { return window.Focus() != before; }, 10));
    EXPECT_NE(GetWindowLongW(window.Focus(), GWL_STYLE) & WS_TABSTOP, 0);
    return window.Focus();
  }

  OwnFolder folder_;
  std::optional<Program> program_;
};

struct TipRow {
  int id;
  const wchar_t* begin;
  const wchar_t* end;
};
constexpr TipRow kTips[] = {
    {ID_START, L"Connects", L"(F5)."},
    {ID_APPLY, L"Sends the choices", L"\nNo device is connected: press Start."},
    {ID_PAUSE, L"Holds the picture", L"\nNo recording is played: press Playback."},
};

TEST_F(Operating, ControlsTellWhatTheyDoAndWhyTheyAreGrey) {
  for (const TipRow& row : kTips) {
    RestOn(program_->Control(row.id));
    EXPECT_TRUE(program_->TipComes(row.begin, row.end)) << row.id;
    SavePicture(program_->Window(), row.id == ID_APPLY ? "tip-grey" : "tip");
  }
}

TEST_F(Operating, KeysPressTheControls) {
  Press('T', {VK_CONTROL});
  EXPECT_TRUE(WaitUntil([&] { return program_->IsTicked(ID_TIMESTAMP); }, 10));
  Press('T', {VK_CONTROL});
  EXPECT_TRUE(WaitUntil([&] { return !program_->IsTicked(ID_TIMESTAMP); }, 10));
  Press('R', {VK_CONTROL});
  EXPECT_TRUE(WaitUntil([&] { return StoredNumber(L"Recording") == 0u; }, 10));
  EXPECT_FALSE(program_->IsTicked(ID_RECORD));
  Press('D', {VK_CONTROL});  // grey
  Press('F', {VK_CONTROL});
  EXPECT_TRUE(WaitUntil([&] { return !IsWindowVisible(program_->Control(ID_START)); }, 10));
  EXPECT_FALSE(program_->IsTicked(ID_DUAL_MODE));
  for (int i = 0; i < 2; ++i) {  // the second one finds nothing to leave
    Press(VK_ESCAPE);
    EXPECT_TRUE(WaitUntil([&] { return IsWindowVisible(program_->Control(ID_START)) != FALSE; }, 10));
  }
  const HWND first = FocusBehind(VK_TAB, {});
  EXPECT_NE(FocusBehind(VK_TAB, {}), first);
  EXPECT_EQ(FocusBehind(VK_TAB, {VK_SHIFT}), first);
  Press(VK_F1);
  const Dialog shortcuts(*program_);
  EXPECT_EQ(shortcuts.Caption(), L"Keyboard Shortcuts");
  shortcuts.Press(VK_ESCAPE);
  EXPECT_TRUE(shortcuts.CloseHasCome());
}

// As the system's readers name it: by the label right ahead of a field, else by what the control tells
// itself.
std::wstring SpokenName(const std::vector<ControlPlace>& controls, size_t index) {
  const ControlPlace& control = controls[index];
  if (control.className == L"ComboBox") {
    return index > 0 && controls[index - 1].className == L"Static" ? controls[index - 1].text : L"";
  }
  IAccessible* accessible = nullptr;
  BSTR name = nullptr;
  VARIANT self{};
  self.vt = VT_I4;
  if (FAILED(AccessibleObjectFromWindow(control.window, static_cast<DWORD>(OBJID_CLIENT),
                                        __uuidof(IAccessible), reinterpret_cast<void**>(&accessible))))
    return L"";
  const bool told = SUCCEEDED(accessible->get_accName(self, &name)) && name != nullptr;
  const std::wstring text = told ? name : L"";
  SysFreeString(name);
  accessible->Release();
  return text;
}

TEST_F(Operating, EachControlHasANameForItsReader) {
  ASSERT_GE(CoInitialize(nullptr), 0);
  EXPECT_TRUE(WaitUntil([&] { return !program_->Text(ID_RECORDING_LAMP).empty(); }, 10));
  const std::vector<ControlPlace> controls = program_->Controls();
  std::set<std::wstring> names;
  for (size_t i = 0; i < controls.size(); ++i) {
    const ControlPlace& control = controls[i];
    const bool lamp = control.id == ID_RECORDING_LAMP || control.id == ID_RECEIVER_LAMP;
    if (control.id == 0 || (control.className == L"Static" && !lamp)) continue;  // labels, the status bar
    const std::wstring name = SpokenName(controls, i);
    EXPECT_FALSE(name.empty()) << control.id;
    EXPECT_TRUE(names.insert(name).second) << control.id << " has the name of another";
  }
  EXPECT_TRUE(names.contains(L"GPS receiver speed") && names.contains(L"Range") && names.contains(L"Start"));
}

// The text that the picture's name stood in for comes back.
TEST_F(Operating, APictureTellsItsName) {
  Press('S', {VK_CONTROL});
  EXPECT_TRUE(WaitUntil([&] { return program_->Status(2).ends_with(L"ScreenShot(Manual)_1.png"); }, 10));
  EXPECT_EQ(folder_.Files().size(), 1u);
  EXPECT_TRUE(WaitUntil([&] { return program_->Status(2).empty(); }, 10));
}

// Only pixels tell: while Start keeps the window busy its texts cannot be asked for, and no timer comes.
TEST_F(Operating, TheTalkOfAStartTakesThePlaceOfAPicturesName) {
  const HWND bar = FindWindowExW(program_->Window(), nullptr, STATUSCLASSNAMEW, nullptr);
  const auto part = [&] {  // the left of the third one
    const Picture all = PictureOf(bar);
    std::vector<uint32_t> pixels;
    for (int x = 430; x < 700; ++x) pixels.push_back(all.At(x, all.height / 2));
    return pixels;
  };
  Press('S', {VK_CONTROL});
  ASSERT_TRUE(WaitUntil([&] { return !program_->Status(2).empty(); }, 10));
  SendMessageW(bar, WM_NULL, 0, 0);
  const std::vector<uint32_t> name = part();
  program_->Click(ID_START);
  EXPECT_TRUE(WaitUntil([&] { return part() != name && program_->IsBusy(); }, 5));
}

}  // namespace
}  // namespace tw
