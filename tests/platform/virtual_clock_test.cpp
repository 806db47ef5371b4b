#include "platform/host/virtual_clock.h"

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
  EXPECT_EQ(utc.year, 2023);
  EXPECT_EQ(utc.day, 14);
  EXPECT_EQ(utc.hour, 22);
  EXPECT_EQ(utc.millisecond, 123);
  const CalendarTime local = LocalNow();
  EXPECT_EQ(local.day, 15);
  EXPECT_EQ(local.hour, 0);
  EXPECT_EQ(local.minute, 13);
}

TEST(VirtualClock, TheMillisecondClockWrapsWhereTheTestWantsIt) {
  const VirtualClock clock(kStart_ms, 0xFFFFFFFF);
  const uint32_t before = MillisecondClock();
  EXPECT_EQ(before, 0xFFFFFFFFu);
  SleepMilliseconds(10);
  EXPECT_EQ(MillisecondClock(), 9u);
  EXPECT_EQ(MillisecondClock() - before, 10u);
}

TEST(VirtualClock, PollsCostAMicrosecondSoThatASpinningLoopEnds) {
  const VirtualClock clock(kStart_ms);
  Event event{};
  ASSERT_TRUE(MakeEvent(event, ResetMode::manual));
  EXPECT_FALSE(WaitForEvent(event, 0));
  (void)MillisecondClock();
  SleepMilliseconds(0);
  EXPECT_EQ(VirtualNow_us(), 3);
  const uint32_t start = MillisecondClock();
  while (MillisecondClock() - start < 5) {
  }
  EXPECT_EQ(VirtualNow_us(), 5000);
  DestroyEvent(event);
}

TEST(VirtualClock, AWaitThatNobodyAnswersLastsExactlyItsTime) {
  const VirtualClock clock(kStart_ms);
  Event event{};
  ASSERT_TRUE(MakeEvent(event, ResetMode::automatic));
  EXPECT_FALSE(WaitForEvent(event, 30'000));
  EXPECT_EQ(VirtualNow_us(), 30'000'001);  // asking cost one
  DestroyEvent(event);
}

// Threads write down when they ran.
struct Diary {
  Lock lock;
  Event go;
  std::vector<std::string> lines;

  void Note(const char* who) { lines.push_back(who + std::to_string(VirtualNow_us() / 1000)); }
};

void Every30(void* argument) {
  auto& diary = *static_cast<Diary*>(argument);
  for (int i = 0; i < 3; ++i) {
    SleepMilliseconds(30);
    diary.Note("a");
  }
}

void Every20(void* argument) {
  auto& diary = *static_cast<Diary*>(argument);
  for (int i = 0; i < 4; ++i) {
    SleepMilliseconds(20);
    diary.Note("b");
  }
}

TEST(VirtualClock, TheEarliestDeadlineRunsNextAndTiesGoByThreadNumber) {
  Diary diary{};
  {
    const VirtualClock clock(kStart_ms);
    CloseThread(StartThread(Every30, &diary));
    CloseThread(StartThread(Every20, &diary));
    SleepMilliseconds(60);
    diary.Note("main");
  }  // lets the two end
  const std::vector<std::string> expected = {"b20", "a30", "b40", "main60", "a60", "b60", "b80", "a90"};
  EXPECT_EQ(diary.lines, expected);
}

TEST(VirtualClock, AHeldLockIsHandedToThoseWhoWaitInTheirOrder) {
  Diary diary{};
  MakeLock(diary.lock);
  {
    const VirtualClock clock(kStart_ms);
    const auto body = [](void* argument) {
      auto& inside = *static_cast<Diary*>(argument);
      for (int i = 0; i < 2; ++i) {
        const Locked held(inside.lock);
        inside.Note("in");
        SleepMilliseconds(10);
      }
    };
    const Handle first = StartThread(body, &diary);
    const Handle second = StartThread(body, &diary);
    EXPECT_EQ(WaitForThread(first, kWaitForever), ThreadWait::ended);
    EXPECT_EQ(VirtualNow_us() / 1000, 30);  // the two took turns
    EXPECT_EQ(WaitForThread(second, 5), ThreadWait::timedOut);
    EXPECT_EQ(WaitForThread(second, 500), ThreadWait::ended);
    EXPECT_EQ(VirtualNow_us() / 1000, 40);
    CloseThread(first);
    CloseThread(second);
  }
  const std::vector<std::string> expected = {"in0", "in10", "in20", "in30"};
  EXPECT_EQ(diary.lines, expected);
  DestroyLock(diary.lock);
}

TEST(VirtualClock, ASpinningThreadLetsTheOthersRun) {
  Diary diary{};
  ASSERT_TRUE(MakeEvent(diary.go, ResetMode::automatic));
  const VirtualClock clock(kStart_ms);
  const Handle thread = StartThread(
      [](void* argument) {
        auto& inside = *static_cast<Diary*>(argument);
        SleepMilliseconds(7);
        Signal(inside.go);
      },
      &diary);
  int polls = 0;
  while (!WaitForEvent(diary.go, 0)) ++polls;
  // The other thread starts at the first poll, 1 us, and sleeps until 7001; at that moment this thread, whose
  // number is lower, goes first once more.
  EXPECT_EQ(polls, 7001);
  EXPECT_EQ(WaitForThread(thread, 0), ThreadWait::ended);  // it had nothing else to do
  CloseThread(thread);
  DestroyEvent(diary.go);
}

std::vector<std::string> RunOfManyThreads() {
  Diary diary{};
  MakeLock(diary.lock);
  {
    const VirtualClock clock(kStart_ms);
    for (int i = 0; i < 6; ++i) {
      CloseThread(StartThread(
          [](void* argument) {
            auto& inside = *static_cast<Diary*>(argument);
            for (int round = 0; round < 50; ++round) {
              const Locked held(inside.lock);
              inside.lines.push_back(std::to_string(VirtualNow_us()) + "/" +
                                     std::to_string(MillisecondClock()));
              SleepMilliseconds(static_cast<uint32_t>(inside.lines.size() % 4));
            }
          },
          &diary));
    }
  }
  DestroyLock(diary.lock);
  return diary.lines;
}

TEST(VirtualClock, TwoRunsAreTheSame) {
  const std::vector<std::string> first = RunOfManyThreads();
  EXPECT_EQ(first.size(), 300u);
  EXPECT_EQ(RunOfManyThreads(), first);
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

TEST(VirtualClockDeathTest, ALockEnteredTwiceIsADeadlock) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const auto twice = [] {
    Lock lock{};
    MakeLock(lock);
    StartVirtualClock(kStart_ms);
    Enter(lock);
    Enter(lock);
  };
  EXPECT_DEATH(twice(), "thread 0 waits for a lock");
}

}  // namespace
}  // namespace tw
