#include "platform/posix/monitor.h"

#include <chrono>

#include "platform/clock.h"
#include "platform/virtual/baton.h"
#include "platform/virtual/virtual_clock.h"

namespace tw {

using std::chrono::microseconds;
using std::chrono::steady_clock;

int64_t HostNow_us() {
  if (baton::Held()) return baton::Now_us();
  return std::chrono::duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

int64_t DeadlineAfter_us(uint32_t timeout_ms) {
  return timeout_ms == kWaitForever ? kNever : HostNow_us() + int64_t{timeout_ms} * 1000;
}

void Monitor::WaitUntil(int64_t deadline_us, const char* what) {
  if (baton::Held()) {
    mutex_.unlock();
    baton::Wait(this, deadline_us, what);
    mutex_.lock();
    return;
  }
  std::unique_lock<std::mutex> held(mutex_, std::adopt_lock);
  if (deadline_us == kNever) {
    condition_.wait(held);
  } else {
    condition_.wait_until(held, steady_clock::time_point(microseconds(deadline_us)));
  }
  held.release();
}

void Monitor::WakeAll() {
  if (baton::Held()) baton::WakeAll(this);
  condition_.notify_all();
}

}  // namespace tw
