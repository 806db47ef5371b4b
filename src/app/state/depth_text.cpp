#include "app/state/depth_text.h"

#include <algorithm>

#include "base/text_format.h"

namespace tw {
namespace {

constexpr int kMostDecimalsOfFeet = 2;
constexpr size_t kLongestDepth = 352;  // of a double with three decimals, and the unit

int PlacesIn(DepthUnit unit, int decimals) {
  return unit == kFeet ? std::min(decimals, kMostDecimalsOfFeet) : decimals;
}

}  // namespace

double InUnit(double metres, DepthUnit unit) {
  return unit == kFeet ? metres / kMetresPerFoot : metres;
}

const char* NameOfUnit(DepthUnit unit) {
  return unit == kFeet ? "ft" : "m";
}

size_t FormatDepth(std::span<char> out, double metres, DepthUnit unit, int decimals, int width) {
  return FormatText(out, "%*.*f%s", width, PlacesIn(unit, decimals), InUnit(metres, unit), NameOfUnit(unit));
}

size_t FormatDepth(std::span<wchar_t> out, double metres, DepthUnit unit, int decimals, int width) {
  char text[kLongestDepth];
  return WidenText(out, {text, FormatDepth(std::span<char>(text), metres, unit, decimals, width)});
}

size_t FormatDepthFigure(std::span<wchar_t> out, double metres, DepthUnit unit, int decimals) {
  return FormatWide(out, "%.*f", PlacesIn(unit, decimals), InUnit(metres, unit));
}

int ScaleDecimals(double range_m, DepthUnit unit) {
  return InUnit(range_m, unit) < (unit == kFeet ? 100.0 : 10.0) ? 1 : 0;
}

}  // namespace tw
