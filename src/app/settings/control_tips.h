// What the operator is told of a control of the main window while the mouse rests on it. Pure; GUI thread.
#pragma once

#include <cstddef>
#include <span>

#include "app/state/app_state.h"

namespace tw {

struct ControlTip {
  int id;
  const wchar_t* text;  // what the control does, with its key
};

[[nodiscard]] std::span<const ControlTip> ControlTips();

inline constexpr size_t kControlTipSize = 400;

// The control's text and, below it, why the control is grey where it is; empty for one that is not of the
// table.
void FormatControlTip(const AppState& state, int id, std::span<wchar_t> tip);

}  // namespace tw
