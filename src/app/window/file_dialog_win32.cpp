#include <windows.h>
// Needs what windows.h declares.
#include <commdlg.h>

#include <memory>
#include <new>

#include "app/window/ui.h"
#include "app/window/window_handles_win32.h"
#include "base/text_format.h"

namespace tw {
namespace {

constexpr DWORD kSelectionSize = 66'816;  // characters
constexpr wchar_t kFilter[] = L"LOG Files\0*.LOG\0BIN Files\0*.BIN\0All Files\0*.*\0";

void TellFailure(AppState& state, DWORD code) {
  wchar_t text[128];
  FormatWide(text, "The file dialog cannot be shown (code %04lX).", static_cast<unsigned long>(code));
  ShowBox(state, text, L"Error", BoxIcon::error);
}

// One file is its path; several are the folder and then their names, each ended by a zero.
void TakeApart(const wchar_t* selection, WORD nameOffset, std::vector<std::wstring>& paths) {
  const std::wstring first = selection;
  if (nameOffset <= first.size()) {
    paths.push_back(first);
    return;
  }
  for (const wchar_t* name = selection + first.size() + 1; *name != L'\0';) {
    const std::wstring file = name;
    paths.push_back(first + L"\\" + file);
    name += file.size() + 1;
  }
}

}  // namespace

bool ChooseInputFiles(AppState& state, std::vector<std::wstring>& paths) {
  const std::unique_ptr<wchar_t[]> selection(new (std::nothrow) wchar_t[kSelectionSize]());
  if (selection == nullptr) return false;
  OPENFILENAMEW request{};
  request.lStructSize = sizeof(request);
  request.hwndOwner = MainWindow(state);
  request.lpstrFilter = kFilter;
  request.nFilterIndex = 1;
  request.lpstrFile = selection.get();
  request.nMaxFile = kSelectionSize;
  request.lpstrInitialDir = state.workingFolder;
  request.Flags = OFN_EXPLORER | OFN_ENABLESIZING | OFN_ALLOWMULTISELECT | OFN_FILEMUSTEXIST |
                  OFN_PATHMUSTEXIST | OFN_HIDEREADONLY | OFN_NOCHANGEDIR;
  if (GetOpenFileNameW(&request) == FALSE) {
    const DWORD code = CommDlgExtendedError();
    if (code != 0) TellFailure(state, code);
    return false;
  }
  TakeApart(selection.get(), request.nFileOffset, paths);
  return true;
}

}  // namespace tw
