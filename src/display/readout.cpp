#include "display/readout.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <numbers>

#include "app/state/depth_text.h"
#include "base/calendar.h"
#include "base/text_format.h"
#include "display/scaling.h"

namespace tw {
namespace {

// At 96 dpi.
constexpr int32_t kFromCursor = 14;
constexpr int32_t kNewestColumns = 16;

constexpr double kDegreesPerRadian = 180 / std::numbers::pi;

bool IsInside(const Rect& rect, Point at) {
  return at.x >= rect.left && at.x < rect.right && at.y >= rect.top && at.y < rect.bottom;
}

int64_t RingTimeOfSlot(const PanelSource& source, int32_t slot) {
  return source.ringTime - (source.scale.newest - slot + kRingSlots) % kRingSlots;
}

void TakeEcho(const PaintedPanel& panel, int32_t row, const uint8_t* slot, Reading& reading) {
  const int32_t height = panel.layout.image.Height();
  if (!panel.source.hasEchogram || !IsDrawable(panel.source.scale, height)) return;
  const double position = SamplePosition(row, panel.source.scale, height);
  if (!(position < static_cast<double>(kMaxSlotSamples))) return;
  const int32_t amplitude = std::min<int32_t>(ReadSample(slot, static_cast<size_t>(position)), kMaxAmplitude);
  reading.hasEcho = true;
  reading.echo_percent = (amplitude * 100 + kMaxAmplitude / 2) / kMaxAmplitude;
}

void TakePosition(const PingHeader& header, Reading& reading) {
  const double latitude = header.gpsLatitude_rad * kDegreesPerRadian;
  const double longitude = header.gpsLongitude_rad * kDegreesPerRadian;
  if (header.gpsValid != 1 || !(std::abs(latitude) <= 90) || !(std::abs(longitude) <= 180)) return;
  reading.hasPosition = true;
  reading.latitude_deg = latitude;
  reading.longitude_deg = longitude;
}

std::span<wchar_t> NextLine(ReadOutText& text) {
  return text.lines[text.count++];
}

// Degrees and minutes, four decimals: about 0.2 m, which is what a position of a ping holds.
struct Angle {
  int32_t degrees;
  double minutes;
};
Angle AngleOf(double degrees) {
  const int64_t parts = std::llround(std::abs(degrees) * 600'000);
  return {static_cast<int32_t>(parts / 600'000), static_cast<double>(parts % 600'000) / 10'000};
}

void DescribePosition(const Reading& reading, ReadOutText& text) {
  const Angle latitude = AngleOf(reading.latitude_deg);
  const Angle longitude = AngleOf(reading.longitude_deg);
  FormatWide(NextLine(text), "%02" PRId32 "\u00B0%07.4f'%c %03" PRId32 "\u00B0%07.4f'%c", latitude.degrees,
             latitude.minutes, reading.latitude_deg < 0 ? 'S' : 'N', longitude.degrees, longitude.minutes,
             reading.longitude_deg < 0 ? 'W' : 'E');
}

// "12 s", "1:02:03".
void DescribeDuration(int64_t duration_s, std::span<wchar_t> line) {
  const int64_t seconds = std::abs(duration_s);
  if (seconds < 60) {
    FormatWide(line, "\u0394 %" PRId64 " s", seconds);
  } else {
    FormatWide(line, "\u0394 %" PRId64 ":%02" PRId64 ":%02" PRId64, seconds / 3'600, seconds / 60 % 60,
               seconds % 60);
  }
}

void DescribeDepth(const char* before, double depth_m, DepthUnit unit, std::span<wchar_t> line) {
  char depth[32];
  FormatDepth(depth, depth_m, unit, 2);
  FormatWide(line, "%s%s", before, depth);
}

}  // namespace

std::optional<ImageSpot> FindSpot(std::span<const PaintedPanel> panels, Point cursor) {
  for (size_t i = 0; i < panels.size(); ++i) {
    const Rect& image = panels[i].layout.image;
    if (panels[i].source.ring == nullptr || !IsInside(image, cursor)) continue;
    return ImageSpot{i, cursor.x - image.left, cursor.y - image.top};
  }
  return std::nullopt;
}

Reading ReadSpot(const PaintedPanel& panel, const ImageSpot& spot) {
  const PanelSource& source = panel.source;
  const Rect& image = panel.layout.image;
  Reading reading{};
  reading.depth_m = spot.row * (source.scale.range_mm / 1'000.0) / std::max(image.Height(), 1);
  const int32_t index =
      SlotOfColumn(spot.column, image.Width(), source.scale.newest, source.scale.timeScale_s);
  reading.ringTime = RingTimeOfSlot(source, index);
  const uint8_t* const slot = SlotAt(*source.ring, index);
  if (!HoldsPing(slot)) return reading;
  const PingHeader header = ReadHeader(slot);
  reading.hasPing = true;
  reading.time_s = header.timeOfWork_s;
  reading.ping = header.ping;
  TakeEcho(panel, spot.row, slot, reading);
  TakePosition(header, reading);
  return reading;
}

int32_t ColumnAtSameTime(const PaintedPanel& from, int32_t column, const PaintedPanel& to) {
  const EchogramScale& scale = from.source.scale;
  const int32_t slot = SlotOfColumn(column, from.layout.image.Width(), scale.newest, scale.timeScale_s);
  const int64_t age = from.source.ringTime - RingTimeOfSlot(from.source, slot);
  return ColumnOfAge(age, to.layout.image.Width(), to.source.scale.newest, to.source.scale.timeScale_s);
}

int32_t ColumnOfReading(const PaintedPanel& panel, const Reading& reading) {
  const EchogramScale& scale = panel.source.scale;
  return ColumnOfAge(panel.source.ringTime - reading.ringTime, panel.layout.image.Width(), scale.newest,
                     scale.timeScale_s);
}

int32_t RowOfReading(const PaintedPanel& panel, const Reading& reading) {
  const int32_t range_mm = panel.source.scale.range_mm;
  if (range_mm <= 0) return 0;
  const double row = std::round(reading.depth_m * 1'000 * panel.layout.image.Height() / range_mm);
  return static_cast<int32_t>(std::clamp<double>(row, 0, kMaxCoordinate));
}

double GroundDistance_m(double latitudeA_deg, double longitudeA_deg, double latitudeB_deg,
                        double longitudeB_deg) {
  constexpr double kEquatorialRadius_m = 6'378'137.0;
  constexpr double kEccentricitySquared = 6.694379990141e-3;
  const double latitude = (latitudeA_deg + latitudeB_deg) / 2 / kDegreesPerRadian;
  const double w = 1 - kEccentricitySquared * std::sin(latitude) * std::sin(latitude);
  const double primeVertical_m = kEquatorialRadius_m / std::sqrt(w);
  const double meridian_m = primeVertical_m * (1 - kEccentricitySquared) / w;
  const double longitude = std::remainder(longitudeB_deg - longitudeA_deg, 360.0) / kDegreesPerRadian;
  const double north_m = meridian_m * (latitudeB_deg - latitudeA_deg) / kDegreesPerRadian;
  return std::hypot(north_m, primeVertical_m * std::cos(latitude) * longitude);
}

ReadOutText DescribeReading(const Reading& reading, DepthUnit unit) {
  ReadOutText text{};
  DescribeDepth("", reading.depth_m, unit, NextLine(text));
  if (!reading.hasPing) {
    FormatWide(NextLine(text), "no ping");
    return text;
  }
  const CalendarTime time = CalendarFromUnixSeconds(reading.time_s);
  FormatWide(NextLine(text),
             "%04" PRId32 "-%02" PRId32 "-%02" PRId32 " %02" PRId32 ":%02" PRId32 ":%02" PRId32 " UTC",
             time.year, time.month, time.day, time.hour, time.minute, time.second);
  if (reading.hasEcho) {
    FormatWide(NextLine(text), "Ping %" PRIu32 ", %" PRId32 "%%", reading.ping, reading.echo_percent);
  } else {
    FormatWide(NextLine(text), "Ping %" PRIu32, reading.ping);
  }
  if (reading.hasPosition) DescribePosition(reading, text);
  return text;
}

ReadOutText DescribeMeasure(const Reading& from, const Reading& to, DepthUnit unit) {
  ReadOutText text{};
  DescribeDepth("\u0394 ", std::abs(to.depth_m - from.depth_m), unit, NextLine(text));
  if (!from.hasPing || !to.hasPing) return text;
  DescribeDuration(int64_t{to.time_s} - int64_t{from.time_s}, NextLine(text));
  if (!from.hasPosition || !to.hasPosition) return text;
  const double distance_m =
      GroundDistance_m(from.latitude_deg, from.longitude_deg, to.latitude_deg, to.longitude_deg);
  DescribeDepth("over ground ", distance_m, unit, NextLine(text));
  return text;
}

Rect PlaceReadOut(const PanelLayout& layout, Point cursor, BoxSize size) {
  const int32_t gap = ScalePixels(kFromCursor, layout.dpi);
  const Rect& image = layout.image;
  const int32_t right = image.right - ScalePixels(kNewestColumns, layout.dpi);
  if (size.width > right - image.left || size.height > image.Height()) return {};
  int32_t left = cursor.x + gap;
  if (left + size.width > right) left = std::min(cursor.x - gap, right) - size.width;
  int32_t top = cursor.y + gap;
  if (top + size.height > image.bottom) top = cursor.y - gap - size.height;
  left = std::clamp(left, image.left, right - size.width);
  top = std::clamp(top, image.top, image.bottom - size.height);
  return {left, top, left + size.width, top + size.height};
}

void BlendRect(const Canvas& canvas, const Rect& rect, Pixel colour) {
  constexpr Pixel kHalves = 0x7F7F7F;
  const Canvas part = Part(canvas, rect);
  for (int32_t y = 0; y < part.height; ++y) {
    Pixel* const row = part.Row(y);
    for (int32_t x = 0; x < part.width; ++x) row[x] = (row[x] >> 1 & kHalves) + (colour >> 1 & kHalves);
  }
}

}  // namespace tw
