#include <gtest/gtest.h>

#include "platform/clock.h"
#include "platform/serial_line.h"
#include "platform/system_error.h"
#include "platform/thread.h"
#include "platform/virtual/faults.h"
#include "platform/virtual/serial_peer.h"
#include "tests/platform/echo_terminal.h"

namespace tw {
namespace {

constexpr wchar_t kName[] = L"\\\\.\\COM7";
constexpr uint32_t kLong_ms = 60'000;

class TerminalLineTest : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(terminal_.IsOpen());
    AttachTerminal(kName, terminal_.Path().c_str());
    line_ = OpenSerialLine(kName, "baud=9600 parity=N data=8 stop=1", kLong_ms);
    ASSERT_NE(line_, Handle::invalid);
  }
  void TearDown() override {
    CloseSerialLine(line_);
    DetachSerialLines();
    ClearFaults();
  }

  // Runs `body` in a thread until it blocks, most likely; `end` makes it return.
  template <typename End>
  void ExpectEnded(ThreadBody body, End end) {
    const Handle thread = StartThread(body, &line_);
    SleepMilliseconds(20);
    end();
    EXPECT_EQ(WaitForThread(thread, kLong_ms / 2), ThreadWait::ended);
    CloseThread(thread);
  }

  EchoTerminal terminal_;
  Handle line_ = Handle::invalid;
};

// Not in the contract: Wine shares its lines.
TEST_F(TerminalLineTest, ALineIsForOneProgramAtATime) {
  EXPECT_EQ(OpenSerialLine(kName, "", kLong_ms), Handle::invalid);
  EXPECT_NE(LastSystemError(), 0u);
}

TEST_F(TerminalLineTest, AHangUpMakesReadAndWriteFail) {
  terminal_.HangUp();
  char byte = 0;
  uint32_t got = 7;
  EXPECT_FALSE(ReadSerialLine(line_, &byte, 1, got));
  EXPECT_EQ(got, 0u);
  EXPECT_FALSE(WriteSerialLine(line_, "x", 1));
}

TEST_F(TerminalLineTest, ClosingByAnotherThreadMakesABlockedReadFail) {
  ExpectEnded(
      [](void* line) {
        char byte = 0;
        uint32_t got = 0;
        while (ReadSerialLine(*static_cast<Handle*>(line), &byte, 1, got)) {
        }
      },
      [&] { CloseSerialLine(line_); });
}

TEST_F(TerminalLineTest, ABlockedWriteEndsWhenTheTerminalHangsUp) {
  ExpectEnded(
      [](void* line) {
        const char bytes[4096] = {};
        while (WriteSerialLine(*static_cast<Handle*>(line), bytes, sizeof(bytes))) {
        }
      },
      [&] { terminal_.HangUp(); });
}

}  // namespace
}  // namespace tw
