// The dialogs that only show something. GUI thread; each is modal to the main window.
#pragma once

#include "app/app_state.h"

namespace tw {

void ShowAboutDialog(AppState& state);
void ShowShortcutsDialog(AppState& state);

}  // namespace tw
