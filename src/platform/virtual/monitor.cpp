#include "platform/posix/monitor.h"

#include "platform/clock.h"
#include "platform/posix/system_clock.h"
#include "platform/virtual/baton.h"

namespace tw {

int64_t Now_us() {
  return baton::Held() ? baton::Now_us() : posix::SteadyNow_us();
}

int64_t DeadlineAfter_us(uint32_t timeout_ms) {
  return timeout_ms == kWaitForever ? kNever : Now_us() + int64_t{timeout_ms} * 1000;
}

int64_t PolledDeadline_us(uint32_t timeout_ms) {
  baton::Poll();
  return DeadlineAfter_us(timeout_ms);
}

void Monitor::WaitUntil(int64_t deadline_us, const char* what) {
  if (!baton::Held()) return posix::WaitUntil(mutex_, condition_, deadline_us);
  mutex_.unlock();
  baton::Wait(this, deadline_us, what);
  mutex_.lock();
}

void Monitor::WakeAll() {
  if (baton::Held()) baton::WakeAll(this);
  condition_.notify_all();
}

}  // namespace tw
