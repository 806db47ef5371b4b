#include "platform/clock.h"

#include "platform/posix/monitor.h"
#include "platform/posix/system_clock.h"
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

[[nodiscard]] int64_t LocalOffset_ms(int64_t unix_ms) {
  return baton::Held() ? int64_t{virtualStart.utcOffset_s} * 1000 : posix::UtcOffset_ms(unix_ms);
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

void SuspendMachine(int64_t duration_us) {
  baton::Leap(duration_us);
}

void SetVirtualUtcOffset(int32_t offset_s) {
  virtualStart.utcOffset_s = offset_s;
}

uint32_t MillisecondClock() {
  baton::Poll();
  const auto now_ms = static_cast<uint64_t>(Now_us() / 1000);
  return static_cast<uint32_t>(now_ms + (baton::Held() ? virtualStart.firstMillisecond : 0));
}

int64_t UnixMilliseconds() {
  baton::Poll();
  return baton::Held() ? virtualStart.unix_ms + baton::Now_us() / 1000 : posix::UnixMilliseconds();
}

CalendarTime LocalNow() {
  const int64_t now_ms = UnixMilliseconds();
  return posix::CalendarFromUnixMilliseconds(now_ms + LocalOffset_ms(now_ms));
}

CalendarTime LocalFromUnixSeconds(int64_t seconds) {
  return CalendarFromUnixSeconds(seconds + LocalOffset_ms(seconds * 1000) / 1000);
}

void SleepMilliseconds(uint32_t duration_ms) {
  if (duration_ms == 0) baton::Poll();
  if (!baton::Held()) return posix::SleepMilliseconds(duration_ms);
  if (duration_ms != 0) baton::Wait(nullptr, DeadlineAfter_us(duration_ms), "the end of a sleep");
}

}  // namespace tw
