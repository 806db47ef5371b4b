// The words that a device understands, aliases included. Several words may mean the same. Pure; any thread.
#pragma once

#include <cstdint>
#include <string_view>

#include "simulator/sounder_settings.h"

namespace tw::sim {

enum class Meaning : uint8_t {
  value,
  bothRanges,  // set for both channels at once
  output,      // must be a mode which the device can stream
  automatic,   // comes and goes with its preset
  preset,
  speed,  // must be one of the line's speeds
  clock,  // seconds since 1970
  identity,
  information,
  // Commands without a value.
  useLow,
  useHigh,
  useBoth,
  restore,
  reset,
  go,
};

enum class Access : uint8_t { command, ask, set, askAndSet };

struct Keyword {
  std::string_view word;
  Meaning meaning;
  Access access;
  Setting setting = Setting::count;

  [[nodiscard]] constexpr bool Told() const { return access == Access::ask || access == Access::askAndSet; }
  [[nodiscard]] constexpr bool Settable() const {
    return access == Access::set || access == Access::askAndSet;
  }
};

// Null for a word that the family does not know.
[[nodiscard]] const Keyword* FindKeyword(DeviceFamily family, std::string_view word);

// True when a firmware of the family that cannot tell the value of `oldest` cannot tell that of `keyword`
// either: it came with the same firmware or a later one. Both are of that family.
[[nodiscard]] bool CameNotBefore(const Keyword& keyword, const Keyword& oldest);

// The line's speeds, bit/s, ascending.
inline constexpr int32_t kLineSpeeds[] = {4'800,   9'600,   19'200,  38'400,  57'600,
                                          115'200, 230'400, 460'800, 921'600, 3'000'000};

}  // namespace tw::sim
