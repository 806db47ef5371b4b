#include "platform/virtual/serial_peer.h"

#include <deque>

#include "platform/clock.h"
#include "platform/sync.h"
#include "platform/thread.h"
#include "tests/platform/virtual_line.h"

namespace tw {
namespace {

using SerialPeerLine = VirtualLine;

TEST_F(SerialPeerLine, AReadWaitsForTheFirstByteOnlyAndTakesNoMoreThanWaits) {
  device_.interval_us = 30'000;
  line_ = OpenLine();
  EXPECT_EQ(device_.openedWith, kMode);
  EXPECT_EQ(Read(10), "a");
  EXPECT_EQ(VirtualNow_us(), 30'000);
  SleepMilliseconds(100);  // to 130
  EXPECT_EQ(BytesWaiting(line_), 3u);
  const int64_t before_us = VirtualNow_us();
  EXPECT_EQ(Read(2), "bc");
  EXPECT_EQ(Read(10), "d");
  EXPECT_EQ(VirtualNow_us(), before_us);
  CloseSerialLine(line_);
  EXPECT_EQ(device_.closed, 1);
}

TEST_F(SerialPeerLine, AnIdleReadLastsTheConstantAndAWriteNoTime) {
  device_.interval_us = 60'000'000;
  line_ = OpenLine();
  EXPECT_EQ(Read(1), "");
  EXPECT_TRUE(WriteSerialLine(line_, "ok", 2));
  EXPECT_EQ(device_.received, "ok");
  EXPECT_EQ(VirtualNow_us(), 100'000);
}

TEST_F(SerialPeerLine, OpeningThrowsAwayWhatTheDeviceHadSent) {
  SleepMilliseconds(3);
  line_ = OpenLine();
  EXPECT_EQ(BytesWaiting(line_), 0u);
  EXPECT_EQ(Read(10), "d");
}

TEST_F(SerialPeerLine, OpenFailsWithoutDeviceWithOneThatRefusesAndWhileItIsOpen) {
  EXPECT_EQ(OpenLine(L"\\\\.\\COM8"), Handle::invalid);
  device_.refuses = true;
  EXPECT_EQ(OpenLine(), Handle::invalid);
  device_.refuses = false;
  const Handle first = OpenLine();
  ASSERT_NE(first, Handle::invalid);
  EXPECT_EQ(OpenLine(), Handle::invalid);
  CloseSerialLine(first);
  line_ = OpenLine();
  EXPECT_NE(line_, Handle::invalid);
  EXPECT_EQ(ReadOf(first, 1), "failed") << "the old handle stays dead";
}

TEST_F(SerialPeerLine, ADeviceThatHangsUpMakesEveryCallFail) {
  device_.hangsUpAt_us = 1'500;
  line_ = OpenLine();
  EXPECT_EQ(Read(1), "a");
  EXPECT_TRUE(WriteSerialLine(line_, "x", 1));
  EXPECT_EQ(Read(1), "failed");
  EXPECT_FALSE(WriteSerialLine(line_, "x", 1));
}

TEST_F(SerialPeerLine, ADeviceThatPromisesBytesAndHasNoneDoesNotStopTheTime) {
  struct : TickingPeer {
    int64_t NextSend_us(int64_t) override { return 0; }
    size_t Waiting(int64_t) override { return 0; }
  } liar;
  AttachPeer(kName, &liar);
  const Handle line = OpenLine();
  EXPECT_EQ(ReadOf(line, 1), "");
  EXPECT_EQ(VirtualNow_us(), 100'000);
  CloseSerialLine(line);
}

TEST_F(SerialPeerLine, TryingAgainForEverOnADeadLineTakesTime) {
  const uint32_t start = MillisecondClock();
  while (MillisecondClock() - start < 60) EXPECT_EQ(ReadOf(Handle::null, 1), "failed");
  EXPECT_EQ(VirtualNow_us() / 1000, 60);
}

// A reader that counts until its line fails.
struct Reader {
  explicit Reader(Handle opened) : line(opened) {
    thread = StartThread([](void* self) { static_cast<Reader*>(self)->ReadUntilFailure(); }, this);
  }
  ~Reader() { CloseThread(thread); }

  void ReadUntilFailure() {
    uint8_t bytes[64];
    uint32_t got = 0;
    while (ReadSerialLine(line, bytes, sizeof(bytes), got)) count += got;
    endedAt_us = VirtualNow_us();
  }

  Handle line;
  uint64_t count = 0;
  int64_t endedAt_us = 0;
  Handle thread;
};

TEST_F(SerialPeerLine, ClosingOrHangingUpWakesTheReader) {
  device_.interval_us = 60'000'000;
  for (const bool hangsUp : {false, true}) {
    const int64_t start_us = VirtualNow_us();
    line_ = OpenSerialLine(kName, kMode, 60'000);
    Reader reader(line_);
    SleepMilliseconds(1234);
    if (hangsUp) {
      HangUpLine(kName);
    } else {
      CloseSerialLine(line_);
    }
    EXPECT_EQ(WaitForThread(reader.thread, 1), ThreadWait::ended);
    EXPECT_EQ((reader.endedAt_us - start_us) / 1000, 1234) << hangsUp;
  }
}

// Sends back what it gets, 2 ms later.
class EchoPeer : public SerialPeer {
 public:
  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    for (const uint8_t byte : bytes) queue_.push_back({now_us + 2'000, byte});
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    size_t count = 0;
    for (; count < out.size() && Waiting(now_us) > 0; queue_.pop_front()) out[count++] = queue_.front().byte;
    return count;
  }
  int64_t NextSend_us(int64_t) override { return queue_.empty() ? kNever : queue_.front().due_us; }
  size_t Waiting(int64_t now_us) override {
    return static_cast<size_t>(
        std::count_if(queue_.begin(), queue_.end(), [&](const Due& due) { return due.due_us <= now_us; }));
  }

 private:
  struct Due {
    int64_t due_us;
    uint8_t byte;
  };
  std::deque<Due> queue_;
};

TEST(SerialPeerOnTheRealClock, WorksTheSame) {
  EchoPeer peer;
  AttachPeer(L"COM7", &peer);
  Reader reader(OpenSerialLine(L"COM7", "", 60'000));
  for (int i = 0; i < 50; ++i) {
    EXPECT_TRUE(WriteSerialLine(reader.line, "0123456789", 10));
    SleepMilliseconds(1);
  }
  SleepMilliseconds(50);
  CloseSerialLine(reader.line);
  EXPECT_EQ(WaitForThread(reader.thread, kWaitForever), ThreadWait::ended);
  EXPECT_GT(reader.count, 0u);
  EXPECT_EQ(reader.count % 10, 0u);
  DetachSerialLines();
}

}  // namespace
}  // namespace tw
