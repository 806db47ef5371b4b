#include "display/colour_schemes.h"

#include <algorithm>
#include <cmath>
#include <span>

namespace tw {
namespace {

// a* is the way from green to red, b* that from blue to yellow.
struct Hue {
  double a;
  double b;
};

// Lightness runs evenly from the weakest echo to the strongest; hue and chroma follow the Bézier curve of
// these points.
struct Path {
  double weakest;
  double strongest;
  std::span<const Hue> hues;
};

constexpr Hue kBlueGreenYellow[] = {{26, -56}, {-20, -40}, {-20, 40}, {-10, 78}};
constexpr Hue kVioletRedYellow[] = {{42, -48}, {75, 20}, {-8, 84}};
constexpr Hue kNone[] = {{0, 0}};
constexpr size_t kMostHues = 4;

// On black the weakest is far enough from the background to be seen, on paper likewise.
Path PathOf(ColourScheme scheme) {
  switch (scheme) {
    case kBlueToYellow:
      return {20, 92, kBlueGreenYellow};
    case kVioletToYellow:
      return {18, 92, kVioletRedYellow};
    case kGreyOnBlack:
      return {16, 100, kNone};
    case kBlackOnWhite:
      return {88, 0, kNone};
    case kStandardColours:
      break;
  }
  return {0, 0, kNone};
}

Hue HueAt(std::span<const Hue> hues, double strength) {
  Hue points[kMostHues];
  std::copy(hues.begin(), hues.end(), points);
  for (size_t count = hues.size(); count > 1; --count) {
    for (size_t i = 0; i + 1 < count; ++i) {
      points[i].a += (points[i + 1].a - points[i].a) * strength;
      points[i].b += (points[i + 1].b - points[i].b) * strength;
    }
  }
  return points[0];
}

struct LinearRgb {
  double red;
  double green;
  double blue;

  [[nodiscard]] bool IsOnScreen() const {
    return std::min({red, green, blue}) >= 0 && std::max({red, green, blue}) <= 1;
  }
};

// CIE 1976 L*a*b* to light, by the primaries of IEC 61966-2-1 (sRGB).
LinearRgb LightOf(double lightness, const Hue& hue) {
  const auto cube = [](double root) {
    return root > 6.0 / 29 ? root * root * root : (116 * root - 16) * 27 / 24'389;
  };
  const double root = (lightness + 16) / 116;
  const double x = 0.95047 * cube(root + hue.a / 500);
  const double y = cube(root);
  const double z = 1.08883 * cube(root - hue.b / 200);
  return {3.2404542 * x - 1.5371385 * y - 0.4985314 * z, -0.9692660 * x + 1.8760108 * y + 0.0415560 * z,
          0.0556434 * x - 0.2040259 * y + 1.0572252 * z};
}

// The lightness holds; where no screen has so strong a colour of that hue, it is paler.
LinearRgb LightOnScreen(double lightness, const Hue& hue) {
  const LinearRgb wanted = LightOf(lightness, hue);
  if (wanted.IsOnScreen()) return wanted;
  constexpr int kHalvings = 12;
  double within = 0;
  double beyond = 1;
  for (int i = 0; i < kHalvings; ++i) {
    const double share = (within + beyond) / 2;
    (LightOf(lightness, {hue.a * share, hue.b * share}).IsOnScreen() ? within : beyond) = share;
  }
  return LightOf(lightness, {hue.a * within, hue.b * within});
}

Pixel ByteOf(double light) {
  const double bounded = std::clamp(light, 0.0, 1.0);
  const double shown = bounded <= 0.0031308 ? 12.92 * bounded : 1.055 * std::pow(bounded, 1 / 2.4) - 0.055;
  return static_cast<Pixel>(shown * 255 + 0.5);
}

}  // namespace

Pixel ColourOfScheme(ColourScheme scheme, double strength) {
  const Path path = PathOf(scheme);
  const double lightness = path.weakest + (path.strongest - path.weakest) * strength;
  const LinearRgb light = LightOnScreen(lightness, HueAt(path.hues, strength));
  return ByteOf(light.red) << 16 | ByteOf(light.green) << 8 | ByteOf(light.blue);
}

}  // namespace tw
