// What the operator is told of a control of the main window, of the playback bar and of the small dialogs
// while the mouse rests on it. Pure; GUI thread.
#pragma once

#include <cstddef>
#include <span>

#include "app/state/app_state.h"

namespace tw {

struct ControlTip {
  int window;  // in which it stands: ID_DIALOG_..., or ID_PLAYBACK_BAR
  int id;
  const wchar_t* text;              // what the control does, with its key
  const wchar_t* reason = nullptr;  // why it is grey when it is; the main window's depend on what goes on
};

[[nodiscard]] std::span<const ControlTip> ControlTips();

inline constexpr size_t kControlTipSize = 400;

// A text and, below it, a reason; null or empty: none.
void ComposeTip(std::span<wchar_t> tip, const wchar_t* text, const wchar_t* reason);

// The text of a control of the main window and, below it, why the control is grey where it is; empty for one
// that is not of the table.
void FormatControlTip(const AppState& state, int id, std::span<wchar_t> tip);
// The same of the other windows.
void FormatControlTip(int window, int id, bool grey, std::span<wchar_t> tip);

}  // namespace tw
