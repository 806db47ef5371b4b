#include <gtest/gtest.h>

#include "platform/clock.h"
#include "platform/host/faults.h"
#include "platform/host/serial_peer.h"
#include "platform/serial_line.h"
#include "platform/thread.h"
#include "tests/platform/echo_terminal.h"

namespace tw {
namespace {

constexpr wchar_t kName[] = L"\\\\.\\COM7";
constexpr char kMode[] = "baud=9600 parity=N data=8 stop=1";
constexpr uint32_t kLong_ms = 60'000;

class TerminalLineTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(terminal_.IsOpen());
    AttachTerminal(kName, terminal_.Path().c_str());
  }
  void TearDown() override {
    DetachSerialLines();
    ClearFaults();
  }
  EchoTerminal terminal_;
};

TEST_F(TerminalLineTest, AHangUpMakesReadAndWriteFail) {
  const Handle line = OpenSerialLine(kName, kMode, kLong_ms);
  ASSERT_NE(line, Handle::invalid);
  terminal_.HangUp();
  char byte = 0;
  uint32_t got = 7;
  EXPECT_FALSE(ReadSerialLine(line, &byte, 1, got));
  EXPECT_EQ(got, 0u);
  EXPECT_FALSE(WriteSerialLine(line, "x", 1));
  CloseSerialLine(line);
}

TEST_F(TerminalLineTest, ClosingByAnotherThreadMakesABlockedReadFail) {
  Handle line = OpenSerialLine(kName, kMode, kLong_ms);
  const Handle thread = StartThread(
      [](void* argument) {
        char byte = 0;
        uint32_t got = 0;
        while (ReadSerialLine(*static_cast<Handle*>(argument), &byte, 1, got)) {
        }
      },
      &line);
  SleepMilliseconds(20);
  CloseSerialLine(line);
  EXPECT_EQ(WaitForThread(thread, kLong_ms / 2), ThreadWait::ended);
  CloseThread(thread);
}

TEST_F(TerminalLineTest, ABlockedWriteEndsWhenTheTerminalHangsUp) {
  Handle line = OpenSerialLine(kName, kMode, 100);
  const Handle thread = StartThread(
      [](void* argument) {
        const char bytes[4096] = {};
        while (WriteSerialLine(*static_cast<Handle*>(argument), bytes, sizeof(bytes))) {
        }
      },
      &line);
  SleepMilliseconds(20);
  terminal_.HangUp();
  EXPECT_EQ(WaitForThread(thread, kLong_ms), ThreadWait::ended);
  CloseThread(thread);
  CloseSerialLine(line);
}

TEST_F(TerminalLineTest, FaultsApplyToTerminalsToo) {
  const Handle line = OpenSerialLine(kName, kMode, 100);
  SilenceLine(kName, 3);
  EXPECT_TRUE(WriteSerialLine(line, "abcdef", 6));
  while (BytesWaiting(line) < 3) ASSERT_TRUE(terminal_.Echo(10));
  char bytes[8] = {};
  uint32_t got = 0;
  EXPECT_TRUE(ReadSerialLine(line, bytes, sizeof(bytes), got));
  EXPECT_STREQ(bytes, "abc");
  EXPECT_EQ(BytesWaiting(line), 0u);
  EXPECT_TRUE(ReadSerialLine(line, bytes, sizeof(bytes), got));
  EXPECT_EQ(got, 0u);
  CloseSerialLine(line);
}

}  // namespace
}  // namespace tw
