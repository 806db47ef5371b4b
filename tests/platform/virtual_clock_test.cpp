#include "platform/virtual/virtual_clock.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/clock.h"
#include "platform/sync.h"
#include "platform/thread.h"

namespace tw {
namespace {

constexpr int64_t kStart_ms = 1'700'000'000'123;  // 2023-11-14 22:13:20.123

TEST(VirtualClock, ASleepMovesTheTimeAndNothingElse) {
  const VirtualClock clock(kStart_ms);
  EXPECT_TRUE(IsClockVirtual());
  EXPECT_EQ(VirtualNow_us(), 0);
  SleepMilliseconds(3 * 24 * 3600 * 1000u);
  EXPECT_EQ(VirtualNow_us(), int64_t{259'200'000'000});
  EXPECT_EQ(UnixMilliseconds(), kStart_ms + 259'200'000);
}

TEST(VirtualClock, TheCalendarGoesByIt) {
  const VirtualClock clock(kStart_ms);
  SetVirtualUtcOffset(2 * 3600);
  const CalendarTime utc = UtcNow();
  EXPECT_EQ(UnixSecondsFromCalendar(utc), 1'700'000'000);
  EXPECT_EQ(utc.millisecond, 123);
  EXPECT_EQ(UnixSecondsFromCalendar(LocalNow()), 1'700'007'200);
}

TEST(VirtualClock, TheMillisecondClockWrapsWhereTheTestWantsIt) {
  const VirtualClock clock(kStart_ms, 0xFFFFFFFF);
  EXPECT_EQ(MillisecondClock(), 0xFFFFFFFFu);
  SleepMilliseconds(10);
  EXPECT_EQ(MillisecondClock(), 9u);
}

// What threads of a test share; they write down when they ran.
struct Diary {
  Diary() {
    MakeLock(lock);
    EXPECT_TRUE(MakeEvent(go, ResetMode::automatic));
  }
  ~Diary() {
    DestroyLock(lock);
    DestroyEvent(go);
  }
  void Note(const char* who) { lines.push_back(who + std::to_string(VirtualNow_us() / 1000)); }

  Lock lock{};
  Event go{};
  std::vector<std::string> lines;
};

template <auto kBody>
Handle Start(Diary& diary) {
  return StartThread([](void* argument) { kBody(*static_cast<Diary*>(argument)); }, &diary);
}

TEST(VirtualClock, PollsCostAMicrosecondSoThatASpinningLoopEnds) {
  Diary diary;
  const VirtualClock clock(kStart_ms);
  EXPECT_FALSE(WaitForEvent(diary.go, 0));
  (void)MillisecondClock();
  SleepMilliseconds(0);
  EXPECT_EQ(VirtualNow_us(), 3);
  const uint32_t start = MillisecondClock();
  while (MillisecondClock() - start < 5) {
  }
  EXPECT_EQ(VirtualNow_us(), 5000);
}

TEST(VirtualClock, AWaitThatNobodyAnswersLastsExactlyItsTime) {
  Diary diary;
  const VirtualClock clock(kStart_ms);
  EXPECT_FALSE(WaitForEvent(diary.go, 30'000));
  EXPECT_EQ(VirtualNow_us(), 30'000'001);  // asking cost one
}

TEST(VirtualClock, TheEarliestDeadlineRunsNextAndTiesGoByThreadNumber) {
  Diary diary;
  {
    const VirtualClock clock(kStart_ms);
    CloseThread(Start<[](Diary& inside) {
      for (int i = 0; i < 3; ++i) {
        SleepMilliseconds(30);
        inside.Note("a");
      }
    }>(diary));
    CloseThread(Start<[](Diary& inside) {
      for (int i = 0; i < 4; ++i) {
        SleepMilliseconds(20);
        inside.Note("b");
      }
    }>(diary));
    SleepMilliseconds(60);
    diary.Note("main");
  }  // lets the two end
  EXPECT_EQ(diary.lines,
            (std::vector<std::string>{"b20", "a30", "b40", "main60", "a60", "b60", "b80", "a90"}));
}

TEST(VirtualClock, AHeldLockIsHandedToThoseWhoWaitInTheirOrder) {
  Diary diary;
  {
    const VirtualClock clock(kStart_ms);
    constexpr auto kBody = [](Diary& inside) {
      for (int i = 0; i < 2; ++i) {
        const Locked held(inside.lock);
        inside.Note("in");
        SleepMilliseconds(10);
      }
    };
    const Handle first = Start<kBody>(diary);
    const Handle second = Start<kBody>(diary);
    EXPECT_EQ(WaitForThread(first, kWaitForever), ThreadWait::ended);
    EXPECT_EQ(VirtualNow_us() / 1000, 30);  // the two took turns
    EXPECT_EQ(WaitForThread(second, 5), ThreadWait::timedOut);
    EXPECT_EQ(WaitForThread(second, 500), ThreadWait::ended);
    EXPECT_EQ(VirtualNow_us() / 1000, 40);
    CloseThread(first);
    CloseThread(second);
  }
  EXPECT_EQ(diary.lines, (std::vector<std::string>{"in0", "in10", "in20", "in30"}));
}

TEST(VirtualClock, ASpinningThreadLetsTheOthersRun) {
  Diary diary;
  const VirtualClock clock(kStart_ms);
  const Handle thread = Start<[](Diary& inside) {
    SleepMilliseconds(7);
    Signal(inside.go);
  }>(diary);
  int polls = 0;
  while (!WaitForEvent(diary.go, 0)) ++polls;
  // The other thread starts at the first poll, 1 us, and sleeps until 7001; at that moment this thread, whose
  // number is lower, goes first once more.
  EXPECT_EQ(polls, 7001);
  EXPECT_EQ(WaitForThread(thread, 0), ThreadWait::ended);  // it had nothing else to do
  CloseThread(thread);
}

TEST(VirtualClock, TwoRunsAreTheSame) {
  Diary runs[2];
  for (Diary& diary : runs) {
    const VirtualClock clock(kStart_ms);
    for (int i = 0; i < 6; ++i) {
      CloseThread(Start<[](Diary& inside) {
        for (int round = 0; round < 50; ++round) {
          const Locked held(inside.lock);
          inside.lines.push_back(std::to_string(VirtualNow_us()) + "/" + std::to_string(MillisecondClock()));
          SleepMilliseconds(static_cast<uint32_t>(inside.lines.size() % 4));
        }
      }>(diary));
    }
  }
  EXPECT_EQ(runs[0].lines.size(), 300u);
  EXPECT_EQ(runs[0].lines, runs[1].lines);
}

TEST(VirtualClockDeathTest, WhenAllWaitForEverTheProgramSaysWhoWaitsForWhat) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto deadlock = [] {
    static Event never{};
    if (!MakeEvent(never, ResetMode::manual)) return;
    StartVirtualClock(kStart_ms);
    const Handle thread = StartThread([](void*) { (void)WaitForEvent(never, kWaitForever); }, nullptr);
    (void)WaitForThread(thread, kWaitForever);
  };
  EXPECT_DEATH(
      deadlock(),
      "every thread waits without limit\n.*thread 0 waits for a thread's end.*\n.*thread 1 waits for an "
      "event");
}

}  // namespace
}  // namespace tw
