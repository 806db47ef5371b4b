// A mutex and a condition in one, on the real clock or, for threads that belong to it, on the virtual one.
// Whatever can be waited for on the host side is built on it.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace tw {

// The clock that the calling thread goes by: virtual, or the system's monotonic one.
[[nodiscard]] int64_t HostNow_us();

// The deadline of a wait that begins now; kNever for kWaitForever.
[[nodiscard]] int64_t DeadlineAfter_us(uint32_t timeout_ms);

class Monitor {
 public:
  void lock() { mutex_.lock(); }
  void unlock() { mutex_.unlock(); }

  // With the monitor locked: gives it up until somebody wakes it or the deadline has come, or earlier for no
  // reason at all; so callers look again and look at the clock.
  void WaitUntil(int64_t deadline_us, const char* what);

  // With the monitor locked.
  void WakeAll();

 private:
  std::mutex mutex_;
  std::condition_variable condition_;
};

}  // namespace tw
