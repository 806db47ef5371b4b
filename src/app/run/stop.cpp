#include "acquisition/record_file.h"
#include "app/run/connection.h"
#include "app/run/record_opening.h"
#include "app/run/run_control.h"
#include "app/run/run_events.h"
#include "app/run/second_tick.h"
#include "app/run/worker_control.h"
#include "app/state/posts.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/thread.h"

namespace tw {
namespace {

constexpr uint32_t kStopLimit_ms = 3000;

// The GPS worker is not waited for: it ends when its port closes. Its run number is stale by then, so the
// position is taken back here.
void ClosePorts(AppState& state) {
  CloseThread(state.gpsThread);
  state.gpsThread = Handle::null;
  CloseDevicePort(state);
  CloseGpsPort(state);
  Locked held(state.gpsLock);
  globals.fix.quality = 0;
  globals.gpsQuality = 0;
}

}  // namespace

// A speed change that failed has closed the device port and nothing else.
bool HoldsRun(AppState& state) {
  return LoadShared(state.devicePort) != Handle::invalid || state.acquisitionThread != Handle::null ||
         state.gpsThread != Handle::null;
}

void EndRun(AppState& state) {
  if (HoldsRun(state)) {
    const uint32_t began_ms = MillisecondClock();
    EndAcquisition(state, kStopLimit_ms);
    RaiseRunNumber(state);
    ClosePorts(state);
    CloseRecordFiles(state);
    FinishRecords(state, began_ms);
    LogRunEnds(state);
  }
  StoreShared(state.linkLost, 0);
  StoreShared(state.linkAway, 0);
  Reset(state.recordingEvent);
  ForgetChoice(state);
  TellRunChanged(state, RunChange::idle);
}

void CloseAfter(AppState& state, RunFault fault, const ElapsedLog* log) {
  switch (fault) {
    case RunFault::none:
    case RunFault::notConnected:
    case RunFault::deviceRefused:
    case RunFault::dualOldRefused:
      return;
    case RunFault::noPrompt:
      CloseDevicePort(state);
      if (log != nullptr) log->Write("After Stop Fail time :  ");
      return;
    case RunFault::receiverRefused:
      return CloseDevicePort(state);
    case RunFault::unidentified:
      CloseDevicePort(state);
      if (globals.gpsPortNumber != kNoGpsPort) CloseGpsPort(state);
      return;
    case RunFault::noPromptInRun:
    case RunFault::unreadable:
    case RunFault::speedUnheard:
    case RunFault::speedRefused:
    case RunFault::noAcquisitionThread:
    case RunFault::noGpsThread:
    case RunFault::linkLost:
      return EndRun(state);
  }
}

}  // namespace tw
