#include <gtest/gtest.h>

#include "platform/clock.h"
#include "platform/sync.h"
#include "platform/thread.h"

namespace tw {
namespace {

constexpr uint32_t kLong_ms = 20'000;  // "soon", on a busy machine

struct Exchange {
  Event ask;
  Event answer;
  Lock lock;
  int count;
};

// Counts what it is asked for.
void Answer(void* argument) {
  auto& shared = *static_cast<Exchange*>(argument);
  if (!WaitForEvent(shared.ask, kLong_ms)) return;
  ++shared.count;
  Signal(shared.answer);
}

class ThreadContract : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(MakeEvent(shared_.ask, ResetMode::automatic));
    ASSERT_TRUE(MakeEvent(shared_.answer, ResetMode::manual));
    MakeLock(shared_.lock);
  }
  void TearDown() override {
    DestroyEvent(shared_.ask);
    DestroyEvent(shared_.answer);
    DestroyLock(shared_.lock);
  }
  Exchange shared_{};
};

TEST_F(ThreadContract, AnAutomaticEventIsConsumedByThePollThatSeesIt) {
  EXPECT_FALSE(WaitForEvent(shared_.ask, 0));
  Signal(shared_.ask);
  Signal(shared_.ask);
  EXPECT_TRUE(WaitForEvent(shared_.ask, 0));
  EXPECT_FALSE(WaitForEvent(shared_.ask, 0));
  Signal(shared_.ask);
  Reset(shared_.ask);
  EXPECT_FALSE(WaitForEvent(shared_.ask, 1));
}

TEST_F(ThreadContract, AManualEventStaysUntilItIsReset) {
  Signal(shared_.answer);
  EXPECT_TRUE(WaitForEvent(shared_.answer, kWaitForever));
  EXPECT_TRUE(WaitForEvent(shared_.answer, 0));
  Reset(shared_.answer);
  EXPECT_FALSE(WaitForEvent(shared_.answer, 0));
}

TEST_F(ThreadContract, AnEventThatWasNeverMadeIsNeverSignalled) {
  Event none{};
  Signal(none);
  EXPECT_FALSE(WaitForEvent(none, 0));
  EXPECT_FALSE(WaitForEvent(none, 10));
  Reset(none);
  DestroyEvent(none);
}

TEST_F(ThreadContract, AWaitSeesTheEventOfAnotherThread) {
  const Handle thread = StartThread(Answer, &shared_);
  ASSERT_NE(thread, Handle::null);
  EXPECT_EQ(WaitForThread(thread, 0), ThreadWait::timedOut);
  EXPECT_EQ(WaitForThread(thread, 20), ThreadWait::timedOut);
  Signal(shared_.ask);
  EXPECT_TRUE(WaitForEvent(shared_.answer, kLong_ms));
  EXPECT_EQ(shared_.count, 1);
  EXPECT_EQ(WaitForThread(thread, kLong_ms), ThreadWait::ended);
  EXPECT_EQ(WaitForThread(thread, 0), ThreadWait::ended);
  CloseThread(thread);
}

TEST_F(ThreadContract, AThreadGoesOnAfterItsHandleWasClosed) {
  const Handle thread = StartThread(Answer, &shared_);
  CloseThread(thread);
  EXPECT_EQ(WaitForThread(thread, 0), ThreadWait::failed);
  Signal(shared_.ask);
  EXPECT_TRUE(WaitForEvent(shared_.answer, kLong_ms));
}

TEST_F(ThreadContract, NoThreadIsNoHandle) {
  EXPECT_EQ(WaitForThread(Handle::null, 0), ThreadWait::failed);
  EXPECT_EQ(WaitForThread(Handle::invalid, 0), ThreadWait::failed);
  CloseThread(Handle::null);
}

TEST_F(ThreadContract, ALockLetsOneThreadInAtATime) {
  constexpr int kThreads = 4;
  constexpr int kRounds = 5'000;
  Handle threads[kThreads];
  for (Handle& thread : threads) {
    thread = StartThread(
        [](void* argument) {
          auto& shared = *static_cast<Exchange*>(argument);
          for (int i = 0; i < kRounds; ++i) {
            const Locked held(shared.lock);
            ++shared.count;
          }
        },
        &shared_);
  }
  for (const Handle thread : threads) {
    EXPECT_EQ(WaitForThread(thread, kWaitForever), ThreadWait::ended);
    CloseThread(thread);
  }
  EXPECT_EQ(shared_.count, kThreads * kRounds);
}

}  // namespace
}  // namespace tw
