// Shows what a window's controls do while the mouse rests on them, those too that are grey, and why they are.
// GUI thread.
#pragma once

#include <windows.h>

#include <span>

namespace tw {

// Gives a tip that is about to be shown its text; empty: none is shown. `number` tells which window it is, as
// in the table of tips.
using TipText = void (*)(HWND window, int number, int id, std::span<wchar_t> tip);

// The table's own text of a control, with its reason where it is grey.
void TellControlTip(HWND window, int number, int id, std::span<wchar_t> tip);

// Makes the window of the tips, once, when the controls are there, with one for each row of the table that is
// of this window. Null when the system cannot; then there are none. Its end is that of `window`.
HWND PrepareControlTips(HWND window, int number, TipText text = TellControlTip);

// Those of the main window.
HWND PrepareMainTips(HWND window);

// One more control, which stays where it is.
void AddControlTip(HWND tips, HWND control);

// For a place of the window, or its new place.
void PlaceTip(HWND tips, HWND window, int id, const RECT& place);

// A window for the tips of a dialog, whose end is its own.
HWND MakeTips(HWND dialog);

// Why a grey control of the dialog is so.
void AddGreyTip(HWND tips, HWND dialog, HWND control, const wchar_t* reason);

}  // namespace tw
