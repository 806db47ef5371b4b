// Output modes: what a device can be told to stream. A code means something only together with the device
// family. Which of them a run can be started with says device/accepted_modes.h. Pure; any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "device/accepted_modes.h"

namespace tw {

using OutputMode = int32_t;

inline constexpr OutputMode kPlayedBinary = 102;  // what 100 and 101 become when they are read from a file

struct OutputModeName {
  OutputMode code;
  std::wstring_view name;
};

// The modes that the selector offers for a family (2, 0 or 1), in its order.
[[nodiscard]] std::span<const OutputModeName> OfferedModes(int32_t family);

// The code behind a name of the family's list: exact, case-sensitive, the first match. False when the list
// has no such name.
[[nodiscard]] bool ModeOfName(int32_t family, std::wstring_view name, OutputMode& mode);

// The name in the family's list; empty when the list has no such code.
[[nodiscard]] std::wstring_view NameOfMode(int32_t family, OutputMode mode);

// True when the mode's stream carries echo samples.
[[nodiscard]] bool CarriesEchoSamples(int32_t family, OutputMode mode);

}  // namespace tw
