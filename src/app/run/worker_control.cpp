#include "app/run/worker_control.h"

#include <algorithm>

#include "acquisition/altimeter_lines.h"
#include "acquisition/device_block.h"
#include "acquisition/echo_text_stream.h"
#include "acquisition/live_worker.h"
#include "acquisition/nmea_depth.h"
#include "acquisition/output_mode.h"
#include "app/window/ui.h"
#include "base/shared_value.h"
#include "device/start_sequence.h"
#include "gps/gps_worker.h"
#include "platform/clock.h"
#include "platform/thread.h"

namespace tw {
namespace {

constexpr uint32_t kWaitSlice_ms = 100;

// The form of an output mode's stream. A mode of a family's list that has no row here cannot be run.
struct ModeRow {
  int32_t family;  // 0 shares the rows of 2
  OutputMode mode;
  const StreamForm* form;
  const StreamForm* reporting = nullptr;  // instead of it, when the device reports its frequency
};

constexpr ModeRow kModes[] = {
    {1, 1, &kSimpleStream, &kReportingStream},
    {1, 2, &kFirstTextStream},
    {1, 3, &kFirstNmeaStream},
    {1, 4, &kFirstTextStream},
    {1, 6, &kDesoStream},
    {1, 7, &kDualStream},
    {1, 8, &kDfxStream},
    {1, 9, &kOldStream},
    {1, 100, &kBlockStream},
    {1, 101, &kBlockStream},
    {2, 1, &kSimpleStream},
    {2, 2, &kSecondTextStream},
    {2, 3, &kSecondNmeaStream},
    {2, 4, &kSecondTextStream},
    {2, 5, &kSecondTextStream},
    {2, 6, &kSecondTextStream},
    {2, 7, &kPsaStream},
    {2, 8, &kAltiTempStream},
    {2, 9, &kDfxStream},
    {2, 10, &kOldStream},
    {2, 100, &kBlockStream},
    {2, 101, &kBlockStream},
};

const StreamForm* FormOf(int32_t family, OutputMode mode) {
  const int32_t rows = family == 0 ? 2 : family;
  const auto* row = std::find_if(std::begin(kModes), std::end(kModes), [&](const ModeRow& each) {
    return each.family == rows && each.mode == mode;
  });
  if (row == std::end(kModes)) return nullptr;
  // A device that supports smoothing reports its frequency.
  return row->reporting != nullptr && globals.smoothingSupported != 0 ? row->reporting : row->form;
}

// Waits for a thread in slices. False when it is still alive after the limit.
bool WaitInSlices(Handle thread, uint32_t limit_ms) {
  const uint32_t begin = MillisecondClock();
  while (WaitForThread(thread, kWaitSlice_ms) == ThreadWait::timedOut) {
    if (limit_ms != kWaitForever && MillisecondClock() - begin >= limit_ms) return false;
  }
  return true;
}

// A file worker closes its own thread handle and clears the field when it ends, so the field is read anew
// for each slice.
void EndFileWorker(Handle& thread, Event& stop) {
  if (LoadShared(thread) == Handle::null) return;
  Signal(stop);
  for (;;) {
    const Handle now = LoadShared(thread);
    if (now == Handle::null || WaitForThread(now, kWaitSlice_ms) != ThreadWait::timedOut) break;
  }
  StoreShared(thread, Handle::null);
}

// The device has been started by now, so the applied settings are what it runs with.
LiveStart DescribeStart(const AppState& state, const StreamForm& form, OutputMode mode) {
  LiveStart start{.form = &form,
                  .settings = state.appliedSettings,
                  .deviceFamily = LoadShared(globals.deviceFamily),
                  .dual = LoadShared(globals.dualMode) != 0,
                  .port = LoadShared(state.devicePort),
                  .runNumber = LoadShared(state.runNumber)};
  start.settings.outputMode = mode;
  return start;
}

bool StartAcquisition(AppState& state, const StreamForm& form, OutputMode mode) {
  if (!HandOver(state, DescribeStart(state, form, mode))) return false;
  Reset(state.stopEvent);
  Reset(state.stopEventB);
  StoreShared(state.linkLost, 0);
  state.acquisitionThread = StartThread(AcquisitionWorker, &state);
  return state.acquisitionThread != Handle::null;
}

// kept: before the first Stop the GPS port is the null handle, not the invalid one, so a run without a GPS
// port then starts a GPS worker all the same; its first read fails and it ends.
bool StartGps(AppState& state) {
  if (state.gpsThread != Handle::null || LoadShared(state.gpsPort) == Handle::invalid) return true;
  StoreShared(state.gpsRunNumber, LoadShared(state.runNumber));
  state.gpsThread = StartThread(GpsWorker, &state);
  return state.gpsThread != Handle::null;
}

}  // namespace

WorkerStart StartWorkers(AppState& state) {
  const int32_t family = LoadShared(globals.deviceFamily);
  const OutputMode mode = AcceptedMode(family, state.settings.outputMode);
  state.settings.outputMode = mode;
  const StreamForm* const form = FormOf(family, mode);
  if (form == nullptr) return WorkerStart::unsupportedOutput;
  StoreShared(state.echogramEnabled, CarriesEchoSamples(family, mode) ? 1 : 0);
  StartDevice(state);
  if (!StartAcquisition(state, *form, mode)) return WorkerStart::noAcquisitionThread;
  return StartGps(state) ? WorkerStart::started : WorkerStart::noGpsThread;
}

void EndWithoutWorker(AppState& state) {
  ShowBox(state, L"Unable to run working thread", L"Error", BoxIcon::error);
  EndProcess(1);
}

void ReportWorkerStart(AppState& state, WorkerStart failure) {
  switch (failure) {
    case WorkerStart::started:
      return;
    case WorkerStart::unsupportedOutput:
      ShowBox(state, L"Unsupported output", L"Error", BoxIcon::error);
      return;
    case WorkerStart::noAcquisitionThread:
      EndWithoutWorker(state);
    case WorkerStart::noGpsThread:
      ShowBox(state, L"Unable to run GPS working thread", L"Error", BoxIcon::error);
      return;
  }
}

void RaiseRunNumber(AppState& state) {
  StoreShared(state.runNumber, LoadShared(state.runNumber) + 1);
}

void EndAcquisition(AppState& state, uint32_t limit_ms) {
  if (state.acquisitionThread == Handle::null) return;
  Signal(state.stopEvent);
  static_cast<void>(WaitInSlices(state.acquisitionThread, limit_ms));
  CloseThread(state.acquisitionThread);
  state.acquisitionThread = Handle::null;
}

void EndFileWorkers(AppState& state) {
  EndFileWorker(state.fileWorkerA, state.stopEvent);
  EndFileWorker(state.fileWorkerB, state.stopEventB);
  StoreShared(globals.playbackEnded, 0);  // nobody is left who could go on
  if (state.playbackActive == 0) return;
  state.playbackActive = 0;
  state.playbackPaused = 0;
  state.playbackAtEnd = 0;
  ArrangeViews(state);
}

}  // namespace tw
