#include "platform/clock.h"

#include <time.h>

#include "platform/posix/monitor.h"
#include "platform/virtual/baton.h"
#include "platform/virtual/virtual_clock.h"

namespace tw {
namespace {

constexpr int64_t kEndLimit_us = int64_t{3600} * 1'000'000;

// Set while thread 0 is alone, read by all threads of the virtual clock.
struct VirtualStart {
  int64_t unix_ms;
  uint32_t firstMillisecond;
  int32_t utcOffset_s;
};
VirtualStart virtualStart{};

[[nodiscard]] CalendarTime CalendarFromUnixMilliseconds(int64_t unix_ms) {
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

[[nodiscard]] int64_t LocalOffset_ms(int64_t unix_ms) {
  if (baton::Held()) return int64_t{virtualStart.utcOffset_s} * 1000;
  const time_t seconds = unix_ms / 1000;
  tm local{};
  return localtime_r(&seconds, &local) != nullptr ? local.tm_gmtoff * 1000 : 0;
}

}  // namespace

void StartVirtualClock(int64_t unix_ms, uint32_t firstMillisecond) {
  baton::Begin();
  virtualStart = {unix_ms, firstMillisecond, 0};
}

void StopVirtualClock() {
  baton::End(kEndLimit_us);
}

bool IsClockVirtual() {
  return baton::Held();
}

int64_t VirtualNow_us() {
  return baton::Now_us();
}

void SetVirtualUtcOffset(int32_t offset_s) {
  virtualStart.utcOffset_s = offset_s;
}

uint32_t MillisecondClock() {
  baton::Poll();
  const auto now_ms = static_cast<uint64_t>(HostNow_us() / 1000);
  return static_cast<uint32_t>(now_ms + (baton::Held() ? virtualStart.firstMillisecond : 0));
}

int64_t UnixMilliseconds() {
  baton::Poll();
  if (baton::Held()) return virtualStart.unix_ms + baton::Now_us() / 1000;
  timespec now{};
  clock_gettime(CLOCK_REALTIME, &now);
  return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1'000'000;
}

CalendarTime UtcNow() {
  return CalendarFromUnixMilliseconds(UnixMilliseconds());
}

CalendarTime LocalNow() {
  const int64_t now_ms = UnixMilliseconds();
  return CalendarFromUnixMilliseconds(now_ms + LocalOffset_ms(now_ms));
}

void SleepMilliseconds(uint32_t duration_ms) {
  if (duration_ms == 0) baton::Poll();
  if (baton::Held()) {
    if (duration_ms != 0) baton::Wait(nullptr, DeadlineAfter_us(duration_ms), "the end of a sleep");
    return;
  }
  timespec left{static_cast<time_t>(duration_ms / 1000), static_cast<long>(duration_ms % 1000) * 1'000'000};
  while (nanosleep(&left, &left) != 0) {
  }
}

void RaiseTimerResolution() {}
void RestoreTimerResolution() {}

}  // namespace tw
