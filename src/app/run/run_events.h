// What a run tells the log of events (app/state/event_log.h); nothing of it happens while that is off. GUI
// thread.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// The device is identified; from now on the run is watched.
void LogRunBegins(AppState& state);
void LogRunEnds(AppState& state);

// The program ends, in the middle of a run or not.
void LogProgramEnds(AppState& state);

// The settings in force are others, by way of this command.
void LogSettingsChanged(AppState& state, const char* command);

// A record file of this name was opened, or taken back before it held a ping. Of its closing the writer tells
// (acquisition/record_writer.h).
void LogOpenedFile(AppState& state, const char* name);
void LogRemovedFile(AppState& state, const char* name);

// To be called once a second with the clock's time: a lost link, a lost receiver, and what the wall clock
// jumps against the millisecond clock, from 2 s on. Each loss is told once.
void WatchEvents(AppState& state, uint32_t now_ms);

}  // namespace tw
