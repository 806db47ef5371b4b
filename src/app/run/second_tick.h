// What a run has to have done for it by the clock. GUI thread.
#pragma once

#include <cstdint>

#include "acquisition/link_return.h"
#include "app/state/app_state.h"

namespace tw {

struct DueNow {
  bool linkLost;  // the worker of the run has flagged it, and still counts as running until the run is ended
  bool choice;    // one second is over since the last choice of range or output
  AwayFor away;   // the run waits for its device to come back, and why
  uint32_t away_s;
  bool recordingEnded;  // by the disk, since the last call
};

// To be called once a second, or more often, with the clock's time. Asks for the screenshots of a run, and
// splits its recording. A choice is due until it is forgotten, a lost link until the run is ended.
[[nodiscard]] DueNow TickSecond(AppState& state, uint32_t now_ms);

// Range or output was chosen anew: a running device gets it by itself a second after the last choice.
void KeepChoice(AppState& state, uint32_t now_ms);
void ForgetChoice(AppState& state);

// Screenshots are due every 135 s, or 67 s, as long as "Auto Capture" is ticked and a live worker runs. To be
// called when one of these has changed; a period that goes on keeps its beat. 0: none are due.
uint32_t CapturePeriod(AppState& state, uint32_t now_ms);

}  // namespace tw
