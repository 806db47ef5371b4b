// The program at its work: a run against the virtual instruments, from Start to exit.
#include <gtest/gtest.h>

#include <optional>

#include "app/window/control_ids.h"
#include "tests/app/test_files.h"
#include "tests/window/dialog.h"
#include "tests/window/ping_log.h"
#include "tests/window/program.h"
#include "tests/window/stored_choices.h"

namespace tw {
namespace {

constexpr wchar_t kTitle[] = L"Tidewriter Echosounder Control Software";
constexpr int kStart_s = 60;
constexpr size_t kTenSecondsOfPings = 100;  // at ten a second

class Run : public ::testing::Test {
 protected:
  Run() { StoreRunChoices(folder_.Path()); }

  [[nodiscard]] static size_t WholePings() {
    size_t count = 0;
    for (const LoggedPing& ping : ReadPingLog()) count += ping.whole ? 1 : 0;
    return count;
  }

  // Presses Start and waits until pings come.
  void Start() {
    program_.emplace();
    program_->Click(ID_START);
    ASSERT_TRUE(WaitUntil([] { return WholePings() > 0; }, kStart_s));
    ASSERT_TRUE(WaitUntil([this] { return !program_->IsEnabled(ID_START); }, kStart_s));
  }

  void Stop() {
    program_->Click(ID_STOP);
    ASSERT_TRUE(WaitUntil([this] { return program_->IsEnabled(ID_START); }, 20));
  }

  [[nodiscard]] size_t RecordedPings() const {
    const std::vector<std::wstring> files = folder_.Files();
    return files.empty() ? 0 : TakeApart(test::ReadWhole(files.front())).blocks.size();
  }

  // The one file of the working folder, taken apart.
  void ReadRecording() {
    const std::vector<std::wstring> files = folder_.Files();
    ASSERT_EQ(files.size(), 1u);
    file_ = test::ReadWhole(files.front());
    recording_ = TakeApart(file_);
  }

  OwnFolder folder_;
  std::optional<Program> program_;
  std::string file_;
  Recording recording_;
};

TEST_F(Run, TenSecondsFromStartToExit) {
  Start();
  EXPECT_EQ(program_->Status(0), L"Device: COM5,921600bps, ID: VIRTUAL-0001");
  EXPECT_EQ(program_->Status(1), L"GPS: COM6,4800bps");

  ASSERT_TRUE(WaitUntil([this] { return RecordedPings() >= kTenSecondsOfPings; }, 60));
  EXPECT_TRUE(program_->Status(2).starts_with(L"Position(3D)")) << "a position";
  EXPECT_TRUE(program_->Status(3).starts_with(L"File size: ")) << "size of the record file";
  EXPECT_GT(program_->Title().size(), std::wstring(kTitle).size()) << "the title names the file";

  Stop();
  EXPECT_EQ(program_->Status(0), L"Device: Disconnected");
  EXPECT_EQ(program_->Status(1), L"GPS: Disconnected");
  EXPECT_TRUE(WaitUntil([this] { return program_->Status(2).empty() && program_->Status(3).empty(); }, 10));
  EXPECT_TRUE(WaitUntil([this] { return program_->Title() == kTitle; }, 10));
  EXPECT_EQ(program_->Exit(), 0);

  ReadRecording();
  EXPECT_GE(recording_.blocks.size(), kTenSecondsOfPings);
  EXPECT_TRUE(recording_.settings.starts_with("INFO")) << recording_.settings;
  EXPECT_EQ(CompareWithLog(recording_, ReadPingLog()), "");
}

TEST_F(Run, ExitWhileRecordingLeavesAWholeFile) {
  Start();
  ASSERT_TRUE(WaitUntil([] { return WholePings() >= kTenSecondsOfPings / 4; }, 60));
  EXPECT_EQ(program_->Exit(), 0);
  ReadRecording();
  EXPECT_EQ(recording_.fault, "");
  EXPECT_FALSE(recording_.blocks.empty());
}

// The key marks at once; the menu asks for a word, of a moment that has passed when it is typed.
TEST_F(Run, MarksAreWrittenDown) {
  Start();
  ASSERT_TRUE(WaitUntil([this] { return RecordedPings() >= 10; }, 60));
  PostMessageW(program_->Window(), WM_KEYDOWN, VK_F9, 0);
  program_->Choose(ID_MENU_MARK_WORD);
  const Dialog dialog(*program_);
  dialog.Enter(L"Word at the line and in events.csv", L"wreck, upright");
  dialog.Press(VK_RETURN);
  const std::wstring log = folder_.Path() + L"\\events.csv";
  const auto holdsBoth = [&] {
    const std::string text = test::ReadWhole(log);
    return text.find(",mark,\"1, ping ") != text.npos && text.find(", wreck, upright\"\r\n") != text.npos;
  };
  EXPECT_TRUE(WaitUntil(holdsBoth, 10)) << test::ReadWhole(log);
  EXPECT_EQ(program_->Exit(), 0);
}

// What an operator clicks and types while Start keeps the window busy.
class QueuedInput : public Run {
 protected:
  void StartAndComeInBetween() {
    program_.emplace();
    program_->Click(ID_START);
    ASSERT_TRUE(WaitUntil([this] { return program_->IsBusy(); }, 10));
  }

  // In the middle of a control; the message goes to `receiver`.
  void ClickOn(int id, HWND receiver) const {
    RECT place{};
    GetWindowRect(program_->Control(id), &place);
    POINT at{(place.left + place.right) / 2, (place.top + place.bottom) / 2};
    ScreenToClient(receiver, &at);
    PostMessageW(receiver, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
    PostMessageW(receiver, WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
  }
};

// The title names the file when a timer has come, and so Start is over.
TEST_F(QueuedInput, IsThrownAway) {
  StartAndComeInBetween();
  ClickOn(ID_RECORD, program_->Control(ID_RECORD));
  PostMessageW(program_->Control(ID_TIMESTAMP), WM_KEYDOWN, VK_SPACE, 0);
  PostMessageW(program_->Control(ID_TIMESTAMP), WM_KEYUP, VK_SPACE, 0);
  ASSERT_TRUE(WaitUntil([this] { return program_->Title() != kTitle; }, kStart_s)) << "it records";
  ClickOn(ID_RECORD, program_->Control(ID_RECORD));
  EXPECT_TRUE(WaitUntil([this] { return !program_->IsTicked(ID_RECORD); }, 10)) << "heard from now on";
  EXPECT_FALSE(program_->IsTicked(ID_TIMESTAMP));
}

// While "Stop" is disabled the system gives its clicks to the window behind it.
TEST_F(QueuedInput, StopAndClosingAreCarriedOut) {
  StartAndComeInBetween();
  ClickOn(ID_STOP, program_->Window());
  ASSERT_TRUE(WaitUntil([this] { return !folder_.Files().empty(); }, kStart_s)) << "Start has gone on";
  EXPECT_TRUE(WaitUntil([this] { return program_->Status(0) == L"Device: Disconnected"; }, 20));
  StartAndComeInBetween();
  PostMessageW(program_->Window(), WM_NCLBUTTONDOWN, HTCLOSE, 0);
  EXPECT_TRUE(WaitUntil([this] { return IsWindow(program_->Window()) == FALSE; }, kStart_s));
  EXPECT_EQ(program_->Exit(), 0);
}

// The instruments of this test fall silent for good while they stream.
class LostLink : public Run {};

TEST_F(LostLink, SilentDeviceEndsTheRun) {
  Start();
  program_->Click(ID_DETAIL);
  const HWND settings = program_->FindDialog(10);
  ASSERT_NE(settings, nullptr);
  const HWND above = program_->FindDialog(120, settings);
  EXPECT_EQ(GetWindow(above, GW_OWNER), settings) << "the box belongs to what the operator looks at";
  EXPECT_FALSE(IsWindowEnabled(settings));
  const MessageBoxContent box = program_->AnswerBox(10, settings);
  EXPECT_EQ(box, (MessageBoxContent{L"Error", L"Connection lost!"}));
  EXPECT_TRUE(WaitUntil([&] { return IsWindow(settings) == FALSE; }, 10)) << "nothing is left to set";
  EXPECT_TRUE(WaitUntil([this] { return program_->IsEnabled(ID_START); }, 20));
  EXPECT_EQ(program_->Status(0), L"Device: Disconnected");
  EXPECT_EQ(program_->Exit(), 0);
  ReadRecording();
  EXPECT_EQ(recording_.fault, "");
  EXPECT_FALSE(recording_.blocks.empty());
}

}  // namespace
}  // namespace tw
