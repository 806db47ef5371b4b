#include "display/slider_geometry.h"

#include <algorithm>

#include "display/scaling.h"

namespace tw {

namespace {

constexpr int32_t kMinThumbWidth = 20;
constexpr int32_t kThumbMargin = 4;

// part / whole of `size`, rounded down. Exact for 0 <= part <= whole without a product of more than 64 bits.
uint64_t Share(uint64_t size, int32_t part, int32_t whole) {
  const auto numerator = static_cast<uint64_t>(part);
  const auto denominator = static_cast<uint64_t>(whole);
  return size / denominator * numerator + size % denominator * numerator / denominator;
}

}  // namespace

int32_t ThumbWidth(const ProgressBlock& progress, const SliderSize& slider) {
  const int32_t width = std::max(slider.width, 0);
  if (progress.fileSize == 0) return width;
  const double span = static_cast<double>(progress.sampleCount) * kProgressSpan;
  const double share = std::clamp(span / static_cast<double>(progress.fileSize), 0.0, 1.0);
  const int32_t least = ScalePixels(kMinThumbWidth, slider.dpi);
  return std::min(std::max(static_cast<int32_t>(share * width), least), width);
}

Rect ThumbOf(const ProgressBlock& progress, const SliderSize& slider) {
  if (!IsFileLoaded(progress) || slider.width <= 0) return {};
  const int32_t width = ThumbWidth(progress, slider);
  const int32_t track = slider.width - width;
  const int32_t margin = ScalePixels(kThumbMargin, slider.dpi);
  const double position = static_cast<double>(std::min(progress.position, progress.fileSize));
  const double size = static_cast<double>(std::max<uint64_t>(progress.fileSize, 1));
  const auto left = static_cast<int32_t>(position / size * track);
  return {left, margin, left + width, slider.height - margin};
}

uint64_t SeekPosition(const ProgressBlock& progress, int32_t x, const SliderSize& slider) {
  const int32_t thumb = ThumbWidth(progress, slider);
  const int32_t track = std::max(slider.width, 0) - thumb;
  if (x > track - ScalePixels(kThumbMargin, slider.dpi)) {
    const uint64_t halfSpan = static_cast<uint64_t>(std::max(progress.sampleCount, 0)) * kProgressSpan / 2;
    return progress.fileSize - std::min(halfSpan, progress.fileSize);
  }
  const int32_t fromLeft = std::max(x, 0) - thumb / 2;
  return fromLeft <= 0 ? 0 : Share(progress.fileSize, fromLeft, track);
}

}  // namespace tw
