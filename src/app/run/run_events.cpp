#include "app/run/run_events.h"

#include <cinttypes>
#include <cstdlib>

#include "acquisition/link_return.h"
#include "app/run/run_control.h"
#include "app/state/event_log.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "platform/clock.h"

namespace tw {
namespace {

constexpr int64_t kLeastJump_ms = 2'000;
constexpr size_t kDetailSize = 600;

void FormatReceiver(std::span<char> text) {
  if (globals.gpsPortNumber == kNoGpsPort) {
    FormatText(text, "no receiver");
  } else {
    FormatText(text, "receiver COM%" PRId32 " %" PRId32 " bit/s", globals.gpsPortNumber, globals.gpsBaud);
  }
}

// Tells a loss when it begins.
void WatchLoss(AppState& state, int32_t& told, bool lost, const char* event, const char* detail) {
  if (lost && told == 0) LogEvent(state, event, detail);
  told = lost ? 1 : 0;
}

const char* WordsFor(AwayFor reason) {
  switch (reason) {
    case AwayFor::silence:
      return "no data";
    case AwayFor::port:
      return "the port is not there";
    case AwayFor::answer:
      return "the device does not answer";
    case AwayFor::otherDevice:
      return "another device answers";
    case AwayFor::nothing:
      break;
  }
  return "";
}

// A run that goes on without its device for the time being.
void WatchReturn(AppState& state) {
  EventWatch& watch = state.eventWatch;
  const AwayFor reason{LoadShared(state.linkAway)};
  const bool away = reason != AwayFor::nothing;
  if (!away && watch.awayTold != 0) LogEvent(state, "back", "");
  WatchLoss(state, watch.awayTold, away, "lost", WordsFor(reason));
}

void WatchClocks(AppState& state, uint32_t now_ms) {
  EventWatch& watch = state.eventWatch;
  const int64_t utc_ms = UnixMilliseconds();
  const int64_t jump_ms = utc_ms - watch.utc_ms - static_cast<int32_t>(now_ms - watch.clock_ms);
  if (watch.clocksKnown != 0 && std::abs(jump_ms) > kLeastJump_ms) {
    char detail[64];
    FormatText(detail, "%+.1f s", static_cast<double>(jump_ms) / 1000.0);
    LogEvent(state, "clock", detail);
  }
  watch.clocksKnown = 1;
  watch.utc_ms = utc_ms;
  watch.clock_ms = now_ms;
}

}  // namespace

void LogRunBegins(AppState& state) {
  state.eventWatch = {};
  char receiver[64];
  FormatReceiver(receiver);
  const bool named = FamilyInUse() == DeviceFamily::first;
  char identity[128];
  FormatText(identity, "%04" PRId32, state.settings.identifierWord);
  char detail[kDetailSize];
  FormatText(detail, "COM%" PRId32 " %" PRId32 " bit/s, ID %s, %s", globals.devicePortNumber,
             globals.deviceBaud, named ? state.settings.identity : identity, receiver);
  LogEvent(state, "start", detail);
}

void LogRunEnds(AppState& state) {
  LogEvent(state, "stop", "");
}

void LogProgramEnds(AppState& state) {
  LogEvent(state, "program ended", "");
}

void LogSettingsChanged(AppState& state, const char* command) {
  const DeviceSettings& now = state.appliedSettings;
  char detail[kDetailSize];
  FormatText(detail,
             "%s: output %" PRId32 ", range %" PRId32 " mm, interval %" PRId32 " ms, %" PRId32 " bit/s",
             command, now.outputMode, RangesInForce(state).upper_mm, now.pingInterval_ms, globals.deviceBaud);
  LogEvent(state, "settings changed", detail);
}

void LogOpenedFile(AppState& state, const char* name) {
  LogEvent(state, "file opened", name);
}

void LogRemovedFile(AppState& state, const char* name) {
  char detail[kDetailSize];
  FormatText(detail, "%s, removed", name);
  LogEvent(state, "file closed", detail);
}

void WatchEvents(AppState& state, uint32_t now_ms) {
  EventWatch& watch = state.eventWatch;
  if (!IsEventLogOn(state)) {
    watch.clocksKnown = 0;
    return;
  }
  const bool receives = state.gpsThread != Handle::null && globals.gpsPortNumber != kNoGpsPort;
  WatchLoss(state, watch.linkLossTold,
            state.acquisitionThread != Handle::null && LoadShared(state.linkLost) != 0, "lost",
            "the run ends");
  WatchReturn(state);
  WatchLoss(state, watch.receiverLossTold, receives && LoadShared(state.gpsPort) == Handle::invalid,
            "receiver lost", "its port has failed");
  WatchClocks(state, now_ms);
}

}  // namespace tw
