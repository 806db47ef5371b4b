// The depth in large figures, as its window shows it, and the alarm: never a stale depth that looks alive.
// Pure; any thread.
#pragma once

#include <cstdint>

#include "app/state/options.h"

namespace tw {

inline constexpr uint32_t kStaleDepth_ms = 2'000;  // from then on a depth is grey and tells its age
inline constexpr uint32_t kLostDepth_ms = 5'000;   // from then on there are dashes in its place

enum class DepthSource : uint8_t { nothing, device, recording };

struct ChannelDepth {
  float altitude_m;  // below the transducer; 0 and less, and what is not finite: no bottom
  uint32_t age_ms;   // of its ping; means nothing for a recording, which tells what is on view
};

struct DepthFacts {
  DepthSource source;
  bool dual;
  ChannelDepth channels[2];  // the high and the low one of a dual run, else the first alone
  DepthUnit unit;
  double shallow_m;  // the alarm sounds above this depth; 0: none
  double deep_m;     // and below this one; 0: none
};

enum class DepthLook : uint8_t { alive, stale, nothing, alarm };

struct DepthFigure {
  DepthLook look;
  wchar_t depth[16];  // "12.34", or dashes
  wchar_t note[40];   // "m", "ft, low, 3 s ago", "m, playback", "m, SHALLOW"

  bool operator==(const DepthFigure&) const = default;
};

struct DepthFigures {
  DepthFigure figures[2];
  int32_t count;      // 1, or 2 of a dual run
  wchar_t alarm[32];  // "SHALLOW 1.85m"; empty: none

  bool operator==(const DepthFigures&) const = default;
};

// An alarm is one of a device's depth alone, as long as that is not stale.
[[nodiscard]] DepthFigures DescribeDepths(const DepthFacts& facts);

}  // namespace tw
