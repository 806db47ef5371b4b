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

}  // namespace

void LiveReport::Show(const PingHeader& ping, uint64_t recorded, uint32_t now_ms) {
  if (!begun_) {
    begun_ = true;
    last_ms_ = now_ms;
  }
  if (now_ms - last_ms_ <= kReportPeriod_ms) return;
  last_ms_ = now_ms;
  auto& text = liveTexts.Next();
  if (WaitForEvent(state_.recordingEvent, 0)) {
    FormatFileSize(text, recorded);
  } else {
    const bool attitude = LoadShared(globals.attitudePresent) != 0 && ping.pitch_deg < kNoAttitude;
    FormatPingLine(text,
                   {ping.timeOfWork_s, ping.ping, ping.altitude_m, 0.0f, ping.temperature_c, ping.pitch_deg,
                    ping.roll_deg},
                   attitude);
  }
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
