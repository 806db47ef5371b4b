#include "acquisition/link_return.h"

#include "acquisition/live_worker.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/debug_output.h"
#include "platform/serial_line.h"

namespace tw {
namespace {

constexpr uint32_t kRetry_ms = 2000;
constexpr uint32_t kSlice_ms = 100;

// Puts the port into the record, in which `before` must still stand. False: the run is over, and its ports
// are nobody's business any more.
bool ExchangePort(AppState& state, const LiveStart& start, Handle before, Handle port) {
  const Locked held(state.linkLock);
  return LoadShared(state.runNumber) == start.runNumber &&
         CompareExchangeShared(state.devicePort, before, port);
}

// Not under the lock: closing a port whose plug was pulled can take seconds.
void GiveBack(AppState& state, const LiveStart& start, Handle port) {
  if (ExchangePort(state, start, port, Handle::null)) CloseSerialLine(port);
}

// False when the worker has given up.
bool Pause(AppState& state, AwayWorker& worker) {
  for (uint32_t waited_ms = 0; waited_ms < kRetry_ms; waited_ms += kSlice_ms) {
    if (worker.GivenUp()) return false;
    if (WaitForEvent(state.linkRetry, kSlice_ms)) break;
  }
  return !worker.GivenUp();
}

// The port that streams again, or Handle::invalid after one attempt.
Handle TryAgain(AppState& state, const LiveStart& start, uint32_t attempt, AwayWorker& worker) {
  WriteDebugText(L"Link retry\n");
  const Handle opened = start.rescue->open(state, start, attempt);
  if (opened == Handle::invalid) {
    NoteAway(state, start, AwayFor::port);
    return Handle::invalid;
  }
  if (!ExchangePort(state, start, Handle::null, opened)) {
    CloseSerialLine(opened);
    return Handle::invalid;
  }
  const bool tells = start.deviceFamily == DeviceFamily::first && start.settings.identity[0] != '\0';
  if (tells && start.rescue->isAtSpeedOfRun(attempt) && worker.Listen(opened, start.settings.identity))
    return opened;
  if (!worker.GivenUp() && start.rescue->restart(state, start, opened, attempt, worker)) return opened;
  GiveBack(state, start, opened);
  return Handle::invalid;
}

}  // namespace

void NoteAway(AppState& state, const LiveStart& start, AwayFor reason) {
  const Locked held(state.linkLock);
  if (LoadShared(state.runNumber) != start.runNumber) return;
  StoreShared(state.linkAway, static_cast<int32_t>(reason));
}

Handle AwaitReturn(AppState& state, const LiveStart& start, bool failed, AwayWorker& worker) {
  const Handle lost = LoadShared(state.devicePort);
  StoreShared(state.linkAwaySince_ms, MillisecondClock());
  NoteAway(state, start, failed ? AwayFor::port : AwayFor::silence);
  Handle port = !failed && worker.Listen(lost, nullptr) ? lost : Handle::invalid;
  if (port == Handle::invalid && !worker.GivenUp()) GiveBack(state, start, lost);
  for (uint32_t attempt = 0; port == Handle::invalid && !worker.GivenUp(); ++attempt) {
    port = TryAgain(state, start, attempt, worker);
    if (port == Handle::invalid && !Pause(state, worker)) break;
  }
  if (port != Handle::invalid) NoteAway(state, start, AwayFor::nothing);
  return port;
}

}  // namespace tw
