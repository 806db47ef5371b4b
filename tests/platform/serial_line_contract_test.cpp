#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/serial_line.h"
#include "platform/system_error.h"
#include "tests/platform/echo_line.h"

namespace tw {
namespace {

constexpr char kMode[] = "baud=115200 parity=N data=8 stop=1";
constexpr uint32_t kConstant_ms = 100;
constexpr uint32_t kLong_ms = 20'000;  // "soon", on a busy machine

class SerialLineContract : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_FALSE(echo_.Name().empty()) << "run it with a line that sends back what it gets";
    line_ = Open(kMode);
  }
  void TearDown() override { CloseSerialLine(line_); }

  Handle Open(const char* mode) {
    const Handle line = OpenSerialLine(echo_.Name().c_str(), mode, kConstant_ms);
    EXPECT_NE(line, Handle::invalid) << LastSystemError();
    return line;
  }

  // Reads as readers of streams do: what waits, or one byte.
  std::string ReadBack(size_t wanted) {
    std::string text;
    const uint32_t start = MillisecondClock();
    while (text.size() < wanted && MillisecondClock() - start < kLong_ms) {
      char bytes[512];
      const uint32_t waiting = BytesWaiting(line_);
      const auto room = static_cast<uint32_t>(std::min(sizeof(bytes), wanted - text.size()));
      uint32_t got = 0;
      if (!ReadSerialLine(line_, bytes, std::clamp(waiting, 1u, room), got)) break;
      text.append(bytes, got);
    }
    return text;
  }

  // Waits until the line has something to read.
  bool AwaitWaiting(uint32_t wanted) {
    const uint32_t start = MillisecondClock();
    while (BytesWaiting(line_) < wanted && MillisecondClock() - start < kLong_ms) SleepMilliseconds(5);
    return BytesWaiting(line_) >= wanted;
  }

  EchoLine echo_;
  Handle line_ = Handle::invalid;
};

TEST_F(SerialLineContract, AnIdleReadEndsAfterItsTimeWithNothing) {
  char byte = 'x';
  uint32_t got = 7;
  const uint32_t start = MillisecondClock();
  EXPECT_TRUE(ReadSerialLine(line_, &byte, 1, got));
  EXPECT_EQ(got, 0u);
  EXPECT_EQ(byte, 'x');
  EXPECT_GE(MillisecondClock() - start, kConstant_ms - 10);
  EXPECT_EQ(BytesWaiting(line_), 0u);
  EXPECT_TRUE(IsLineThere(line_)) << "idle, not gone";
}

TEST_F(SerialLineContract, EveryByteValueComesThroughUnchanged) {
  std::string sent;
  for (int i = 0; i < 256; ++i) sent.push_back(static_cast<char>(i));
  sent += sent;
  ASSERT_TRUE(WriteSerialLine(line_, sent.data(), static_cast<uint32_t>(sent.size())));
  EXPECT_EQ(ReadBack(sent.size()), sent);
}

TEST_F(SerialLineContract, OneByteReadsTakeNoMoreThanOneByte) {
  ASSERT_TRUE(WriteSerialLine(line_, "abc", 3));
  ASSERT_TRUE(AwaitWaiting(3));
  char byte = 0;
  uint32_t got = 0;
  for (const char expected : {'a', 'b', 'c'}) {
    ASSERT_TRUE(ReadSerialLine(line_, &byte, 1, got));
    EXPECT_EQ(got, 1u);
    EXPECT_EQ(byte, expected);
  }
  EXPECT_EQ(BytesWaiting(line_), 0u);
}

TEST_F(SerialLineContract, OpeningThrowsAwayWhatWaited) {
  ASSERT_TRUE(WriteSerialLine(line_, "stale", 5));
  ASSERT_TRUE(AwaitWaiting(5));
  CloseSerialLine(line_);
  line_ = Open("baud=3000000 parity=N data=8 stop=1 octs=on rts=on");
  EXPECT_EQ(BytesWaiting(line_), 0u);
  ASSERT_TRUE(WriteSerialLine(line_, "fresh", 5));
  EXPECT_EQ(ReadBack(5), "fresh");
}

TEST_F(SerialLineContract, AModeStringThatMakesNoSenseStillOpens) {
  CloseSerialLine(line_);
  line_ = Open("baud=999999999999 rubbish");
  EXPECT_NE(line_, Handle::invalid);
}

// The far end stops sending back when nobody reads it, and then reads no more itself.
TEST_F(SerialLineContract, AWriteWithATimeEndsAndTellsWhatWasTaken) {
  const std::string sent(256 * 1'024, 'x');
  uint32_t written = 0;
  ASSERT_TRUE(WriteSerialLineWithin(line_, "ab", 2, kLong_ms, written));
  EXPECT_EQ(written, 2u);
  ASSERT_TRUE(WriteSerialLineWithin(line_, sent.data(), static_cast<uint32_t>(sent.size()), 100, written))
      << LastSystemError();
  EXPECT_LT(written, sent.size());
  EXPECT_EQ(ReadBack(2 + written), "ab" + sent.substr(0, written));
}

TEST_F(SerialLineContract, TheListNamesTheLineIfItIsADevice) {
  std::vector<std::wstring> names;
  ASSERT_TRUE(ListSerialLines(
      [](void* context, const wchar_t* name) {
        static_cast<std::vector<std::wstring>*>(context)->emplace_back(name);
      },
      &names));
  EXPECT_EQ(std::count(names.begin(), names.end(), echo_.ListedName()), echo_.IsListed() ? 1 : 0);
}

TEST(SerialLineContractHandles, NoLineIsNoHandle) {
  EXPECT_EQ(OpenSerialLine(L"\\\\.\\COM250", kMode, kConstant_ms), Handle::invalid);
  EXPECT_NE(LastSystemError(), 0u);
  for (const Handle none : {Handle::null, Handle::invalid}) {
    char byte = 'x';
    uint32_t got = 7;
    uint32_t overruns = 0;
    EXPECT_FALSE(ReadSerialLine(none, &byte, 1, got));
    EXPECT_EQ(got, 0u);
    EXPECT_FALSE(WriteSerialLine(none, &byte, 1));
    EXPECT_FALSE(WriteSerialLineWithin(none, &byte, 1, 1, got));
    EXPECT_FALSE(IsLineThere(none));
    EXPECT_EQ(BytesWaiting(none, &overruns), 0u);
    EXPECT_EQ(overruns, 0u);
    CloseSerialLine(none);
  }
}

}  // namespace
}  // namespace tw
