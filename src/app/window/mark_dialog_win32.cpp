// "Set Mark": the word of a mark whose moment was taken before anybody typed.
#include <windows.h>

#include "app/state/event_marks.h"
#include "app/window/control_ids.h"
#include "app/window/control_tips_win32.h"
#include "app/window/dialogs_win32.h"
#include "app/window/event_mark.h"
#include "app/window/window_handles_win32.h"

namespace tw {
namespace {

struct Word {
  wchar_t text[kMarkWordSize];
};

INT_PTR CALLBACK MarkProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    SendDlgItemMessageW(dialog, ID_MARK_WORD, EM_SETLIMITTEXT, kMarkWordSize - 1, 0);
    PrepareControlTips(dialog, ID_DIALOG_MARK);
    return TRUE;
  }
  if (message != WM_COMMAND) return FALSE;
  const int id = LOWORD(wParam);
  if (id != IDOK && id != IDCANCEL) return FALSE;
  Word& word = *reinterpret_cast<Word*>(GetWindowLongPtrW(dialog, DWLP_USER));
  GetDlgItemTextW(dialog, ID_MARK_WORD, word.text, static_cast<int>(kMarkWordSize));
  EndDialog(dialog, id);
  return TRUE;
}

}  // namespace

void ShowMarkDialog(AppState& state) {
  const auto moment = TakeMoment(state);
  if (!moment) return;
  Word word{};
  const INT_PTR id = DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(ID_DIALOG_MARK),
                                     MainWindow(state), MarkProcedure, reinterpret_cast<LPARAM>(&word));
  if (id == IDOK) SetMark(state, *moment, word.text);
}

}  // namespace tw
