#include "display/panel.h"

#include <algorithm>
#include <iterator>
#include <span>

#include "acquisition/output_mode.h"
#include "acquisition/ping_line.h"
#include "base/bytes.h"
#include "base/shared_value.h"
#include "display/depth_trace.h"
#include "display/scaling.h"
#include "platform/sync.h"

namespace tw {

namespace {

constexpr Pixel kAltitudeColour = 0xF00A0A;
constexpr int32_t kAltitudeWidth = 4;

bool IsOpen(const Handle& file) {
  const Handle handle = LoadShared(file);
  return handle != Handle::null && handle != Handle::invalid;
}

FieldChannel FieldsOf(const DeviceSettings& settings, PanelPlace place) {
  return FieldsOf(RecordChannelOf(place), place != PanelPlace::single, settings, FamilyInUse());
}

// Background, and the image's place left out: that is painted whole anyway.
void ClearMargins(const Canvas& canvas, const PanelLayout& layout, Pixel background) {
  const Rect& panel = layout.panel;
  const Rect& image = layout.image;
  FillRect(canvas, {panel.left, panel.top, panel.right, image.top}, background);
  FillRect(canvas, {panel.left, image.top, image.left, image.bottom}, background);
  FillRect(canvas, {image.right, image.top, panel.right, image.bottom}, background);
  FillRect(canvas, {panel.left, image.bottom, panel.right, panel.bottom}, background);
}

void DrawFrame(const Canvas& canvas, const Rect& rect) {
  const Point corners[] = {{rect.left, rect.top},
                           {rect.right, rect.top},
                           {rect.right, rect.bottom},
                           {rect.left, rect.bottom},
                           {rect.left, rect.top}};
  for (size_t i = 1; i < std::size(corners); ++i) DrawLine(canvas, corners[i - 1], corners[i], kGridColour);
}

void DrawColourBar(const Canvas& canvas, const PanelLayout& layout, const DisplayPalette& palette) {
  const Rect& bar = layout.colourBar;
  for (int32_t row = 0; row < bar.Height(); ++row) {
    const int32_t y = bar.top + row;
    DrawLine(canvas, {bar.left, y}, {bar.right, y},
             LoadLe<uint32_t>(palette.entries[ColourBarEntry(row, bar.Height())]));
  }
}

// kept: in modes without echo samples the altitudes are drawn in the client area's own coordinates, as if the
// image began at its corner, and the black image then covers all but the left and upper margins. So the empty
// slots ahead of the first ping, whose altitudes are 0, show a red line along the upper edge.
void DrawAltitudes(const PanelSource& source, const PanelLayout& layout, const Canvas& canvas) {
  const double height = layout.image.Height();
  const int32_t width = layout.image.Width();
  if (source.scale.range_mm <= 0 || !HoldsPing(SlotAt(*source.ring, source.scale.newest))) return;
  const double perMetre = height * 1'000 / source.scale.range_mm;
  const int32_t lineWidth = ScalePixels(kAltitudeWidth, layout.dpi);
  int32_t previous = -1;
  for (int32_t x = 1; x < width; ++x) {
    const int32_t slot = SlotOfColumn(x, width, source.scale.newest, source.scale.timeScale_s);
    const double y = ReadShownPing(SlotAt(*source.ring, slot)).altitude_m * perMetre;
    if (!(y >= 0) || y > kMaxCoordinate) {
      previous = -1;
      continue;
    }
    const auto row = static_cast<int32_t>(y);
    if (previous < 0) previous = row;
    const int32_t upper = std::min(previous, row) - lineWidth / 2;
    const int32_t lower = std::max(previous, row) + lineWidth / 2;
    FillRect(canvas, {x, layout.panel.top + upper, x + 1, layout.panel.top + lower}, kAltitudeColour);
    previous = row;
  }
}

GridClock ReadGridClock(const PanelSource& source, const PanelLayout& layout) {
  GridClock clock{.time_s = {}, .local = source.timeLabels == kClockLocal};
  const int32_t width = layout.image.Width();
  if (source.ring == nullptr || width <= 0) return clock;
  for (int32_t k = 0; k < static_cast<int32_t>(kGridTimes); ++k) {
    const int32_t slot =
        k == 0 ? source.scale.newest
               : SlotOfColumn(GridColumn(width, k), width, source.scale.newest, source.scale.timeScale_s);
    clock.time_s[k] = ReadShownPing(SlotAt(*source.ring, slot)).time_s;
  }
  return clock;
}

}  // namespace

const DeviceSettings& ShownSettings(const AppState& state) {
  const bool runs = IsOpen(state.devicePort) || LoadShared(state.linkAway) != 0;
  return runs ? state.appliedSettings : state.settings;
}

PanelSource DescribePanel(AppState& state, PanelPlace place) {
  const ChannelView channel = ChannelOf(state, RecordChannelOf(place));
  const DeviceSettings& settings = ShownSettings(state);
  const FieldChannel fields = FieldsOf(settings, place);
  // One file may hold both channels; then nothing else is open for the lower panel.
  const bool isPlayed = IsOpen(state.inputFileA) || IsOpen(channel.inputFile);
  const bool sharesPings = place != PanelPlace::single && !isPlayed;  // two channels, one ping rate
  PanelSource source{};
  source.palette = &state.palette;
  source.depthUnit = DepthUnitInUse();
  source.ring = channel.ring;
  {
    const Locked locked(channel.ringLock);
    source.scale.newest = channel.ringIndex;
    source.ringTime = channel.ringTime;
  }
  source.scale.timeScale_s = sharesPings ? channel.timeScale_s / 2 : channel.timeScale_s;
  source.scale.range_mm = channel.displayRange_mm;
  source.scale.soundSpeed_mps = settings.soundSpeed_mps;
  source.labelledTimeScale_s = channel.timeScale_s;
  source.frequency_hz = isPlayed ? LoadShared(channel.playedFrequency_hz) : settings.*kFrequencyOf[fields];
  source.threshold_percent = settings.*kThresholdOf[fields];
  source.hasEchogram = LoadShared(state.echogramEnabled) != 0;
  source.hasDepthTrace = state.options.depthTrace != 0;
  source.timeLabels = static_cast<TimeLabels>(state.options.timeLabels);
  return source;
}

int32_t DeviceRangeOf(const DeviceSettings& settings, PanelPlace place) {
  return RangeInMillimetres(settings.*kRangeOf[FieldsOf(settings, place)]);
}

void DrawPanel(const PanelSource& source, const PanelLayout& layout, PanelScratch& scratch,
               const Canvas& canvas) {
  BuildAmplitudeColours(*source.palette, scratch.colours);
  ClearMargins(canvas, layout, source.palette->background);
  DrawColourBar(canvas, layout, *source.palette);
  DrawFrame(canvas, layout.colourBar);
  DrawFrame(canvas, layout.profile);
  const Canvas image = Part(canvas, layout.image);
  if (source.ring != nullptr && source.hasEchogram) {
    scratch.kept.Render(*source.ring, source.scale, scratch.colours, scratch.image, image);
  } else {
    if (source.ring != nullptr) DrawAltitudes(source, layout, canvas);
    FillRect(canvas, layout.image, source.palette->background);
  }
  if (source.ring != nullptr) {
    if (source.hasDepthTrace) DrawDepthTrace(*source.ring, source.scale, layout.dpi, image);
    DrawProfile(*source.ring, source.scale, layout, source.threshold_percent, *source.palette,
                scratch.profile, canvas);
  }
  const GridLines grid = LayOutGrid(layout);
  for (size_t i = 0; i < grid.count; ++i) {
    DrawLine(canvas, grid.lines[i].from, grid.lines[i].to, kGridColour, LineStyle::dashDot);
  }
}

Labels CollectLabels(const PanelSource& source, const PanelLayout& layout) {
  Labels labels{};
  AddDepthLabels(layout, source.scale.range_mm, labels, source.depthUnit);
  if (source.timeLabels == kSecondsAgo) {
    AddTimeLabels(layout, source.labelledTimeScale_s, labels);
  } else {
    AddClockLabels(layout, ReadGridClock(source, layout), labels);
  }
  AddColourBarLabels(layout, labels);
  AddFrequencyLabel(layout, source.frequency_hz, labels);
  for (Label& label : std::span(labels.labels, labels.count)) {
    label.colour = InkOn(*source.palette, label.colour);
  }
  return labels;
}

Label CollectStatus(AppState& state, const PanelSource& newest, const PanelLayout& layout, bool isDual) {
  Label label = StatusLabel(layout, L"");
  label.colour = InkOn(*newest.palette, label.colour);
  if (newest.ring == nullptr) return label;
  const uint8_t* const slot = SlotAt(*newest.ring, newest.scale.newest);
  if (!HoldsPing(slot)) return label;
  const ShownPing ping = ReadShownPing(slot);
  PingLineValues values{.time_s = ping.time_s,
                        .ping = LoadShared(globals.pingCounter),
                        .altitude_m = ping.altitude_m,
                        .altitudeLow_m = 0.0f,
                        .temperature_c = ping.temperature_c,
                        .pitch_deg = ping.pitch_deg,
                        .roll_deg = ping.roll_deg,
                        .unit = newest.depthUnit};
  const bool hasPitch = ping.pitch_deg < kNoAttitude;
  if (isDual) {
    values.altitude_m = LoadShared(globals.latestAltitudeHigh_m);
    values.altitudeLow_m = LoadShared(globals.latestAltitudeLow_m);
    const OutputModeRow* const mode = FindMode(FamilyInUse(), state.settings.outputMode);
    FormatDualPingLine(label.text, values, hasPitch && mode != nullptr && mode->sent.dualAttitude);
  } else {
    FormatPingLine(label.text, values, hasPitch && LoadShared(globals.attitudePresent) == 1);
  }
  return label;
}

}  // namespace tw
