// The marks that an operator sets on what passes below, as they stand in the log of events, and from there
// beside a recording that is played or handed on. The line of a mark, behind its UTC and the event "mark":
//
//   2026-03-14T09:30:05.000Z,mark,"7, ping 1234, 12.340 m, 35.10000000 129.05000000, wreck"
//
// The time is that of the ping; "no bottom" and "no position" stand where there is none; the word, which may
// be missing, is the rest. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace tw {

inline constexpr size_t kMarkWordSize = 48;
inline constexpr double kDeepest_m = 100'000;  // what is deeper is no depth

struct EventMark {
  int64_t time_ms;  // of its ping, since 1970-01-01 00:00:00 UTC
  uint32_t number;  // from 1 on
  uint32_t ping;
  bool hasDepth;
  double depth_m;
  bool hasPosition;
  double latitude_deg;
  double longitude_deg;
  wchar_t word[kMarkWordSize];
};

// The detail of a mark's line, without its quotes; with a terminating zero. Returns its length.
size_t FormatMark(std::span<char> detail, const EventMark& mark);

// Reads a whole line of a log of events; false when it is no mark, or one that nobody wrote like this: the
// mark is as it was. What does not fit of a word is cut.
[[nodiscard]] bool ParseMark(std::string_view line, EventMark& mark);

}  // namespace tw
