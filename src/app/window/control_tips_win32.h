// Shows what the main window's controls do while the mouse rests on them, those too that are grey, and why a
// field of a dialog is. GUI thread.
#pragma once

#include <windows.h>

#include "app/state/app_state.h"

namespace tw {

// Makes the window of the tips, once, when the controls are there. Null when the system cannot; then there
// are none.
HWND PrepareControlTips(const AppState& state);

// The main window's WM_NOTIFY: gives a tip that is about to be shown its text.
void AnswerTipRequest(const AppState& state, NMHDR& request);

// A window for the tips of a dialog, whose end is its own.
HWND MakeTips(HWND dialog);

// Why a grey control of the dialog is so.
void AddGreyTip(HWND tips, HWND dialog, HWND control, const wchar_t* reason);

}  // namespace tw
