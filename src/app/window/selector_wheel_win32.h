// Keeps the wheel, which zooms in this program, from changing what selectors show. GUI thread.
#pragma once

#include <windows.h>

namespace tw {

// From now on the selectors of this window take no notice of the wheel unless their list is dropped down.
void KeepWheelFromSelectors(HWND window);

}  // namespace tw
