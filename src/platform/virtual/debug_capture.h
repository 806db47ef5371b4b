// Listening to the debug output.
#pragma once

#include <string>
#include <vector>

namespace tw {

// Collects what WriteDebugText() is given from now on, by any thread.
void StartDebugCapture();
// The texts so far, in order; they are forgotten.
[[nodiscard]] std::vector<std::wstring> TakeDebugTexts();
void StopDebugCapture();

}  // namespace tw
