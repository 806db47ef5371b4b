#include <windows.h>
// Needs what windows.h declares.
#include <shlobj.h>

#include <iterator>

#include "app/settings/persistent_settings.h"
#include "app/state/app_state.h"
#include "app/state/event_log.h"
#include "app/window/control_ids.h"
#include "app/window/control_tips_win32.h"
#include "app/window/dialogs_win32.h"
#include "app/window/window_handles_win32.h"
#include "platform/file.h"
#include "platform/system_error.h"

namespace tw {
namespace {

// Folders of the file system alone, none of a network below its domain, computers; an edit box, the new
// style.
constexpr UINT kBrowserFlags =
    BIF_RETURNONLYFSDIRS | BIF_DONTGOBELOWDOMAIN | BIF_EDITBOX | BIF_NEWDIALOGSTYLE | BIF_BROWSEFORCOMPUTER;
static_assert(kBrowserFlags == 0x1053);
constexpr size_t kFolderLimit = 260;  // characters that can be entered

// The first selection may be lost on the way, while the tree is still being filled, so it is asked for once
// more behind that. Some folders come up with "OK" greyed; only a posted message changes that.
int CALLBACK OnBrowse(HWND browser, UINT message, LPARAM, LPARAM folder) {
  if (message == BFFM_INITIALIZED) {
    SendMessageW(browser, BFFM_SETSELECTIONW, TRUE, folder);
    PostMessageW(browser, BFFM_SETSELECTIONW, TRUE, folder);
    PostMessageW(browser, BFFM_ENABLEOK, 0, TRUE);
  }
  return 0;
}

void Browse(HWND dialog) {
  const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  wchar_t standing[kFolderLimit + 1];
  GetDlgItemTextW(dialog, ID_FOLDER_EDIT, standing, static_cast<int>(std::size(standing)));
  wchar_t name[MAX_PATH];
  BROWSEINFOW request{};
  request.hwndOwner = dialog;
  request.pszDisplayName = name;
  request.lpszTitle = L"Please select new working folder";
  request.ulFlags = kBrowserFlags;
  request.lpfn = OnBrowse;
  request.lParam = reinterpret_cast<LPARAM>(standing);
  if (PIDLIST_ABSOLUTE chosen = SHBrowseForFolderW(&request)) {
    wchar_t path[MAX_PATH];
    if (SHGetPathFromIDListW(chosen, path) != FALSE) SetDlgItemTextW(dialog, ID_FOLDER_EDIT, path);
    CoTaskMemFree(chosen);
  }
  if (SUCCEEDED(com)) CoUninitialize();
}

// And back to the name, which is to be corrected.
void Refuse(HWND dialog, uint32_t code) {
  wchar_t text[512];
  SystemErrorText(code, text);
  MessageBoxW(dialog, text, L"GetLastError", MB_OK);
  SetFocus(GetDlgItem(dialog, ID_FOLDER_EDIT));
}

// The folder is there, or has been made. A name that could be stored but not be read back is refused before
// anything is made of it.
void TakeFolder(HWND dialog, AppState& state) {
  wchar_t folder[kFolderLimit + 1];
  const UINT length = GetDlgItemTextW(dialog, ID_FOLDER_EDIT, folder, static_cast<int>(std::size(folder)));
  if (length > kMaxWorkingFolder) return Refuse(dialog, ERROR_FILENAME_EXCED_RANGE);
  if (!IsFolder(folder) && !CreateFolder(folder)) return Refuse(dialog, LastSystemError());
  SaveWorkingFolder(folder);
  LoadWorkingFolder(state);
  DirectEventLog(state);
  EndDialog(dialog, IDOK);
}

INT_PTR CALLBACK FolderDialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrW(dialog, DWLP_USER, lParam);
    SendDlgItemMessageW(dialog, ID_FOLDER_EDIT, EM_SETLIMITTEXT, kFolderLimit, 0);
    SetDlgItemTextW(dialog, ID_FOLDER_EDIT, reinterpret_cast<AppState*>(lParam)->workingFolder);
    PrepareControlTips(dialog, ID_DIALOG_FOLDER);
    return TRUE;
  }
  if (message != WM_COMMAND) return FALSE;
  switch (LOWORD(wParam)) {
    case ID_FOLDER_BROWSE:
      Browse(dialog);
      return TRUE;
    case IDOK:
      TakeFolder(dialog, *reinterpret_cast<AppState*>(GetWindowLongPtrW(dialog, DWLP_USER)));
      return TRUE;
    case IDCANCEL:
      EndDialog(dialog, IDCANCEL);
      return TRUE;
    default:
      return FALSE;
  }
}

}  // namespace

void ShowFolderDialog(AppState& state) {
  DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(ID_DIALOG_FOLDER), MainWindow(state),
                  FolderDialogProcedure, reinterpret_cast<LPARAM>(&state));
}

}  // namespace tw
