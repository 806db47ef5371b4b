#include "platform/posix/system_clock.h"

#include <time.h>

#include <chrono>

#include "platform/clock.h"
#include "platform/posix/monitor.h"

namespace tw {
namespace posix {

using std::chrono::microseconds;
using std::chrono::steady_clock;

int64_t SteadyNow_us() {
  return std::chrono::duration_cast<microseconds>(steady_clock::now().time_since_epoch()).count();
}

int64_t UnixMilliseconds() {
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

int64_t UtcOffset_ms(int64_t unix_ms) {
  const time_t seconds = unix_ms / 1000;
  tm local{};
  return localtime_r(&seconds, &local) != nullptr ? local.tm_gmtoff * 1000 : 0;
}

CalendarTime CalendarFromUnixMilliseconds(int64_t unix_ms) {
  int64_t seconds = unix_ms / 1000;
  int64_t rest_ms = unix_ms % 1000;
  if (rest_ms < 0) {
    rest_ms += 1000;
    --seconds;
  }
  CalendarTime time = CalendarFromUnixSeconds(seconds);
  time.millisecond = static_cast<int32_t>(rest_ms);
  return time;
}

void SleepMilliseconds(uint32_t duration_ms) {
  timespec left{static_cast<time_t>(duration_ms / 1000), static_cast<long>(duration_ms % 1000) * 1'000'000};
  while (nanosleep(&left, &left) != 0) {
  }
}

void WaitUntil(std::mutex& mutex, std::condition_variable& condition, int64_t deadline_us) {
  std::unique_lock<std::mutex> held(mutex, std::adopt_lock);
  if (deadline_us == kNever) {
    condition.wait(held);  // NOLINT(bugprone-spuriously-wake-up-functions): the caller looks again
  } else {
    condition.wait_until(held, steady_clock::time_point(microseconds(deadline_us)));
  }
  held.release();
}

}  // namespace posix

CalendarTime UtcNow() {
  return posix::CalendarFromUnixMilliseconds(UnixMilliseconds());
}

void RaiseTimerResolution() {}
void RestoreTimerResolution() {}

}  // namespace tw
