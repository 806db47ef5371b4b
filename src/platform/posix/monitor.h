// A mutex and a condition in one; whatever can be waited for is built on it, and on the clock below. Here
// they go by the system's clock; the test gear, which is linked in the place of this side, has its own.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace tw {

inline constexpr int64_t kNever = INT64_MAX;

// The clock of the calling thread, which goes on evenly from some moment.
[[nodiscard]] int64_t Now_us();

// The deadline of a wait that begins now; kNever for kWaitForever.
[[nodiscard]] int64_t DeadlineAfter_us(uint32_t timeout_ms);

// The same for a call that may return at once and that a loop may make without end: a clock that stands still
// between waits is moved on. Hold no lock meanwhile.
[[nodiscard]] int64_t PolledDeadline_us(uint32_t timeout_ms);

class Monitor {
 public:
  void lock() { mutex_.lock(); }
  void unlock() { mutex_.unlock(); }

  // With the monitor locked: gives it up until somebody wakes it or the deadline has come, or earlier for no
  // reason at all; so callers look again and look at the clock. `what` says in a word or two what for.
  void WaitUntil(int64_t deadline_us, const char* what);

  // With the monitor locked.
  void WakeAll();

 private:
  std::mutex mutex_;
  std::condition_variable condition_;
};

}  // namespace tw
