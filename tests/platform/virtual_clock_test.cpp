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

TEST(VirtualClock, NobodyRunsWhileTheMachineIsSuspended) {
  Diary diary;
  {
    const VirtualClock clock(kStart_ms);
    CloseThread(Start<[](Diary& inside) {
      for (int i = 0; i < 3; ++i) {
        SleepMilliseconds(30);
        inside.Note("a");
      }
    }>(diary));
    SleepMilliseconds(40);
    SuspendMachine(1'000'000);
    diary.Note("main");
    EXPECT_EQ(UnixMilliseconds(), kStart_ms + 1'040);
  }
  EXPECT_EQ(diary.lines, (std::vector<std::string>{"a30", "main1040", "a1040", "a1070"}));
}

}  // namespace
}  // namespace tw
