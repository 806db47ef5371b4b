#include "tools/echotool/summary.h"

#include <algorithm>
#include <cinttypes>
#include <cmath>
#include <numbers>

#include "acquisition/output_mode.h"
#include "base/calendar.h"
#include "base/text_format.h"

namespace tw::echotool {
namespace {

template <typename... Values>
void Line(std::string& out, const char* key, const char* format, Values... values) {
  char text[512];
  out.append(text, FormatText(text, "  %-13s ", key));
  out.append(text, FormatText(text, format, values...));
  out += '\n';
}

std::string TimeText(double seconds) {
  const CalendarTime t = CalendarFromUnixSeconds(static_cast<int64_t>(seconds));
  char text[64];
  return {text,
          FormatText(text, "%04" PRId32 "-%02" PRId32 "-%02" PRId32 " %02" PRId32 ":%02" PRId32 ":%02" PRId32,
                     t.year, t.month, t.day, t.hour, t.minute, t.second)};
}

std::string ModeText(const RecordingKind& kind) {
  if (kind.outputMode == kPlayedBinary) return "100 or 101 Echo Bin";  // one form in the file
  char name[128];
  NarrowText(name, NameOfMode(kind.family, kind.outputMode));
  return std::to_string(kind.outputMode) + " " + name;
}

constexpr int64_t kLongestStill_ms = 10'000;
constexpr double kDegrees = 180.0 / std::numbers::pi;

}  // namespace

std::string DamageText(const PingSource& recording) {
  const uint64_t skipped = recording.Skipped();
  const uint64_t size = recording.Size();
  char text[128];
  size_t length = FormatText(text, "%" PRIu64 " of %" PRIu64 " bytes skipped", skipped, size);
  if (skipped != 0) {
    const double share_percent = 100.0 * static_cast<double>(skipped) / static_cast<double>(size);
    length += FormatText(std::span(text).subspan(length),
                         share_percent < 0.1 ? " (below 0.1 %%)" : " (%.1f %%)", share_percent);
  }
  return {text, length};
}

void Summary::Span::Add(double value) {
  if (!std::isfinite(value)) return;
  low = any ? std::min(low, value) : value;
  high = any ? std::max(high, value) : value;
  any = true;
}

void Summary::Add(const RecordedPing& ping) {
  if (pings_++ == 0) first_ = ping.header.ping;
  last_ = ping.header.ping;
  ++channelPings_[ping.channel == 0 ? 0 : 1];
  longest_ = std::max(longest_, static_cast<uint32_t>(ping.samples.size()));
  if (ping.header.timeOfWork_s != 0) time_s_.Add(ping.header.timeOfWork_s);
  if (ping.header.altitude_m > 0.0f) depth_m_.Add(static_cast<double>(ping.header.altitude_m));
  if (!ping.hasPosition) return;
  latitude_deg_.Add(ping.latitude_rad * kDegrees);
  longitude_deg_.Add(ping.longitude_rad * kDegrees);
  NotePosition(ping);
}

// Receivers that have fallen silent leave their last position to all pings behind it. Times that go back
// begin anew.
void Summary::NotePosition(const RecordedPing& ping) {
  if (!ping.hasTime) return;
  const bool same = hasStill_ && ping.latitude_rad == stillLatitude_ && ping.longitude_rad == stillLongitude_;
  if (!same || ping.time_ms < stillSince_ms_) {
    hasStill_ = true;
    stillLatitude_ = ping.latitude_rad;
    stillLongitude_ = ping.longitude_rad;
    stillSince_ms_ = ping.time_ms;
  } else if (ping.time_ms - stillSince_ms_ > kLongestStill_ms) {
    ++stood_;
  }
}

std::string Summary::Text(const PingSource& recording) const {
  const RecordingKind& kind = recording.Kind();
  std::string out;
  Line(out, "kind", "%s", kind.name);
  Line(out, "device family", "%" PRId32, static_cast<int32_t>(kind.family));
  Line(out, "output mode", "%s", ModeText(kind).c_str());
  Line(out, "channels", "%" PRId32, kind.channels);
  if (channelPings_[1] != 0) {
    Line(out, "pings", "%" PRIu64 " and %" PRIu64 ", numbers %" PRIu32 " to %" PRIu32, channelPings_[0],
         channelPings_[1], first_, last_);
  } else {
    Line(out, "pings", "%" PRIu64 ", numbers %" PRIu32 " to %" PRIu32, pings_, first_, last_);
  }
  if (longest_ != 0) Line(out, "samples", "up to %" PRIu32 " a ping", longest_);
  if (time_s_.any)
    Line(out, "time", "%s to %s UTC", TimeText(time_s_.low).c_str(), TimeText(time_s_.high).c_str());
  if (depth_m_.any) Line(out, "depth", "%.3f to %.3f m", depth_m_.low, depth_m_.high);
  if (latitude_deg_.any) {
    Line(out, "latitude", "%.8f to %.8f deg", latitude_deg_.low, latitude_deg_.high);
    Line(out, "longitude", "%.8f to %.8f deg", longitude_deg_.low, longitude_deg_.high);
  }
  if (stood_ != 0)
    Line(out, "position", "%" PRIu64 " pings with one that stood still for more than %" PRId64 " s", stood_,
         kLongestStill_ms / 1000);
  Line(out, "damaged", "%s", DamageText(recording).c_str());
  return out;
}

}  // namespace tw::echotool
