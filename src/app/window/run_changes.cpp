#include "app/window/run_changes.h"

#include <cinttypes>

#include "app/settings/control_states.h"
#include "app/settings/family_controls.h"
#include "app/settings/persistent_settings.h"
#include "app/settings/port_selectors.h"
#include "app/state/posts.h"
#include "app/window/commands.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "app/window/view_choices.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "platform/power.h"

namespace tw {
namespace {

constexpr uint32_t kLinkTimerPeriod_ms = 1000;
constexpr wchar_t kGpsDisconnected[] = L"GPS: Disconnected";

void ShowConnection(AppState& state) {
  wchar_t text[kStatusTextSize];
  if (FamilyInUse() == DeviceFamily::first) {
    FormatWide(text, "Device: COM%" PRId32 ",%" PRId32 "bps, ID: %s", globals.devicePortNumber,
               globals.deviceBaud, state.settings.identity);
  } else {
    FormatWide(text, "Device: COM%" PRId32 ",%" PRId32 "bps, ID: %04" PRId32, globals.devicePortNumber,
               globals.deviceBaud, state.settings.identifierWord);
  }
  SetStatusText(state, StatusPart::device, text);
  ShowReceiverPort(state);
}

void SaveCommunication() {
  SaveCommunicationSettings(
      {globals.devicePortNumber, globals.deviceBaud, globals.gpsPortNumber, globals.gpsBaud});
}

void ShowIdentified(AppState& state) {
  ShowFamilyControls(state);
  ShowConnection(state);
  RefreshSettingsControls(state);
  KeepPortsAtStart(state);
  DropQueuedInput(state);
  ShowPointer(PointerShape::arrow);
  SaveCommunication();
}

// The texts that a later change of the selectors is compared with.
void RememberTexts(AppState& state) {
  GetChosenText(state, ID_RANGE, state.rememberedRange);
  if (LoadShared(globals.dualMode) != 0) GetChosenText(state, ID_RANGE, state.rememberedRangeDual);
  GetControlText(state, ID_OUTPUT, state.rememberedOutput);
  GetControlText(state, ID_INTERVAL, state.rememberedInterval);
  state.pendingRange = 0;
  state.pendingOutput = 0;
}

void ShowRunning(AppState& state) {
  RefreshSettingsControls(state);
  RememberTexts(state);
  RefreshControlStates(state);
  RefreshCaptureTimer(state);
  RefreshAwake(state);
}

void ShowIdle(AppState& state) {
  state.awayShown = 0;
  CloseSettingsDialog(state);
  ShowDisconnected(state);
  ClearLiveTexts(state);
  StopTimer(state, ID_TIMER_LINK);
  StopTimer(state, ID_TIMER_CHANGES);
  RefreshControlStates(state);
  RefreshCaptureTimer(state);
  RefreshAwake(state);
}

}  // namespace

void ShowReceiverPort(AppState& state) {
  wchar_t text[kStatusTextSize];
  state.watch.receiverTold = 0;  // what is told in its place comes again
  const Handle gps = LoadShared(state.gpsPort);
  if (gps == Handle::null || gps == Handle::invalid) {  // none chosen, or its plug was pulled
    SetStatusText(state, StatusPart::gps, kGpsDisconnected);
    return;
  }
  FormatWide(text, "GPS: COM%" PRId32 ",%" PRId32 "bps", globals.gpsPortNumber, globals.gpsBaud);
  SetStatusText(state, StatusPart::gps, text);
}

void ShowDisconnected(AppState& state) {
  SetStatusText(state, StatusPart::device, L"Device: Disconnected");
  SetStatusText(state, StatusPart::gps, kGpsDisconnected);
}

void ShowAway(AppState& state, AwayFor away, uint32_t away_s) {
  const bool begins = away != AwayFor::nothing && state.awayShown == 0;
  if (away == AwayFor::nothing && state.awayShown == 0) return;
  state.awayShown = away != AwayFor::nothing ? 1 : 0;
  if (away == AwayFor::nothing) return ShowConnection(state);
  constexpr const char* kReasons[] = {"", "no data", "the port is not there", "the device does not answer",
                                      "another device answers"};
  char come[64];  // an adapter comes back under another number at times; early in the text, whose end is cut
                  // off
  FormatNewPorts(state, come);
  wchar_t text[kStatusTextSize];
  FormatWide(text, "Device: COM%" PRId32 " lost for %" PRIu32 " s%s, %s", globals.devicePortNumber, away_s,
             come, kReasons[static_cast<size_t>(away)]);
  SetStatusText(state, StatusPart::device, text);
  if (begins) CallOperator(state, state.options.beepWhenLost != 0);
}

void RefreshAwake(AppState& state) {
  KeepSystemAwake(state.acquisitionThread != Handle::null && WaitForEvent(state.recordingEvent, 0));
}

void TellRunChanged(AppState& state, RunChange change) {
  switch (change) {
    case RunChange::identified:
      return ShowIdentified(state);
    case RunChange::speedTaken:
      SelectDeviceSpeed(state, globals.deviceBaud);
      return SaveCommunication();
    case RunChange::reconnected:
      ShowConnection(state);
      return StartTimer(state, ID_TIMER_LINK, kLinkTimerPeriod_ms);
    case RunChange::starting:
      return StartTimer(state, ID_TIMER_LINK, kLinkTimerPeriod_ms);
    case RunChange::running:
      return ShowRunning(state);
    case RunChange::idle:
      return ShowIdle(state);
  }
}

}  // namespace tw
