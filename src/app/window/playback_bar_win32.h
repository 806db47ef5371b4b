// The playback bar's window: pace, gaps, times and the place to go to, above the overview of the recording.
// It exists from the first playback that shows it. GUI thread.
#pragma once

#include <windows.h>

#include "app/state/app_state.h"
#include "app/window/window_layout.h"

namespace tw {

[[nodiscard]] bool RegisterPlaybackBarClass(HINSTANCE instance);

// Shows the bar there, or hides it. One that appears takes the focus if the main window has it, so that its
// keys count.
void ShowPlaybackBar(AppState& state, const Box& place, bool visible);

// Null as long as there is none.
[[nodiscard]] HWND PlaybackBarOf(const AppState& state);

// The main window itself has got the focus: the bar takes it while it is shown.
void GiveFocusToBar(const AppState& state);

// Whether a key for this window is one of the bar's: that counts while the echogram, the slider or the bar
// itself has the focus, not the fields in it.
[[nodiscard]] bool TakesReplayKeys(const AppState& state, HWND focus);

}  // namespace tw
