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

CalendarTime LocalFromUnixSeconds(int64_t seconds) {
  const CalendarTime utc = CalendarFromUnixSeconds(seconds);
  SYSTEMTIME time{};
  time.wYear = static_cast<WORD>(utc.year);
  time.wMonth = static_cast<WORD>(utc.month);
  time.wDay = static_cast<WORD>(utc.day);
  time.wHour = static_cast<WORD>(utc.hour);
  time.wMinute = static_cast<WORD>(utc.minute);
  time.wSecond = static_cast<WORD>(utc.second);
  SYSTEMTIME local{};
  const bool known = utc.year >= 1601 && utc.year < 30'827;
  return known && SystemTimeToTzSpecificLocalTime(nullptr, &time, &local) != FALSE ? FromSystemTime(local)
                                                                                   : utc;
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
