// Files that come from the system's own windows, and the menu of those that were played last. GUI thread.
#pragma once

#include <windows.h>

#include <shellapi.h>

#include <string>
#include <vector>

namespace tw {

// What was dropped; of more than three the first three: that many are no recording either.
[[nodiscard]] std::vector<std::wstring> PathsOf(HDROP drop);

// The main window's WM_INITMENUPOPUP: fills the menu of recent recordings; leaves any other.
void ShowRecentInMenu(HMENU menu);

}  // namespace tw
