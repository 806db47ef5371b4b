// How the main window shows what has changed of the run; TellRunChanged does the rest. GUI thread.
#pragma once

#include "acquisition/link_return.h"
#include "app/state/app_state.h"

namespace tw {

// Shows in the status bar at which port the GPS receiver is, or that there is none.
void ShowReceiverPort(AppState& state);

// Shows in the status bar that nothing is connected.
void ShowDisconnected(AppState& state);

// Shows once a second why a run waits for its device, and for how long; when it is back, that it is
// connected.
void ShowAway(AppState& state, AwayFor away, uint32_t away_s);

// The system is kept awake while a run records, and let sleep at its end.
void RefreshAwake(AppState& state);

}  // namespace tw
