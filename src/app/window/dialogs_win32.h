// The smaller dialogs. GUI thread; each is modal to the main window.
#pragma once

#include "app/state/app_state.h"

namespace tw {

void ShowAboutDialog(AppState& state);
void ShowShortcutsDialog(AppState& state);

// "Working folder change": makes the folder if need be, stores it; the next record file goes there.
void ShowFolderDialog(AppState& state);

// "Change Device Baudrate": what is chosen goes to the device at once.
void ShowSpeedDialog(AppState& state);

// "Find device": looks for one on other ports and at other speeds; what is used goes into the selectors. Only
// while idle; no start comes by itself from then on.
void ShowFindDialog(AppState& state);

// "Options": what is entered is stored, and holds from then on.
void ShowOptions(AppState& state);

// "Set Mark": a mark with a word, on the ping that was the newest when this was asked for.
void ShowMarkDialog(AppState& state);

}  // namespace tw
