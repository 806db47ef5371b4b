// Moments after ISO 8601, in UTC. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace tw::echotool {

// "2026-05-01T09:30:00", of seconds since 1970, into `out`, which has 32 bytes or more; returns how many.
[[nodiscard]] size_t StoreIsoSeconds(std::span<char> out, int64_t seconds);

enum class Milliseconds : uint8_t { whereAny, always };

// "2026-05-01T09:30:00.250Z", of milliseconds since 1970.
[[nodiscard]] std::string IsoTime(int64_t time_ms, Milliseconds shown = Milliseconds::whereAny);

// The date of it, "2026-05-01", and the time of day, "09:30:00".
[[nodiscard]] std::string IsoDate(int64_t time_ms);
[[nodiscard]] std::string IsoClock(int64_t time_ms);

}  // namespace tw::echotool
