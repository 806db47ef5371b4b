// Where the slider's thumb stands for a position in a played file, and which position a place on the slider
// means. Pure functions over pixels of the slider's client area, whose left and upper edges are 0; sizes and
// positions in the file are as its reader tells them and may be anything. Figures are for 96 dots per inch.
#pragma once

#include <cstdint>

#include "app/state/slider_messages.h"
#include "display/canvas.h"

namespace tw {

// The slider's client area, in the screen's pixels.
struct SliderSize {
  int32_t width;
  int32_t height;
  int32_t dpi;
};

// Whether there is a thumb at all.
[[nodiscard]] constexpr bool IsFileLoaded(const ProgressBlock& progress) {
  return progress.sampleCount > 0;
}

// 20 pixels or more, but never wider than the slider: a file's length against one span of pings.
[[nodiscard]] int32_t ThumbWidth(const ProgressBlock& progress, const SliderSize& slider);

// Empty when no file is loaded or the slider has no room. A position behind the file's end counts as its end,
// and an empty file is all thumb.
[[nodiscard]] Rect ThumbOf(const ProgressBlock& progress, const SliderSize& slider);

// The file position for the cursor at `x`: from 0 to the file's size. Beyond the track's right end it is half
// a span before the file's end, or 0 for a file shorter than that.
[[nodiscard]] uint64_t SeekPosition(const ProgressBlock& progress, int32_t x, const SliderSize& slider);

}  // namespace tw
