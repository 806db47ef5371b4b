// The amplitude profile of the newest ping beside the image: amplitude to the right, depth downwards. Drawn
// by our own code: a pen object a segment would cost a hundred times the image. GUI thread.
#pragma once

#include <cstddef>
#include <cstdint>

#include "display/canvas.h"
#include "display/echogram_image.h"
#include "display/layout.h"

namespace tw {

inline constexpr Pixel kBelowThresholdColour = 0xAFAFAF;

// One point: where it stands and how strong the echo is there.
struct ProfilePoint {
  Point at;
  int32_t amplitude;  // 0 to kMaxAmplitude
};

// Work memory: the newest ping's samples.
struct ProfileScratch {
  uint16_t amplitudes[kMaxSlotSamples + 1];
};

// How many points a profile of an image `height` rows high has: four a row.
[[nodiscard]] constexpr int32_t ProfilePoints(int32_t height) {
  return height > 0 ? 4 * height : 0;
}

// Point `index` of the profile, between two samples; samples behind the last one are 0. For a drawable scale
// (see IsDrawable) alone.
[[nodiscard]] ProfilePoint FindProfilePoint(int32_t index, const ProfileScratch& samples,
                                            const EchogramScale& scale, const PanelLayout& layout);

// The x of the threshold's line for 0 to 100 percent; other values are brought into that range.
[[nodiscard]] int32_t ThresholdX(const PanelLayout& layout, int32_t threshold_percent);

// Draws the profile of the newest slot and the threshold's line. Nothing of the profile is drawn when the
// scale is not drawable.
void DrawProfile(const PingRing& ring, const EchogramScale& scale, const PanelLayout& layout,
                 int32_t threshold_percent, const DisplayPalette& palette, ProfileScratch& scratch,
                 const Canvas& canvas);

}  // namespace tw
