#include "platform/clock.h"

#include <windows.h>
// Needs the types of the line above.
#include <timeapi.h>

namespace tw {
namespace {

constexpr UINT kTimerPeriod_ms = 1;

[[nodiscard]] CalendarTime FromSystemTime(const SYSTEMTIME& time) {
  return {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond, time.wMilliseconds};
}

}  // namespace

uint32_t MillisecondClock() {
  return timeGetTime();
}

int64_t UnixMilliseconds() {
  // From 1601-01-01 to 1970-01-01, in the system's units of 100 ns.
  constexpr int64_t kUnixEpoch = 116'444'736'000'000'000;
  constexpr int64_t kUnitsPerMillisecond = 10'000;
  FILETIME now{};
  GetSystemTimeAsFileTime(&now);
  const auto units = static_cast<int64_t>(uint64_t{now.dwHighDateTime} << 32 | now.dwLowDateTime);
  return (units - kUnixEpoch) / kUnitsPerMillisecond;
}

CalendarTime UtcNow() {
  SYSTEMTIME now{};
  GetSystemTime(&now);
  return FromSystemTime(now);
}

CalendarTime LocalNow() {
  SYSTEMTIME now{};
  GetLocalTime(&now);
  return FromSystemTime(now);
}

void SleepMilliseconds(uint32_t duration_ms) {
  Sleep(duration_ms);
}

void RaiseTimerResolution() {
  timeBeginPeriod(kTimerPeriod_ms);
}

void RestoreTimerResolution() {
  timeEndPeriod(kTimerPeriod_ms);
}

}  // namespace tw
