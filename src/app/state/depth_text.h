// Depths, altitudes and ranges as an operator reads them: the one place where a length that is shown gets its
// figure and its unit. What is stored, sent, exported or used in a name is metric and does not come here.
// Pure; any thread.
#pragma once

#include <cstddef>
#include <span>

#include "app/state/options.h"

namespace tw {

// The international foot. (The survey foot differs by 2 millionths: 1 mm in 500 m.)
inline constexpr double kMetresPerFoot = 0.3048;

[[nodiscard]] double InUnit(double metres, DepthUnit unit);

// "m" or "ft".
[[nodiscard]] const char* NameOfUnit(DepthUnit unit);

// "12.345m" or "40.50ft", at least `width` characters ahead of the unit. `decimals` are those of metres; feet
// have two of them at most, a hundredth of a foot being 3 mm. Writes a terminating zero, cuts what does not
// fit, returns the characters stored, as FormatText does; what is not finite reads "nan" or "inf".
size_t FormatDepth(std::span<char> out, double metres, DepthUnit unit, int decimals, int width = 0);
size_t FormatDepth(std::span<wchar_t> out, double metres, DepthUnit unit, int decimals, int width = 0);

// The figure alone.
size_t FormatDepthFigure(std::span<wchar_t> out, double metres, DepthUnit unit, int decimals);

// How many decimals the labels of a scale need that reaches down to `range_m`: in metres one below 10 m, in
// feet one below 100 ft, where the divisions of a metric range are no whole feet.
[[nodiscard]] int ScaleDecimals(double range_m, DepthUnit unit);

}  // namespace tw
