#include "app/run/worker_control.h"

#include "acquisition/live_worker.h"
#include "acquisition/output_mode.h"
#include "app/run/come_back.h"
#include "base/shared_value.h"
#include "device/serial_ports.h"
#include "device/start_sequence.h"
#include "gps/gps_worker.h"
#include "platform/clock.h"
#include "platform/thread.h"

namespace tw {
namespace {

constexpr uint32_t kWaitSlice_ms = 100;

// Waits for a thread in slices. False when it is still alive after the limit.
bool WaitInSlices(Handle thread, uint32_t limit_ms) {
  const uint32_t begin = MillisecondClock();
  while (WaitForThread(thread, kWaitSlice_ms) == ThreadWait::timedOut) {
    if (limit_ms != kWaitForever && MillisecondClock() - begin >= limit_ms) return false;
  }
  return true;
}

// The device has been started by now, so the applied settings are what it runs with.
LiveStart DescribeStart(const AppState& state, const StreamForm& form, OutputMode mode) {
  LiveStart start{.form = &form,
                  .settings = state.appliedSettings,
                  .deviceFamily = FamilyInUse(),
                  .dual = LoadShared(globals.dualMode) != 0,
                  .port = LoadShared(state.devicePort),
                  .runNumber = LoadShared(state.runNumber)};
  start.settings.outputMode = mode;
  if (state.options.keepRunGoing != 0) {
    start.rescue = &kLinkRescue;
    start.silence_ms = static_cast<uint32_t>(state.options.silence_s) * 1000;
  }
  return start;
}

bool StartAcquisition(AppState& state, const StreamForm& form, OutputMode mode) {
  if (!HandOver(state, DescribeStart(state, form, mode))) return false;
  Reset(state.stopEvent);
  Reset(state.stopEventB);
  StoreShared(state.linkLost, 0);
  StoreShared(state.linkAway, 0);
  StoreShared(state.lastPing_ms, MillisecondClock());
  state.acquisitionThread = StartThread(AcquisitionWorker, &state);
  return state.acquisitionThread != Handle::null;
}

// kept: before the first Stop the GPS port is the null handle, not the invalid one, so a run without a GPS
// port then starts a GPS worker all the same; its first read fails and it ends.
bool StartGps(AppState& state) {
  if (state.gpsThread != Handle::null || LoadShared(state.gpsPort) == Handle::invalid) return true;
  state.openReceiver = state.options.keepRunGoing != 0 ? OpenDevicePort : nullptr;
  StoreShared(state.gpsRunNumber, LoadShared(state.runNumber));
  state.gpsThread = StartThread(GpsWorker, &state);
  return state.gpsThread != Handle::null;
}

}  // namespace

RunFault StartWorkers(AppState& state) {
  const DeviceFamily family = FamilyInUse();
  const OutputModeRow& mode = AcceptedMode(family, state.settings.outputMode);
  state.settings.outputMode = mode.code;
  // A device that supports smoothing reports its frequency.
  const StreamForm& form = state.link->facts.smoothingSupported ? mode.reporting : mode.sent;
  StoreShared(state.echogramEnabled, form.HasSamples() ? 1 : 0);
  StartDevice(*state.link, family, LoadShared(globals.dualMode) != 0, state.settings, state.appliedSettings);
  if (!StartAcquisition(state, form, mode.code)) return RunFault::noAcquisitionThread;
  return StartGps(state) ? RunFault::none : RunFault::noGpsThread;
}

void RaiseRunNumber(AppState& state) {
  const Locked held(state.linkLock);
  StoreShared(state.runNumber, LoadShared(state.runNumber) + 1);
}

void EndAcquisition(AppState& state, uint32_t limit_ms) {
  if (state.acquisitionThread == Handle::null) return;
  Signal(state.stopEvent);
  static_cast<void>(WaitInSlices(state.acquisitionThread, limit_ms));
  CloseThread(state.acquisitionThread);
  state.acquisitionThread = Handle::null;
}

}  // namespace tw
