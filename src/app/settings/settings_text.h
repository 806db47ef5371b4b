// The values of settings as an operator reads and enters them. Numbers have a point, whatever the system's
// language. Pure; any thread. A text that does not fit is cut.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "acquisition/output_mode.h"

namespace tw {

inline constexpr wchar_t kAutomaticText[] = L"Auto";  // of an interval and of a preset

// At least `decimals` places, more (up to three) only where they are needed.
void FormatNumber(double value, int decimals, std::span<wchar_t> text);

// Digits with at most one point (none in a whole number) and a sign, nothing else. False: `value` is
// unchanged.
[[nodiscard]] bool ReadNumber(std::wstring_view text, bool whole, double& value);

// In seconds; an interval of 0 is automatic.
void FormatInterval(int32_t interval_ms, std::span<wchar_t> text);

// A mode that the family's list has no name for shows as its number.
void FormatMode(DeviceFamily family, OutputMode mode, std::span<wchar_t> text);

// "Off", "Auto" or the preset's number. False when the text is none of them: `preset` is unchanged.
void FormatPreset(int32_t preset, std::span<wchar_t> text);
[[nodiscard]] bool ReadPreset(const wchar_t* text, int32_t& preset);

}  // namespace tw
