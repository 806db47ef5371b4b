// "Find device": two lists to tick in, and what the search tells of each port.
#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include <algorithm>
#include <cinttypes>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "app/settings/control_states.h"
#include "app/settings/link_texts.h"
#include "app/settings/port_selectors.h"
#include "app/state/posts.h"
#include "app/window/control_ids.h"
#include "app/window/control_tips_win32.h"
#include "app/window/dialogs_win32.h"
#include "app/window/search_thread_win32.h"
#include "app/window/view_placement_win32.h"
#include "app/window/window_handles_win32.h"
#include "base/text_format.h"
#include "display/scaling.h"

namespace tw {
namespace {

enum Column : int { kPort, kSpeed, kAnswer };

struct FindDialog {
  AppState& state;
  HWND window = nullptr;
  std::shared_ptr<Search> search = {};  // null: none runs
  std::shared_ptr<Search> former = {};  // cancelled, and perhaps not over
  std::vector<int> rows = {};           // of the list, in the order of the plan
  std::vector<SearchNews> found = {};   // the devices, `port` being the row
};

FindDialog& DialogOf(HWND window) {
  return *reinterpret_cast<FindDialog*>(GetWindowLongPtrW(window, DWLP_USER));
}

HWND Item(const FindDialog& dialog, int id) {
  return GetDlgItem(dialog.window, id);
}

void AddColumn(HWND list, int column, const wchar_t* title, int width) {
  LVCOLUMNW description{};
  description.mask = LVCF_TEXT | LVCF_WIDTH;
  description.pszText = const_cast<wchar_t*>(title);
  description.cx = ScalePixels(width, ScreenDpi());
  SendMessageW(list, LVM_INSERTCOLUMNW, static_cast<WPARAM>(column), reinterpret_cast<LPARAM>(&description));
}

void AddRow(HWND list, const wchar_t* text, bool checked) {
  LVITEMW item{};
  item.mask = LVIF_TEXT;
  item.iItem = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
  item.pszText = const_cast<wchar_t*>(text);
  const auto row = static_cast<int>(SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)));
  ListView_SetCheckState(list, row, checked ? TRUE : FALSE);
}

void SetCell(HWND list, int row, int column, const wchar_t* text) {
  LVITEMW item{};
  item.iSubItem = column;
  item.pszText = const_cast<wchar_t*>(text);
  SendMessageW(list, LVM_SETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
}

std::wstring TextOfRow(HWND list, int row) {
  wchar_t text[kPortNameSize] = L"";
  LVITEMW item{};
  item.pszText = text;
  item.cchTextMax = kPortNameSize;
  SendMessageW(list, LVM_GETITEMTEXTW, static_cast<WPARAM>(row), reinterpret_cast<LPARAM>(&item));
  return text;
}

std::vector<int> CheckedRows(HWND list) {
  std::vector<int> rows;
  const auto count = static_cast<int>(SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
  for (int row = 0; row < count; ++row) {
    if (ListView_GetCheckState(list, row) != 0) rows.push_back(row);
  }
  return rows;
}

// The receiver's port is left alone unless it is ticked.
void FillPorts(const FindDialog& dialog, const PortChoice& receiver) {
  const HWND list = Item(dialog, ID_FIND_PORTS);
  SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
  AddColumn(list, kPort, L"Port", 80);
  AddColumn(list, kSpeed, L"Speed", 65);
  AddColumn(list, kAnswer, L"Answer", 0);
  SendMessageW(list, LVM_SETCOLUMNWIDTH, kAnswer, LVSCW_AUTOSIZE_USEHEADER);  // what is left
  for (const PortEntry& port : KnownPorts(dialog.state)) {
    AddRow(list, port.name, std::wstring_view(port.name) != receiver.name);
  }
}

void FillSpeeds(const FindDialog& dialog) {
  const HWND list = Item(dialog, ID_FIND_SPEEDS);
  SendMessageW(list, LVM_SETEXTENDEDLISTVIEWSTYLE, 0, LVS_EX_CHECKBOXES | LVS_EX_FULLROWSELECT);
  AddColumn(list, 0, L"", 80);
  for (const int32_t speed_bps : DeviceSpeeds()) {
    wchar_t text[16];
    FormatWide(text, "%" PRId32, speed_bps);
    AddRow(list, text, true);
  }
}

// The one of the row that is selected; null when there is none.
const SearchNews* ChosenDevice(const FindDialog& dialog) {
  const LRESULT row =
      SendMessageW(Item(dialog, ID_FIND_PORTS), LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_SELECTED);
  for (const SearchNews& device : dialog.found) {
    if (row >= 0 && device.port == static_cast<size_t>(row)) return &device;
  }
  return nullptr;
}

// A button that is greyed gives the keyboard to the next one.
void Enable(const FindDialog& dialog, int id, bool enabled) {
  const HWND control = Item(dialog, id);
  if (!enabled && GetFocus() == control) SendMessageW(dialog.window, WM_NEXTDLGCTL, 0, FALSE);
  EnableWindow(control, enabled ? TRUE : FALSE);
}

void Refresh(const FindDialog& dialog) {
  const bool searches = dialog.search != nullptr;
  const bool ready =
      !CheckedRows(Item(dialog, ID_FIND_PORTS)).empty() && !CheckedRows(Item(dialog, ID_FIND_SPEEDS)).empty();
  SetDlgItemTextW(dialog.window, ID_FIND_SEARCH, searches ? L"Cancel" : L"Sea&rch");
  Enable(dialog, ID_FIND_SEARCH, searches || ready);
  Enable(dialog, IDOK, ChosenDevice(dialog) != nullptr);
}

void Tell(const FindDialog& dialog, const wchar_t* text) {
  SetDlgItemTextW(dialog.window, ID_FIND_STATE, text);
}

// The speed that is chosen in the main window comes first, as the likeliest; then the others from the highest
// on.
SearchPlan PlanOf(const FindDialog& dialog) {
  PortChoice device{};
  PortChoice receiver{};
  ReadPortChoices(dialog.state, device, receiver);
  SearchPlan plan;
  for (const int row : dialog.rows) plan.ports.emplace_back(TextOfRow(Item(dialog, ID_FIND_PORTS), row));
  for (const int row : CheckedRows(Item(dialog, ID_FIND_SPEEDS)))
    plan.speeds_bps.insert(plan.speeds_bps.begin(), DeviceSpeeds()[static_cast<size_t>(row)]);
  const auto chosen = std::find(plan.speeds_bps.begin(), plan.speeds_bps.end(), device.speed_bps);
  if (chosen != plan.speeds_bps.end()) std::rotate(plan.speeds_bps.begin(), chosen, chosen + 1);
  return plan;
}

void StopSearch(FindDialog& dialog, const wchar_t* text) {
  if (dialog.search == nullptr) return;
  dialog.search->Cancel();
  dialog.former = std::exchange(dialog.search, nullptr);
  Tell(dialog, text);
}

void StartSearch(FindDialog& dialog) {
  const HWND ports = Item(dialog, ID_FIND_PORTS);
  dialog.rows = CheckedRows(ports);
  dialog.found.clear();
  for (const int row : dialog.rows) {
    SetCell(ports, row, kSpeed, L"");
    SetCell(ports, row, kAnswer, L"");
  }
  dialog.search =
      std::make_shared<Search>(dialog.window, PlanOf(dialog), std::exchange(dialog.former, nullptr));
  if (Search::Begin(dialog.search)) return Tell(dialog, L"Searching...");
  dialog.search = nullptr;
  Tell(dialog, L"The system has no thread to give.");
}

void Take(FindDialog& dialog, const SearchNews& news) {
  if (news.port >= dialog.rows.size()) return;
  const HWND ports = Item(dialog, ID_FIND_PORTS);
  const int row = dialog.rows[news.port];
  wchar_t text[kStatusTextSize];
  const bool ofAll = news.outcome == SearchOutcome::refused ||
                     (news.outcome == SearchOutcome::heard && news.heard != Heard::receiver);
  FormatWide(text, "%" PRId32, news.speed_bps);
  SetCell(ports, row, kSpeed, ofAll ? L"" : text);
  FormatNews(news, text);
  SetCell(ports, row, kAnswer, text);
  if (news.outcome != SearchOutcome::device) return;
  dialog.found.push_back(news);
  dialog.found.back().port = static_cast<size_t>(row);
  if (dialog.found.size() > 1) return;
  ListView_SetItemState(ports, row, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
}

void EndSearch(FindDialog& dialog) {
  dialog.search = nullptr;
  wchar_t text[64];
  const size_t count = dialog.found.size();
  FormatWide(text,
             count == 0   ? "No device was found."
             : count == 1 ? "One device was found."
                          : "%zu devices were found.",
             count);
  Tell(dialog, text);
}

void TakeNews(FindDialog& dialog) {
  if (dialog.search == nullptr) return;
  bool over = false;
  for (const SearchNews& news : dialog.search->TakeNews(over)) Take(dialog, news);
  if (over) EndSearch(dialog);
  Refresh(dialog);
  const bool offers = over && GetFocus() == Item(dialog, ID_FIND_SEARCH) && ChosenDevice(dialog) != nullptr;
  if (offers) SendMessageW(dialog.window, WM_NEXTDLGCTL, reinterpret_cast<WPARAM>(Item(dialog, IDOK)), TRUE);
}

void UseDevice(FindDialog& dialog) {
  const SearchNews* const device = ChosenDevice(dialog);
  if (device == nullptr) return;
  SelectDevicePort(dialog.state,
                   TextOfRow(Item(dialog, ID_FIND_PORTS), static_cast<int>(device->port)).c_str());
  SelectDeviceSpeed(dialog.state, device->speed_bps);
  EndDialog(dialog.window, IDOK);
}

INT_PTR OnCommand(FindDialog& dialog, int id) {
  switch (id) {
    case ID_FIND_SEARCH:
      if (dialog.search != nullptr) {
        StopSearch(dialog, L"The search was cancelled.");
      } else {
        StartSearch(dialog);
      }
      Refresh(dialog);
      return TRUE;
    case IDOK:
      UseDevice(dialog);
      return TRUE;
    case IDCANCEL:
      EndDialog(dialog.window, IDCANCEL);
      return TRUE;
    default:
      return FALSE;
  }
}

void OnInit(HWND window, LPARAM parameter) {
  SetWindowLongPtrW(window, DWLP_USER, parameter);
  FindDialog& dialog = DialogOf(window);
  dialog.window = window;
  PortChoice device{};
  PortChoice receiver{};
  ReadPortChoices(dialog.state, device, receiver);
  FillPorts(dialog, receiver);
  FillSpeeds(dialog);
  Refresh(dialog);
  PrepareControlTips(window, ID_DIALOG_FIND);
}

INT_PTR CALLBACK FindDialogProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_INITDIALOG) {
    OnInit(window, lParam);
    return TRUE;
  }
  if (GetWindowLongPtrW(window, DWLP_USER) == 0) return FALSE;
  FindDialog& dialog = DialogOf(window);
  switch (message) {
    case WM_COMMAND:
      return OnCommand(dialog, LOWORD(wParam));
    case WM_NOTIFY:
      if (reinterpret_cast<const NMHDR*>(lParam)->code == static_cast<UINT>(LVN_ITEMCHANGED)) Refresh(dialog);
      return FALSE;
    case kSearchMessage:
      TakeNews(dialog);
      return TRUE;
    case WM_DESTROY:
      StopSearch(dialog, L"");
      return TRUE;
    default:
      return FALSE;
  }
}

}  // namespace

void ShowFindDialog(AppState& state) {
  if (StateOfProgram(state) != ProgramState::idle) return;
  state.startsByItself = 0;
  FindDialog dialog{state};
  DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(ID_DIALOG_FIND), MainWindow(state),
                  FindDialogProcedure, reinterpret_cast<LPARAM>(&dialog));
}

}  // namespace tw
