#include "app/window/dialogs_win32.h"

#include <windows.h>

#include "app/window/control_ids.h"
#include "app/window/window_handles_win32.h"

namespace tw {
namespace {

// "OK", Escape and the close box all end it.
INT_PTR CALLBACK TextDialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  if (message == WM_INITDIALOG) return TRUE;
  if (message != WM_COMMAND) return FALSE;
  const int id = LOWORD(wParam);
  if (id != IDOK && id != IDCANCEL) return FALSE;
  EndDialog(dialog, id);
  return TRUE;
}

void ShowTextDialog(AppState& state, int id) {
  DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(id), MainWindow(state), TextDialogProcedure, 0);
}

}  // namespace

void ShowAboutDialog(AppState& state) {
  ShowTextDialog(state, ID_DIALOG_ABOUT);
}

void ShowShortcutsDialog(AppState& state) {
  ShowTextDialog(state, ID_DIALOG_SHORTCUTS);
}

}  // namespace tw
