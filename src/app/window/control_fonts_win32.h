// Fonts of those controls of the main window that the dialog's own does not suit. GUI thread, once, when the
// controls exist.
#pragma once

#include "app/state/app_state.h"

namespace tw {

// The arrows on the playback buttons: fonts of dialogs often lack them.
void SetArrowFont(const AppState& state);

// Letters small enough for the longest name of an output, of any family, in the narrow column of controls.
void FitOutputFont(const AppState& state);

}  // namespace tw
