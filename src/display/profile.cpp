#include "display/profile.h"

#include <algorithm>
#include <iterator>

#include "base/bytes.h"
#include "display/scaling.h"

namespace tw {

namespace {

constexpr double kPointsPerRow = 4.0;
constexpr int32_t kPanelWidth = 60;
constexpr Pixel kThresholdOnPaper = 0xC06000;

// Between the two samples around `position`; 0 behind the last one.
int32_t AmplitudeAt(const ProfileScratch& samples, double position) {
  if (!(position < static_cast<double>(kMaxSlotSamples))) return 0;
  const auto index = static_cast<size_t>(position);
  const double weight = position - static_cast<double>(index);
  const double before = samples.amplitudes[index];
  const double behind = samples.amplitudes[index + 1];
  const double between = before + (behind - before) * weight;
  return static_cast<int32_t>(std::min(between, static_cast<double>(kMaxAmplitude)));
}

}  // namespace

ProfilePoint FindProfilePoint(int32_t index, const ProfileScratch& samples, const EchogramScale& scale,
                              const PanelLayout& layout) {
  const double row = index / kPointsPerRow;
  const int32_t amplitude = AmplitudeAt(samples, SamplePosition(row, scale, layout.image.Height()));
  const auto px = [&](int32_t length) { return ScalePixels(length, layout.dpi); };
  // One pixel inside the frame, in both directions.
  const int32_t x = amplitude * px(kPanelWidth) / kMaxAmplitude + layout.profile.left + 1;
  return {{x, layout.image.top + static_cast<int32_t>(row + 1)}, amplitude};
}

int32_t ThresholdX(const PanelLayout& layout, int32_t threshold_percent) {
  const int32_t percent = std::clamp(threshold_percent, 0, 100);
  return layout.profile.left + percent * ScalePixels(kPanelWidth, layout.dpi) / 100;
}

void DrawProfile(const PingRing& ring, const EchogramScale& scale, const PanelLayout& layout,
                 int32_t threshold_percent, const DisplayPalette& palette, ProfileScratch& scratch,
                 const Canvas& canvas) {
  const int32_t threshold = ThresholdX(layout, threshold_percent);
  const int32_t points = IsDrawable(scale, layout.image.Height()) ? ProfilePoints(layout.image.Height()) : 0;
  if (points > 0) {
    CopyAmplitudes(FindSamples(SlotAt(ring, scale.newest)), std::size(scratch.amplitudes),
                   scratch.amplitudes);
    ProfilePoint previous = FindProfilePoint(0, scratch, scale, layout);
    for (int32_t i = 1; i < points; ++i) {
      const ProfilePoint point = FindProfilePoint(i, scratch, scale, layout);
      // Unlike in the image, the weakest echoes have their colours here.
      const bool isStrong = point.at.x > threshold && point.amplitude >= palette.weakest;
      DrawLine(canvas, previous.at, point.at,
               isStrong ? InkOn(palette, LoadLe<uint32_t>(palette.entries[point.amplitude]))
                        : kBelowThresholdColour);
      previous = point;
    }
  }
  DrawLine(canvas, {threshold, layout.profile.top}, {threshold, layout.profile.bottom},
           palette.background == kBlack ? kYellow : kThresholdOnPaper);
}

}  // namespace tw
