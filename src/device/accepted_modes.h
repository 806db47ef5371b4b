// Which output modes a run can be started with: the list that the start of the workers and the start of the
// device go by. Pure; any thread.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>

namespace tw {

inline constexpr int32_t kAltimeterNmea = 3;

// What a device of the first family can be told to send; the others, which share a list, know two modes more.
inline constexpr std::array<int32_t, 10> kAcceptedModes{1, 2, 3, 4, 6, 7, 8, 9, 100, 101};
inline constexpr std::array<int32_t, 2> kFurtherModes{5, 10};

// The mode that a run is started with: the given one when the family (1, 2 or 0) accepts it, else
// kAltimeterNmea. So 100 and 101 are accepted from family 0 although its selector does not offer them.
[[nodiscard]] constexpr int32_t AcceptedMode(int32_t family, int32_t mode) {
  const auto holds = [mode](const auto& modes) {
    return std::find(modes.begin(), modes.end(), mode) != modes.end();
  };
  return holds(kAcceptedModes) || (family != 1 && holds(kFurtherModes)) ? mode : kAltimeterNmea;
}

}  // namespace tw
