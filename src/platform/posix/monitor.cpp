#include "platform/posix/monitor.h"

#include "platform/clock.h"
#include "platform/posix/system_clock.h"

namespace tw {

int64_t Now_us() {
  return posix::SteadyNow_us();
}

int64_t DeadlineAfter_us(uint32_t timeout_ms) {
  return timeout_ms == kWaitForever ? kNever : Now_us() + int64_t{timeout_ms} * 1000;
}

int64_t PolledDeadline_us(uint32_t timeout_ms) {
  return DeadlineAfter_us(timeout_ms);
}

void Monitor::WaitUntil(int64_t deadline_us, const char*) {
  posix::WaitUntil(mutex_, condition_, deadline_us);
}

void Monitor::WakeAll() {
  condition_.notify_all();
}

}  // namespace tw
