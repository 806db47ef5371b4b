// The INFO line at the head of each record file: under which settings it was made. ASCII, CR LF:
//
//   INFO:1,200000,10000,0.1,20,0.0,0,15,0.08,0,150,20,0,1500.0,4      kind first, 15 fields
//   INFO:450000,10000,0.1,20,0.0,0,15,0.14,0,150,20,0,1500.0,4        the older form, 14 fields
//
// A first number above 10 is a frequency and tells the older form. Kept: an interval below 50 ms reads "0.0".
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "app/state/device_family.h"
#include "app/state/device_settings.h"
#include "platform/handle.h"

namespace tw {

struct InfoLine {
  int32_t kind;  // device family, 1, 2 or 0; of a line that was read, whatever stands there
  int32_t frequency_hz;
  int32_t range_mm;  // as the device gives it
  float interval_s;
  int32_t txLength;
  float txPower;
  float gain;
  float tvgSpreading;
  float tvgAbsorption;
  int32_t attenuation;
  int32_t deadZone_mm;
  int32_t threshold_percent;
  int32_t offset_mm;
  float soundSpeed_mps;
  int32_t outputMode;
};

inline constexpr size_t kInfoLineSize = 512;

// The line with its CR LF and a terminating zero; returns its length. Pure.
size_t FormatInfoLine(std::span<char> text, const InfoLine& info);

// The line for a file of the channel with this frequency, or the two lines for one of both channels, which
// devices of the first family alone have. Returns how many. Pure.
int MakeInfoLines(const DeviceSettings& settings, DeviceFamily family, int32_t channelFrequency_hz,
                  bool bothChannels, InfoLine (&lines)[2]);

// Writes the lines to an open record file, each in one write. When one fails the file is closed and its
// handle becomes invalid. GUI thread.
void WriteInfoLine(const DeviceSettings& settings, DeviceFamily family, Handle& file,
                   int32_t channelFrequency_hz, bool bothChannels);

// Reads the first INFO line in the text, of either form. False, and `info` unchanged, when there is none or a
// field is missing. Pure.
[[nodiscard]] bool ParseInfoLine(std::string_view text, InfoLine& info);

// Takes a line that was read over into the settings: what each channel has of its own, with the low channel
// its frequency, else what stands for both. The output mode is the caller's.
void ApplyInfoLine(const InfoLine& info, FieldChannel channel, DeviceSettings& settings);

}  // namespace tw
