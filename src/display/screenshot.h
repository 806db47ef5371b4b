// Where a screenshot of the echogram goes. GUI thread. The picture itself is written by SavePng.
#pragma once

#include <cstdint>
#include <span>

#include "base/calendar.h"

namespace tw {

enum class ShotKind : uint8_t { manual, automatic };

// The automatic shots of one program run: they all carry the first one's time and a rising number.
struct AutomaticShots {
  int32_t count;
  CalendarTime first;  // local time; means nothing while `count` is 0
};

struct ShotFacts {
  const wchar_t* workingFolder;
  bool isDual;  // goes into the folder "ScreenShot" inside
  ShotKind kind;
  int32_t frequency_hz;  // named in shots of a single channel
  CalendarTime localTime;
};

// The path of the next shot; its folder is created when it is missing. Counts automatic shots. False when
// there is no such folder or the path does not fit; then the shot is not counted.
// kept: the word "Dual" stands in the names of single channels too, and manual shots are all numbered 1, so
// that two within a second are one file.
[[nodiscard]] bool NameScreenshot(std::span<wchar_t> path, const ShotFacts& facts, AutomaticShots& shots);

}  // namespace tw
