// What goes on in a run without being asked for: how long the recording lasts, at which rate, what room the
// disk has left, whether the disk has ended it and may take it up again. GUI thread; waits for no disk: the
// room is asked for by a thread of its own, one at a time, so that a folder on the network holds up nobody.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"

namespace tw {

// To be called once a second, or more often, with the clock's time. True once when the disk has ended the
// recording, or has not let it begin. Where the operator wants that, a recording that a full disk has ended
// goes on in fresh files as soon as there is room.
[[nodiscard]] bool WatchRun(AppState& state, uint32_t now_ms);

// A live run of which "Record Data" wants a recording.
[[nodiscard]] bool WantsRecording(AppState& state);

// How long the present recording has lasted.
[[nodiscard]] uint64_t Recorded_ms(const AppState& state, uint32_t now_ms);

// Why the recording that is wanted does not go into its files.
[[nodiscard]] RecordFault FaultOfRecording(const AppState& state);

// How long the run that goes on has had no ping, in whole seconds, once that is worth telling: from three
// seconds and three ping intervals on. 0: pings come, or no run goes on.
[[nodiscard]] uint32_t SecondsWithoutPing(const AppState& state, uint32_t now_ms);

}  // namespace tw
