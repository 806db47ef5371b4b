// What the keys of the main window do beside the controls that they press. GUI thread.
#pragma once

#include <windows.h>

#include "app/state/app_state.h"

namespace tw {

// A message of the queue that is a key of the window and has been carried out: an accelerator, Tab to the
// next control, or Esc where the controls are hidden.
[[nodiscard]] bool CarryOutKey(AppState& state, HACCEL accelerators, MSG& message);

// A command of a key that no control has; false for any other.
[[nodiscard]] bool HandleKeyCommand(AppState& state, int id);

// The accelerator of a check box: ticks or clears it, as a click on it does before its command comes. Without
// effect on what is no check box.
void TickByKey(AppState& state, int id);

}  // namespace tw
