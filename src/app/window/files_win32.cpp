#include "app/window/files_win32.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "app/settings/recent_recordings.h"
#include "app/window/control_ids.h"
#include "app/window/ui.h"
#include "app/window/window_handles_win32.h"

namespace tw {

std::vector<std::wstring> PathsOf(HDROP drop) {
  constexpr UINT kMost = 3;
  constexpr UINT kLongestPath = 32'767;
  std::vector<std::wstring> paths;
  const UINT count = std::min(DragQueryFileW(drop, 0xFFFFFFFF, nullptr, 0), kMost);
  for (UINT i = 0; i < count; ++i) {
    const UINT length = std::min(DragQueryFileW(drop, i, nullptr, 0), kLongestPath);
    std::wstring path(length + 1, L'\0');
    path.resize(std::min(DragQueryFileW(drop, i, path.data(), length + 1), length));
    paths.push_back(std::move(path));
  }
  return paths;
}

void ShowRecentInMenu(HMENU menu) {
  const UINT first = GetMenuItemID(menu, 0);
  if (first != ID_MENU_RECENT) return;
  while (DeleteMenu(menu, 0, MF_BYPOSITION) != FALSE) {
  }
  const std::vector<RecordingPaths> recent = LoadRecent();
  for (size_t i = 0; i < recent.size(); ++i) {
    AppendMenuW(menu, MF_STRING, ID_MENU_RECENT + i, MenuTextOf(recent[i], i).c_str());
  }
  if (recent.empty()) AppendMenuW(menu, MF_STRING | MF_GRAYED, ID_MENU_RECENT, L"None");
}

// By the full path of the system's own program: one of that name in another folder is not asked.
void OpenFolder(AppState& state, const wchar_t* path, bool select) {
  wchar_t explorer[MAX_PATH];
  const UINT length = GetWindowsDirectoryW(explorer, MAX_PATH);
  constexpr wchar_t kName[] = L"\\explorer.exe";
  if (length == 0 || length + std::size(kName) > MAX_PATH) return;
  lstrcpyW(explorer + length, kName);
  // No name of a file holds a quotation mark.
  const std::wstring parameters = (select ? L"/select,\"" : L"\"") + std::wstring(path) + L"\"";
  ShellExecuteW(MainWindow(state), nullptr, explorer, parameters.c_str(), nullptr, SW_SHOWNORMAL);
}

}  // namespace tw
