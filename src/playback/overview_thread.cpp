#include "playback/overview_thread.h"

#include <algorithm>
#include <iterator>

#include "app/state/overview.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "platform/memory.h"
#include "platform/thread.h"
#include "playback/overview_maker.h"

namespace tw {
namespace {

constexpr uint32_t kLookForGrowth_ms = 1'000;
constexpr uint32_t kLooksBetween = 5;  // two overviews of a file that grows

void MakeOverview(void* argument) {
  auto& overview = *static_cast<Overview*>(argument);
  StandBack();
  RecordingFault fault = RecordingFault::none;
  const auto recording = OpenRecording(overview.path, fault, kUsualSampling_hz, WriteSharing::allowed);
  if (recording == nullptr) return;
  OverviewMaker maker(
      overview, *recording,
      {[](void* stop) { return WaitForEvent(*static_cast<Event*>(stop), 0); }, &overview.stop});
  bool goesOn = maker.Make();
  bool much = false;
  for (uint32_t looks = 0; goesOn && !WaitForEvent(overview.stop, kLookForGrowth_ms); ++looks) {
    static_cast<void>(maker.HasGrown(much));
    if (!much || looks < kLooksBetween) continue;
    goesOn = maker.Make();
    much = false;
    looks = 0;
  }
}

void Empty(Overview& overview) {
  const Locked held(overview.lock);
  std::fill(std::begin(overview.columns), std::end(overview.columns), OverviewColumn{});
  overview.reach_m = 0.0f;
  overview.fileSize = 0;
  overview.begin_ms = overview.end_ms = kNoRecordedTime;
  ++overview.changes;
}

// For the life of the process.
Overview* NewOverview() {
  auto* const overview = static_cast<Overview*>(AllocateZeroed(sizeof(Overview)));
  if (overview == nullptr || !MakeEvent(overview->stop, ResetMode::manual)) return nullptr;
  MakeLock(overview->lock);
  Empty(*overview);
  return overview;
}

}  // namespace

void BeginOverview(AppState& state) {
  if (state.replay.overview == nullptr) state.replay.overview = NewOverview();
  Overview* const overview = state.replay.overview;
  if (overview == nullptr || overview->thread != Handle::null ||
      !PathOfFile(LoadShared(state.inputFileA), overview->path))
    return;
  Reset(overview->stop);
  overview->thread = StartThread(MakeOverview, overview);
}

void EndOverview(AppState& state) {
  Overview* const overview = state.replay.overview;
  if (overview == nullptr || overview->thread == Handle::null) return;
  Signal(overview->stop);
  static_cast<void>(WaitForThread(overview->thread, kWaitForever));
  CloseThread(overview->thread);
  overview->thread = Handle::null;
  Empty(*overview);
}

}  // namespace tw
