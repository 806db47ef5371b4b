// Output modes: what a device can be told to stream. A code means something only together with the device
// family; a mode that has no row in its family's table cannot be run. Pure; any thread.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "acquisition/stream_form.h"
#include "app/state/device_family.h"

namespace tw {

using OutputMode = int32_t;

inline constexpr OutputMode kAltimeterNmea = 3;   // each family has it
inline constexpr OutputMode kPlayedBinary = 102;  // what 100 and 101 become when they are read from a file

struct OutputModeRow {
  OutputMode code;
  std::wstring_view name;  // in the selector; empty: it is accepted, but not offered

  // In the names of record files: of those that Start opens, and of those that are opened during a run.
  const char* wordAtStart;
  const char* wordSwitchedOn;

  const StreamForm& sent;
  const StreamForm& recorded = sent;
  const StreamForm& reporting = sent;  // sent by a device that reports its frequency

  // The code as a recording of this mode is told.
  [[nodiscard]] OutputMode Played() const { return recorded.isText ? code : kPlayedBinary; }
};

// The modes that a run can be started with; in the order of the selector.
[[nodiscard]] std::span<const OutputModeRow> AcceptedModes(DeviceFamily family);

// Those of them that the selector offers.
[[nodiscard]] std::span<const OutputModeRow> OfferedModes(DeviceFamily family);

// Null when the family does not accept the mode.
[[nodiscard]] const OutputModeRow* FindMode(DeviceFamily family, OutputMode mode);

// What a run is started with, and read as: the given mode when the family accepts it, else kAltimeterNmea.
[[nodiscard]] const OutputModeRow& AcceptedMode(DeviceFamily family, OutputMode mode);

// The mode of a recording, kPlayedBinary told as well, else likewise kAltimeterNmea.
[[nodiscard]] const OutputModeRow& PlayedMode(DeviceFamily family, OutputMode mode);

// The code behind a name of the family's list: exact, case-sensitive, the first match. False when the list
// has no such name.
[[nodiscard]] bool ModeOfName(DeviceFamily family, std::wstring_view name, OutputMode& mode);

// The name in the family's list; empty when the list has no such code.
[[nodiscard]] std::wstring_view NameOfMode(DeviceFamily family, OutputMode mode);

}  // namespace tw
