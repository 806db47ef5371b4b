// Which controls can be used: one table, one row a control, one column a state of the program. GUI thread.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"

namespace tw {

enum class ProgramState : uint8_t { idle, running, playing, paused, converting };
inline constexpr int kProgramStates = 5;

// Derived from the record alone. A played file that is paused or has come to its end is `paused`.
[[nodiscard]] ProgramState StateOfProgram(const AppState& state);

// Enables and disables the main window's controls and menu entries to fit; after each change of what the
// program does and of the device's settings.
void RefreshControlStates(AppState& state);

// Why one of these cannot be used at the moment, as the operator is told it; null when it can be used.
[[nodiscard]] const wchar_t* WhyDisabled(const AppState& state, int id);

}  // namespace tw
