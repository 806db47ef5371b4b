// The debugger's output window; on a system without one the text goes nowhere.
#pragma once

namespace tw {

// Any thread. The text carries its own line end.
void WriteDebugText(const wchar_t* text);

}  // namespace tw
