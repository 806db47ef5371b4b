// Not tests: the echogram's pictures of the documents, which docs/take_pictures asks for. Each waits until
// the virtual echosounder, at five pings a second, has sent what the picture shows.
#include <gtest/gtest.h>

#include <optional>
#include <utility>

#include "app/window/control_ids.h"
#include "tests/window/dialog.h"
#include "tests/window/ping_log.h"
#include "tests/window/program.h"
#include "tests/window/stored_choices.h"
#include "tests/window/view_picture.h"

namespace tw {
namespace {

class DISABLED_Pictures : public ::testing::Test {
 protected:
  DISABLED_Pictures() { StoreRunChoices(folder_.Path()); }

  void Start() {
    program_.emplace();
    program_->Resize(980, 750);
    program_->Click(ID_START);
    WaitForSeconds(1);
  }

  void WaitForSeconds(size_t seconds) const {
    constexpr size_t kPingsPerSecond = 5;
    ASSERT_TRUE(WaitUntil([&] { return ReadPingLog().size() >= seconds * kPingsPerSecond; }, 600));
  }

  // A step is a notch of the wheel: forward, or back when it is negative.
  void Turn(int steps) const {
    const HWND view = program_->Control(ID_ECHOGRAM);
    RECT place{};
    GetWindowRect(view, &place);
    const LPARAM middle = MAKELPARAM((place.left + place.right) / 2, (place.top + place.bottom) / 2);
    SendMessageW(view, WM_MOUSEMOVE, 0, 0);  // the keyboard is there, and no control has its frame
    const int notch = steps > 0 ? WHEEL_DELTA : -WHEEL_DELTA;
    for (int i = 0; i != steps; i += notch / WHEEL_DELTA)
      SendMessageW(view, WM_MOUSEWHEEL, MAKEWPARAM(0, notch), middle);
  }
  void TurnWithShift(int steps) const {
    keybd_event(VK_SHIFT, 0, 0, 0);
    Sleep(300);  // it comes to the program
    Turn(steps);
    keybd_event(VK_SHIFT, 0, KEYEVENTF_KEYUP, 0);
    Sleep(300);
  }
  void Save(const char* name) const { SavePicture(program_->Window(), name); }

  OwnFolder folder_;
  std::optional<Program> program_;
};

TEST_F(DISABLED_Pictures, Single) {
  Start();
  program_->Click(ID_TIMESTAMP);
  WaitForSeconds(165);
  Save("echogram-time-stamps");
  program_->Click(ID_TIMESTAMP);
  ASSERT_TRUE(WaitUntil([&] { return !program_->IsTicked(ID_TIMESTAMP); }, 10));
  TurnWithShift(3);
  Save("main-window");
  TurnWithShift(1);
  Turn(2);
  Save("echogram-zoomed-in");
  TurnWithShift(-1);
  Turn(-2);
  PostMessageW(program_->Control(ID_ECHOGRAM), WM_LBUTTONDOWN, MK_LBUTTON | MK_CONTROL, MAKELPARAM(50, 50));
  ASSERT_TRUE(WaitUntil([&] { return !IsWindowVisible(program_->Control(ID_START)); }, 10));
  Save("echogram-full-window");
}

TEST_F(DISABLED_Pictures, ZoomedOut) {
  Start();
  WaitForSeconds(200);
  TurnWithShift(-5);
  Save("echogram-zoomed-out");
}

TEST_F(DISABLED_Pictures, Dual) {
  Start();
  WaitForSeconds(70);
  TurnWithShift(2);
  Save("echogram-dual");
}

// One run in all schemes.
TEST_F(DISABLED_Pictures, Colours) {
  Start();
  WaitForSeconds(65);
  TurnWithShift(3);
  const std::pair<const wchar_t*, const char*> schemes[] = {{L"Standard", "colours-standard"},
                                                            {L"Blue to yellow", "colours-blue-to-yellow"},
                                                            {L"Violet to yellow", "colours-violet-to-yellow"},
                                                            {L"Grey on black", "colours-grey-on-black"},
                                                            {L"Black on white", "colours-black-on-white"}};
  for (const auto& [scheme, name] : schemes) {
    program_->Choose(ID_MENU_OPTIONS);
    const Dialog sheet(*program_);
    PageOf(sheet, 4).Select(L"Colours", scheme);
    sheet.Press(VK_RETURN);
    ASSERT_TRUE(sheet.CloseHasCome());
    SavePicture(program_->Control(ID_ECHOGRAM), name);
  }
  program_->Choose(ID_MENU_OPTIONS);
  const Dialog sheet(*program_);
  const Dialog page = PageOf(sheet, 4);
  page.Select(L"Colours", L"Standard");
  page.Select(L"Depths in", L"Feet");
  sheet.Press(VK_RETURN);
  ASSERT_TRUE(sheet.CloseHasCome());
  Save("feet");
}

// The cursor over the sea bed, the depth as a line and in large figures, clocks, a mark.
TEST_F(DISABLED_Pictures, Reading) {
  for (const wchar_t* const option : {L"DepthTrace", L"GapLines", L"TimeLabels", L"DepthWindow"})
    StoreOption(option, 1);
  Start();
  WaitForSeconds(48);
  program_->Choose(ID_MENU_MARK_WORD);
  const Dialog dialog(*program_);
  dialog.Enter(L"Word at the line and in events.csv", L"wreck");
  dialog.Press(VK_RETURN);
  WaitForSeconds(65);
  TurnWithShift(3);
  const HWND view = program_->Control(ID_ECHOGRAM);
  POINT over{280, 330};
  ClientToScreen(view, &over);
  SetCursorPos(over.x, over.y);
  SendMessageW(view, WM_MOUSEMOVE, 0, MAKELPARAM(280, 330));
  Sleep(300);
  Save("reading");
  SavePicture(FindWindowW(L"Tidewriter depth", nullptr), "depth-window");
}

TEST_F(DISABLED_Pictures, Altimeter) {
  Start();
  WaitForSeconds(35);
  TurnWithShift(3);
  Save("altimeter");
}

}  // namespace
}  // namespace tw
