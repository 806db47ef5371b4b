// The words that a device understands, aliases included. Several words may mean the same. Pure; any thread.
#pragma once

#include <cstdint>
#include <string_view>

#include "simulator/sounder_settings.h"

namespace tw::sim {

enum class Meaning : uint8_t {
  value,   // told without a value, set with one
  fact,    // told
  inUse,   // a value of the channel in use; `setting` is the low one of the pair
  output,  // a value that must be a mode which the device can stream
  speed,   // a value that must be one of the line's speeds
  clock,   // set with seconds since 1970
  identity,
  information,
  useLow,
  useHigh,
  useBoth,
  restore,
  reset,
  go,
};

struct Keyword {
  std::string_view word;
  Meaning meaning;
  Setting setting = Setting::count;
};

// Null for a word that the family does not know.
[[nodiscard]] const Keyword* FindKeyword(DeviceFamily family, std::string_view word);

// The line's speeds, bit/s, ascending.
inline constexpr int32_t kLineSpeeds[] = {4'800,   9'600,   19'200,  38'400,  57'600,
                                          115'200, 230'400, 460'800, 921'600, 3'000'000};

}  // namespace tw::sim
