#include "app/run/connection.h"
#include "app/run/record_opening.h"
#include "app/run/run_control.h"
#include "app/run/run_steps.h"
#include "app/run/worker_control.h"
#include "app/settings/control_states.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "app/window/view_choices.h"
#include "app/window/wait_pointer.h"
#include "base/shared_value.h"
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

// A speed change that failed has closed the device port and nothing else.
bool HoldsSomething(AppState& state) {
  return LoadShared(state.devicePort) != Handle::invalid || state.acquisitionThread != Handle::null ||
         state.gpsThread != Handle::null;
}

void ShowIdle(AppState& state) {
  CloseSettingsDialog(state);
  ShowDisconnected(state);
  ClearLiveTexts(state);
  Reset(state.recordingEvent);
  StopTimer(state, ID_TIMER_LINK);
  StopTimer(state, ID_TIMER_CHANGES);
  RefreshControlStates(state);
  RefreshCaptureTimer(state);
}

}  // namespace

void StopRun(AppState& state) {
  EndFileWorkers(state);
  if (HoldsSomething(state)) {
    WaitPointer pointer;
    EndAcquisition(state, kStopLimit_ms);
    RaiseRunNumber(state);
    ClosePorts(state);
    CloseRecordFiles(state);
  }
  StoreShared(state.linkLost, 0);
  ShowIdle(state);
}

}  // namespace tw
