#include "platform/host/serial_peer.h"

#include <gtest/gtest.h>

#include "platform/clock.h"
#include "platform/host/faults.h"
#include "platform/host/virtual_clock.h"
#include "platform/serial_line.h"
#include "platform/sync.h"
#include "platform/thread.h"
#include "tests/platform/test_peers.h"

namespace tw {
namespace {

constexpr wchar_t kName[] = L"\\\\.\\COM7";
constexpr char kMode[] = "baud=115200 parity=N data=8 stop=1";

class SerialPeerLine : public testing::Test {
 protected:
  void TearDown() override {
    DetachSerialLines();
    ClearFaults();
  }

  static std::string Read(Handle line, uint32_t size) {
    char bytes[256];
    uint32_t got = 0;
    if (!ReadSerialLine(line, bytes, size, got)) return "failed";
    return {bytes, got};
  }
};

TEST_F(SerialPeerLine, AReadWaitsForTheFirstByteOnlyAndTakesNoMoreThanWaits) {
  const VirtualClock clock(0);
  TickingPeer peer(30'000);
  AttachPeer(kName, &peer);
  const Handle line = OpenSerialLine(kName, kMode, 100);
  EXPECT_EQ(peer.openedWith, kMode);
  EXPECT_EQ(Read(line, 10), "a");
  EXPECT_EQ(VirtualNow_us(), 30'000);
  SleepMilliseconds(100);  // to 130
  EXPECT_EQ(BytesWaiting(line), 3u);
  const int64_t before_us = VirtualNow_us();
  EXPECT_EQ(Read(line, 2), "bc");
  EXPECT_EQ(Read(line, 10), "d");
  EXPECT_EQ(VirtualNow_us(), before_us);
  CloseSerialLine(line);
  EXPECT_EQ(peer.closed, 1);
}

TEST_F(SerialPeerLine, AnIdleReadLastsTheConstant) {
  const VirtualClock clock(0);
  EchoPeer peer(0);
  AttachPeer(kName, &peer);
  const Handle line = OpenSerialLine(kName, kMode, 200);
  EXPECT_EQ(Read(line, 1), "");
  EXPECT_EQ(VirtualNow_us(), 200'000);
  EXPECT_TRUE(WriteSerialLine(line, "ok", 2));
  EXPECT_EQ(Read(line, 9), "ok");
  EXPECT_EQ(VirtualNow_us(), 200'000);
  CloseSerialLine(line);
}

TEST_F(SerialPeerLine, OpeningThrowsAwayWhatTheDeviceHadSent) {
  const VirtualClock clock(0);
  TickingPeer peer(1'000);
  AttachPeer(kName, &peer);
  SleepMilliseconds(3);
  const Handle line = OpenSerialLine(kName, kMode, 100);
  EXPECT_EQ(BytesWaiting(line), 0u);
  EXPECT_EQ(Read(line, 10), "d");
  CloseSerialLine(line);
}

TEST_F(SerialPeerLine, OpenFailsWithoutDeviceWithOneThatRefusesAndWhileItIsOpen) {
  const VirtualClock clock(0);
  EXPECT_EQ(OpenSerialLine(kName, kMode, 100), Handle::invalid);
  TickingPeer peer(1'000);
  AttachPeer(kName, &peer);
  peer.refuses = true;
  EXPECT_EQ(OpenSerialLine(kName, kMode, 100), Handle::invalid);
  peer.refuses = false;
  const Handle line = OpenSerialLine(kName, kMode, 100);
  ASSERT_NE(line, Handle::invalid);
  EXPECT_EQ(OpenSerialLine(kName, kMode, 100), Handle::invalid);
  CloseSerialLine(line);
  const Handle again = OpenSerialLine(kName, kMode, 100);
  EXPECT_NE(again, Handle::invalid);
  EXPECT_EQ(Read(line, 1), "failed");  // the old handle stays dead
  CloseSerialLine(line);
  CloseSerialLine(again);
}

TEST_F(SerialPeerLine, ADeviceThatHangsUpMakesEveryCallFail) {
  const VirtualClock clock(0);
  TickingPeer peer(10'000);
  peer.hangsUpAt_us = 15'000;
  AttachPeer(kName, &peer);
  const Handle line = OpenSerialLine(kName, kMode, 100);
  EXPECT_EQ(Read(line, 1), "a");
  EXPECT_TRUE(WriteSerialLine(line, "x", 1));
  EXPECT_EQ(Read(line, 1), "failed");
  EXPECT_FALSE(WriteSerialLine(line, "x", 1));
  CloseSerialLine(line);
}

TEST_F(SerialPeerLine, ADeviceThatPromisesBytesAndHasNoneDoesNotStopTheTime) {
  class Liar : public EchoPeer {
   public:
    Liar() : EchoPeer(0) {}
    int64_t NextSend_us(int64_t) override { return 0; }
  };
  const VirtualClock clock(0);
  Liar peer;
  AttachPeer(kName, &peer);
  const Handle line = OpenSerialLine(kName, kMode, 5);
  EXPECT_EQ(Read(line, 1), "");
  EXPECT_EQ(VirtualNow_us(), 5'000);
  CloseSerialLine(line);
}

TEST_F(SerialPeerLine, TryingAgainForEverOnADeadLineTakesTime) {
  const VirtualClock clock(0);
  const uint32_t start = MillisecondClock();
  while (MillisecondClock() - start < 60) EXPECT_EQ(Read(Handle::null, 1), "failed");
  EXPECT_EQ(VirtualNow_us() / 1000, 60);
}

// A reader that counts until its line fails.
struct Reader {
  Handle line;
  Event ended;
  uint64_t bytes;
  int64_t endedAt_us;
};

void ReadUntilFailure(void* argument) {
  auto& reader = *static_cast<Reader*>(argument);
  uint8_t bytes[64];
  uint32_t got = 0;
  while (ReadSerialLine(reader.line, bytes, sizeof(bytes), got)) reader.bytes += got;
  reader.endedAt_us = VirtualNow_us();
  Signal(reader.ended);
}

TEST_F(SerialPeerLine, ClosingOrHangingUpWakesTheReader) {
  for (const bool hangsUp : {false, true}) {
    const VirtualClock clock(0);
    EchoPeer peer(0);
    AttachPeer(kName, &peer);
    Reader reader{OpenSerialLine(kName, kMode, 60'000), {}, 0, 0};
    ASSERT_TRUE(MakeEvent(reader.ended, ResetMode::manual));
    CloseThread(StartThread(ReadUntilFailure, &reader));
    SleepMilliseconds(1234);
    if (hangsUp) {
      HangUpLine(kName);
    } else {
      CloseSerialLine(reader.line);
    }
    EXPECT_TRUE(WaitForEvent(reader.ended, 1));
    EXPECT_EQ(reader.endedAt_us / 1000, 1234);
    CloseSerialLine(reader.line);
    RestoreLine(kName);
    DestroyEvent(reader.ended);
  }
}

TEST_F(SerialPeerLine, OnTheRealClockItWorksTheSame) {
  EchoPeer peer(2'000);
  AttachPeer(kName, &peer);
  Reader reader{OpenSerialLine(kName, kMode, 60'000), {}, 0, 0};
  ASSERT_TRUE(MakeEvent(reader.ended, ResetMode::manual));
  const Handle thread = StartThread(ReadUntilFailure, &reader);
  for (int i = 0; i < 50; ++i) {
    EXPECT_TRUE(WriteSerialLine(reader.line, "0123456789", 10));
    SleepMilliseconds(1);
  }
  SleepMilliseconds(50);
  CloseSerialLine(reader.line);
  EXPECT_EQ(WaitForThread(thread, kWaitForever), ThreadWait::ended);
  EXPECT_GT(reader.bytes, 0u);
  EXPECT_EQ(reader.bytes % 10, 0u);
  CloseThread(thread);
  DestroyEvent(reader.ended);
}

}  // namespace
}  // namespace tw
