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
};

void Answer(void* argument) {
  auto& shared = *static_cast<Exchange*>(argument);
  if (!WaitForEvent(shared.ask, kLong_ms)) return;
  Signal(shared.answer);
}

class ThreadContract : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_TRUE(MakeEvent(shared_.ask, ResetMode::automatic));
    ASSERT_TRUE(MakeEvent(shared_.answer, ResetMode::manual));
  }
  void TearDown() override {
    DestroyEvent(shared_.ask);
    DestroyEvent(shared_.answer);
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

TEST_F(ThreadContract, AnEventThatWasNeverMadeIsNeverSignalled) {
  Event none{};
  Signal(none);
  EXPECT_FALSE(WaitForEvent(none, 0));
  EXPECT_FALSE(WaitForEvent(none, 10));
  Reset(none);
  DestroyEvent(none);
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

}  // namespace
}  // namespace tw
