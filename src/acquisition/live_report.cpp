#include "acquisition/live_report.h"

#include <cinttypes>

#include "acquisition/ping_line.h"
#include "acquisition/record_file.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "platform/debug_output.h"

namespace tw {
namespace {

constexpr uint32_t kReportPeriod_ms = 1000;

// One set for all live workers: one runs at a time, and one that hangs no longer reports.
constinit StatusTexts liveTexts{};

void FormatLine(std::span<wchar_t> text, const PingHeader& ping, bool dual) {
  PingLineValues values{ping.timeOfWork_s,  ping.ping,      ping.altitude_m, 0.0f,
                        ping.temperature_c, ping.pitch_deg, ping.roll_deg,   DepthUnitInUse()};
  const bool attitude = LoadShared(globals.attitudePresent) != 0 && ping.pitch_deg < kNoAttitude;
  if (!dual) {
    FormatPingLine(text, values, attitude);
    return;
  }
  values.altitude_m = LoadShared(globals.latestAltitudeHigh_m);
  values.altitudeLow_m = LoadShared(globals.latestAltitudeLow_m);
  FormatDualPingLine(text, values, attitude);
}

}  // namespace

bool LiveReport::IsDue(uint32_t now_ms) {
  if (begun_ && now_ms - last_ms_ <= kReportPeriod_ms) return false;
  begun_ = true;
  last_ms_ = now_ms;
  return true;
}

void LiveReport::ShowPing(const PingHeader& ping, bool dual) {
  auto& text = liveTexts.Next();
  FormatLine(text, ping, dual);
  PostStatusText(state_, StatusPart::pingLine, text);
}

void LiveReport::ShowSize(uint64_t size_bytes) {
  auto& text = liveTexts.Next();
  FormatFileSize(text, size_bytes);
  PostStatusText(state_, StatusPart::pingLine, text);
}

void LiveReport::NoteOverruns(uint32_t overruns) {
  if (overruns == overruns_) return;
  overruns_ = overruns;
  wchar_t text[64];
  FormatWide(text, "Serial input lost : %" PRIu32 "\n", overruns);
  WriteDebugText(text);
}

}  // namespace tw
