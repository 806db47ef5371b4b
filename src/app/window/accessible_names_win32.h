// What is read aloud for controls whose text is no word. GUI thread.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// To be called once when the controls exist. Other controls are read by their text or the label ahead of
// them.
void NameControls(const AppState& state);

}  // namespace tw
