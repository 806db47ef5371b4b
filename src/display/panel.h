// One panel of the echogram view: what it shows, taken from the state record, and its picture, drawn into a
// canvas. The single view is one panel; a dual view is two of them, one above the other. GUI thread.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"
#include "app/state/record_channel.h"
#include "display/canvas.h"
#include "display/echogram_image.h"
#include "display/kept_echogram.h"
#include "display/layout.h"
#include "display/marks_overlay.h"
#include "display/profile.h"

namespace tw {

enum class PanelPlace : uint8_t { single, upper, lower };

[[nodiscard]] constexpr RecordChannel RecordChannelOf(PanelPlace place) {
  return place == PanelPlace::lower ? RecordChannel::b : RecordChannel::a;
}

struct PanelSource {
  const DisplayPalette* palette;
  const PingRing* ring;  // null: nothing to show yet
  int64_t ringTime;      // of the newest ping's slot, see StorePing
  EchogramScale scale;
  int32_t labelledTimeScale_s;
  int32_t frequency_hz;
  int32_t threshold_percent;
  DepthUnit depthUnit;
  bool hasEchogram;
  bool hasDepthTrace;
  TimeLabels timeLabels;
};

// What the device runs with, or without one what the played file was recorded with. Choices that wait for
// "Apply" are not shown.
[[nodiscard]] const DeviceSettings& ShownSettings(const AppState& state);

// Reads the write index and the ring's time under the ring's lock.
[[nodiscard]] PanelSource DescribePanel(AppState& state, PanelPlace place);

// The device range that limits the zoom of a panel, in mm.
[[nodiscard]] int32_t DeviceRangeOf(const DeviceSettings& settings, PanelPlace place);

// Work memory of one panel, kept between paints: its rendered columns and what is used up in each paint.
struct PanelScratch {
  AmplitudeColours colours;
  EchogramScratch image;
  ProfileScratch profile;
  KeptEchogram kept;
};

// Draws all of the panel but its texts. The canvas is the whole client area; what stood in the panel before
// is overwritten.
void DrawPanel(const PanelSource& source, const PanelLayout& layout, PanelScratch& scratch,
               const Canvas& canvas);

// The panel's texts, status line and marks left out.
[[nodiscard]] Labels CollectLabels(const PanelSource& source, const PanelLayout& layout);

// The status line of the newest ping of ring A, at its place in the (lower) panel; empty before the first
// one.
[[nodiscard]] Label CollectStatus(AppState& state, const PanelSource& newest, const PanelLayout& layout,
                                  bool isDual);

}  // namespace tw
