#include "app/run/record_set_up.h"

#include <algorithm>
#include <iterator>
#include <new>

#include "acquisition/ping_ring.h"
#include "device/device_link.h"
#include "platform/memory.h"

namespace tw {
namespace {

constexpr int32_t kDisplayRange_mm = 10'000;
constexpr int32_t kTimeScale_s = 150;

bool AllocateRing(PingRing*& ring) {
  ring = static_cast<PingRing*>(AllocateZeroed(kRingSize));
  return ring != nullptr;
}

}  // namespace

AppState* AllocateState() {
  auto* const state = static_cast<AppState*>(AllocateZeroed(sizeof(AppState)));
  void* const link = AllocateZeroed(sizeof(DeviceLink));
  if (state == nullptr || link == nullptr) return nullptr;
  state->link = new (link) DeviceLink;
  return state;
}

void SetStartUpValues(AppState& state) {
  state.settings = StartUpSettings();
  state.displayRangeUpper = state.displayRangeLower = kDisplayRange_mm;
  state.timeScaleUpper = state.timeScaleLower = kTimeScale_s;
  state.inputFileA = state.inputFileB = Handle::invalid;
  state.recordFileA = state.recordFileB = Handle::invalid;
  state.nextRecordA = state.nextRecordB = Handle::invalid;
  state.segyCompanionA = state.segyCompanionB = Handle::invalid;
  state.devicePort = Handle::invalid;
}

bool MakeRunEvents(AppState& state) {
  return std::all_of(std::begin(state.runEvents), std::end(state.runEvents),
                     [](Event& event) { return MakeEvent(event, ResetMode::manual); }) &&
         MakeEvent(state.recordingEvent, ResetMode::manual);
}

bool AllocateRings(AppState& state) {
  return AllocateRing(state.ringA) && AllocateRing(state.ringB);
}

bool MakeLocks(AppState& state) {
  MakeLock(state.ringLockA);
  MakeLock(state.ringLockB);
  MakeLock(state.gpsLock);
  MakeLock(state.recordLock);
  MakeLock(state.linkLock);
  MakeLock(state.eventLog.lock);
  MakeLock(globals.marksA.lock);
  MakeLock(globals.linesA.lock);
  MakeLock(globals.linesB.lock);
  MakeLock(globals.marksB.lock);
  return MakeEvent(state.stopEvent, ResetMode::automatic) &&
         MakeEvent(state.stopEventB, ResetMode::automatic) &&
         MakeEvent(state.linkRetry, ResetMode::automatic);
}

}  // namespace tw
