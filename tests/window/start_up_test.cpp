// What the program shows, stores and takes when it starts, and how it ends.
#include <gtest/gtest.h>

#include <filesystem>

#include "app/window/control_ids.h"
#include "tests/window/program.h"
#include "tests/window/stored_choices.h"

namespace tw {
namespace {

class StartUp : public ::testing::Test {
 protected:
  StartUp() { ForgetStoredChoices(); }
};

TEST_F(StartUp, FirstStartStoresTheDefaults) {
  Program program;
  ASSERT_TRUE(WaitUntil([&] { return !program.Status(0).empty(); }, 10));
  EXPECT_EQ(program.Title(), L"Tidewriter Echosounder Control Software");
  EXPECT_EQ(program.Status(0), L"Device: Disconnected");
  EXPECT_EQ(program.Status(1), L"GPS: Disconnected");
  EXPECT_EQ(program.Exit(), 0);

  EXPECT_EQ(StoredNumber(L"GPSCOMPort"), 0xFFFFFFFFu);
  EXPECT_EQ(StoredSize(L"MainWindowPosition"), 32u);
  const std::filesystem::path folder = StoredText(L"WorkingFolder");
  EXPECT_EQ(folder.filename().wstring(), L"TIDEWRITERR57_DATA");
  EXPECT_TRUE(std::filesystem::is_directory(folder));
}

// One notch over a selector would change the device.
TEST_F(StartUp, SelectorsTakeTheWheelOnlyWhileTheirListIsOpen) {
  Program program;
  const HWND speed = program.Control(ID_DEVICE_SPEED);
  const auto turn = [speed] { SendMessageW(speed, WM_MOUSEWHEEL, MAKEWPARAM(0, -WHEEL_DELTA), 0); };
  turn();
  EXPECT_EQ(program.Text(ID_DEVICE_SPEED), L"115200");
  SendMessageW(speed, CB_SHOWDROPDOWN, TRUE, 0);
  turn();
  SendMessageW(speed, CB_SHOWDROPDOWN, FALSE, 0);
  EXPECT_EQ(program.Text(ID_DEVICE_SPEED), L"230400");
}

}  // namespace
}  // namespace tw
