// The options that change what is on the screen: in force at once. GUI thread.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// Makes colours and places as the options say, and asks for a repaint. At start-up and after each change.
void PutDisplayOptionsInForce(AppState& state);

// Shows what is chosen on the page Display while the sheet is open; the other options stay as they are.
void TryDisplayOptions(AppState& state, const Options& shown);

}  // namespace tw
