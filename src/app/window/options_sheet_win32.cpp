// "Options": one page for each kind of option, made from the table of options.
#include <windows.h>

#include <commctrl.h>
#include <prsht.h>

#include <cinttypes>
#include <cwchar>

#include "app/run/run_control.h"
#include "app/settings/control_tips.h"
#include "app/settings/option_form.h"
#include "app/settings/port_selectors.h"
#include "app/window/commands.h"
#include "app/window/control_ids.h"
#include "app/window/control_tips_win32.h"
#include "app/window/dialogs_win32.h"
#include "app/window/display_options.h"
#include "app/window/window_handles_win32.h"
#include "base/text_format.h"

namespace tw {
namespace {

constexpr LPARAM kTrackPage = 5;  // of a click beside the thumb

// What the sheet was opened with, and what it was left with. GUI thread.
struct Sheet {
  AppState* state;
  Options entered;
  bool running;
  bool accepted;
  PortChoice device;
  PortChoice receiver;
};

struct Page {
  Sheet* sheet;
  OptionPage page;
  OptionForm form;
};

struct ControlStyle {
  const wchar_t* className;
  DWORD style;
  DWORD extended;
};

ControlStyle StyleOf(const OptionItem& item) {
  switch (item.kind) {
    case OptionItemKind::check:
      return {L"Button", WS_TABSTOP | BS_AUTOCHECKBOX, 0};
    case OptionItemKind::number:
      return {L"Edit", WS_TABSTOP | ES_AUTOHSCROLL | (item.row->least < 0 ? 0u : ES_NUMBER),
              WS_EX_CLIENTEDGE};
    case OptionItemKind::address:
      return {L"Edit", WS_TABSTOP | ES_AUTOHSCROLL, WS_EX_CLIENTEDGE};
    case OptionItemKind::arrows:  // they find their number ahead of them
      return {UPDOWN_CLASSW,
              UDS_AUTOBUDDY | UDS_ALIGNRIGHT | UDS_ARROWKEYS | UDS_SETBUDDYINT | UDS_NOTHOUSANDS, 0};
    case OptionItemKind::list:
      return {L"ComboBox", WS_TABSTOP | WS_VSCROLL | CBS_DROPDOWNLIST, 0};
    case OptionItemKind::track:
      return {TRACKBAR_CLASSW, WS_TABSTOP | TBS_HORZ | TBS_NOTICKS, 0};
    case OptionItemKind::label:
    case OptionItemKind::unit:
      break;
  }
  return {L"Static", SS_LEFT, 0};
}

Page& PageOf(HWND window) {
  return *reinterpret_cast<Page*>(GetWindowLongPtrW(window, DWLP_USER));
}

const wchar_t* TextOf(const OptionItem& item) {
  switch (item.kind) {
    case OptionItemKind::check:
    case OptionItemKind::label:
      return item.row->text;
    case OptionItemKind::unit:
      return item.row->unit;
    case OptionItemKind::number:
    case OptionItemKind::arrows:
    case OptionItemKind::address:
    case OptionItemKind::list:
    case OptionItemKind::track:
      break;
  }
  return L"";
}

// What the control of this kind may hold.
void SetBounds(HWND control, const OptionItem& item) {
  const OptionRow& row = *item.row;
  if (item.kind == OptionItemKind::number || item.kind == OptionItemKind::address)
    SendMessageW(control, EM_SETLIMITTEXT, kOptionTextSize - 1, 0);
  if (item.kind == OptionItemKind::arrows)
    SendMessageW(control, UDM_SETRANGE32, static_cast<WPARAM>(row.least), row.most);
  if (item.kind == OptionItemKind::track) {
    SendMessageW(control, TBM_SETRANGEMIN, FALSE, row.least);
    SendMessageW(control, TBM_SETRANGEMAX, FALSE, row.most);
    SendMessageW(control, TBM_SETPAGESIZE, 0, kTrackPage);
  }
  if (item.kind == OptionItemKind::list) {
    for (const wchar_t* const choice : row.choices)
      SendMessageW(control, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(choice));
  }
}

void MakeControl(HWND window, const OptionItem& item) {
  const ControlStyle style = StyleOf(item);
  RECT rect{item.place.x, item.place.y, item.place.x + item.place.width, item.place.y + item.place.height};
  MapDialogRect(window, &rect);
  const HWND control = CreateWindowExW(
      style.extended, style.className, TextOf(item), WS_CHILD | WS_VISIBLE | style.style, rect.left, rect.top,
      rect.right - rect.left, rect.bottom - rect.top, window,
      reinterpret_cast<HMENU>(static_cast<INT_PTR>(item.id)), GetModuleHandleW(nullptr), nullptr);
  SendMessageW(control, WM_SETFONT, static_cast<WPARAM>(SendMessageW(window, WM_GETFONT, 0, 0)), FALSE);
  SetBounds(control, item);
}

// A slider's value stands behind it.
void ShowTrackValue(HWND window, const OptionItem& unit, int32_t value) {
  wchar_t text[kOptionTextSize];
  char name[8];
  NarrowText(name, unit.row->unit);
  FormatWide(text, "%" PRId32 " %s", value, name);
  SetDlgItemTextW(window, unit.id, text);
}

void ShowValue(HWND window, const OptionRow& row, const Options& options) {
  const HWND control = GetDlgItem(window, ControlOf(row));
  if (row.IsSwitch()) {
    SendMessageW(control, BM_SETCHECK, options.*row.value != 0 ? BST_CHECKED : BST_UNCHECKED, 0);
    return;
  }
  if (!row.choices.empty()) {
    SendMessageW(control, CB_SETCURSEL, static_cast<WPARAM>(options.*row.value), 0);
    return;
  }
  if (row.isSlider) {
    SendMessageW(control, TBM_SETPOS, TRUE, options.*row.value);
    return;
  }
  wchar_t text[kOptionTextSize];
  FormatOption(row, options, text);
  SetWindowTextW(control, text);
}

// Switches, lists and sliders as the page shows them: what cannot be wrong.
void ReadChosen(HWND window, const OptionForm& form, Options& options) {
  for (size_t i = 0; i < form.count; ++i) {
    const OptionItem& item = form.items[i];
    const HWND control = GetDlgItem(window, item.id);
    LRESULT value = 0;
    switch (item.kind) {
      case OptionItemKind::check:
        value = SendMessageW(control, BM_GETCHECK, 0, 0) == BST_CHECKED ? 1 : 0;
        break;
      case OptionItemKind::list:
        value = SendMessageW(control, CB_GETCURSEL, 0, 0);
        break;
      case OptionItemKind::track:
        value = SendMessageW(control, TBM_GETPOS, 0, 0);
        break;
      default:
        continue;
    }
    if (value >= item.row->least && value <= item.row->most)
      options.*item.row->value = static_cast<int32_t>(value);
  }
}

void RefreshUsable(HWND window) {
  const Page& page = PageOf(window);
  Options shown = page.sheet->entered;
  ReadChosen(window, page.form, shown);
  bool locked = false;
  for (size_t i = 0; i < page.form.count; ++i) {
    const OptionItem& item = page.form.items[i];
    if (item.kind == OptionItemKind::unit && item.row->isSlider)
      ShowTrackValue(window, item, shown.*item.row->value);
    const HWND control = GetDlgItem(window, item.id);
    EnableWindow(control, IsUsable(*item.row, shown, page.sheet->running) ? TRUE : FALSE);
    locked = locked || IsLocked(*item.row, page.sheet->running);
  }
  ShowWindow(GetDlgItem(window, ID_OPTIONS_NOTE), locked ? SW_SHOW : SW_HIDE);
  if (page.page == OptionPage::display || page.page == OptionPage::playback)
    TryDisplayOptions(*page.sheet->state, shown);
}

void ShowDefaults(HWND window) {
  const Page& page = PageOf(window);
  Options standard = page.sheet->entered;
  ResetPage(page.page, standard);
  for (size_t i = 0; i < page.form.count; ++i) {
    const OptionRow& row = *page.form.items[i].row;
    if (!IsLocked(row, page.sheet->running)) ShowValue(window, row, standard);
  }
  RefreshUsable(window);
}

// The sheet makes all pages as large as the largest, in its own font's measure.
void PlaceAtFoot(HWND window, int id, LONG margin, bool right) {
  const HWND control = GetDlgItem(window, id);
  RECT client{};
  RECT place{};
  RECT gap{0, 0, margin, margin};
  GetClientRect(window, &client);
  GetWindowRect(control, &place);
  MapWindowPoints(nullptr, window, reinterpret_cast<POINT*>(&place), 2);
  MapDialogRect(window, &gap);
  const LONG x = right ? client.right - gap.right - (place.right - place.left) : place.left;
  const LONG y = client.bottom - gap.bottom - (place.bottom - place.top);
  SetWindowPos(control, HWND_BOTTOM, x, y, 0, 0, SWP_NOSIZE);
}

void OnSize(HWND window) {
  constexpr LONG kMargin = 7;
  constexpr LONG kTextRise = 2;  // to the line of the button
  PlaceAtFoot(window, ID_OPTIONS_NOTE, kMargin + kTextRise, false);
  PlaceAtFoot(window, ID_OPTIONS_DEFAULTS, kMargin, true);
}

void TellTip(HWND window, int number, int id, std::span<wchar_t> tip) {
  const OptionRow* const row = RowOfControl(id);
  if (row == nullptr) return FormatControlTip(number, id, false, tip);
  const Page& page = PageOf(window);
  Options shown = page.sheet->entered;
  ReadChosen(window, page.form, shown);
  wchar_t reason[kOptionErrorSize];
  WhyUnusable(*row, shown, page.sheet->running, reason);
  ComposeTip(tip, row->tip, reason);
}

void PrepareTips(HWND window, const OptionForm& form) {
  const HWND tips = PrepareControlTips(window, ID_DIALOG_OPTIONS, TellTip);
  for (size_t i = 0; i < form.count; ++i) AddControlTip(tips, GetDlgItem(window, form.items[i].id));
}

void OnInit(HWND window, const PROPSHEETPAGEW& description) {
  SetWindowLongPtrW(window, DWLP_USER, description.lParam);
  const Page& page = PageOf(window);
  for (size_t i = 0; i < page.form.count; ++i) MakeControl(window, page.form.items[i]);
  for (size_t i = 0; i < page.form.count; ++i)
    ShowValue(window, *page.form.items[i].row, page.sheet->entered);
  RefreshUsable(window);
  PrepareTips(window, page.form);
}

void Refuse(HWND window, HWND number, const wchar_t* error) {
  MessageBoxW(GetParent(window), error, L"Error", MB_OK | MB_ICONERROR);
  SetFocus(number);
  SendMessageW(number, EM_SETSEL, 0, -1);
}

// The port that depths go to is neither the device's nor the receiver's.
bool IsOutputPortFree(HWND window, const Sheet& sheet, const Options& entered) {
  if (entered.sendSerial == 0) return true;
  wchar_t name[16];
  FormatWide(name, "COM%" PRId32, entered.serialPort);
  const bool device = std::wcscmp(name, sheet.device.name) == 0;
  if (!device && std::wcscmp(name, sheet.receiver.name) != 0) return true;
  wchar_t text[96];
  FormatWide(text, "COM%" PRId32 " is the port of the %s.", entered.serialPort,
             device ? "echosounder" : "GPS receiver");
  for (const OptionRow& row : OptionRows()) {
    if (row.value == &Options::serialPort) Refuse(window, GetDlgItem(window, ControlOf(row)), text);
  }
  return false;
}

// Takes over what the page shows. False at the first number that is wrong: the operator has been told and
// stands on it. One that is greyed does no harm: then the former one stays.
bool TakePage(HWND window) {
  const Page& page = PageOf(window);
  Options entered = page.sheet->entered;
  ReadChosen(window, page.form, entered);
  for (size_t i = 0; i < page.form.count; ++i) {
    const OptionItem& item = page.form.items[i];
    if (item.kind != OptionItemKind::number && item.kind != OptionItemKind::address) continue;
    const HWND number = GetDlgItem(window, item.id);
    wchar_t text[kOptionTextSize];
    wchar_t error[kOptionErrorSize];
    GetWindowTextW(number, text, static_cast<int>(kOptionTextSize));
    if (ReadOption(*item.row, text, entered, error) || IsWindowEnabled(number) == FALSE) continue;
    Refuse(window, number, error);
    return false;
  }
  if (page.page == OptionPage::outputs && !IsOutputPortFree(window, *page.sheet, entered)) return false;
  page.sheet->entered = entered;
  return true;
}

// A page is left, or the sheet with "OK".
LONG_PTR OnNotify(HWND window, const NMHDR& notice) {
  if (notice.code == static_cast<UINT>(PSN_KILLACTIVE)) return TakePage(window) ? FALSE : TRUE;
  if (notice.code == static_cast<UINT>(PSN_APPLY)) PageOf(window).sheet->accepted = true;
  return PSNRET_NOERROR;
}

void OnCommand(HWND window, int id) {
  if (id == ID_OPTIONS_DEFAULTS) return ShowDefaults(window);
  if (id >= ID_OPTIONS_FIRST) RefreshUsable(window);  // a switch or a choice
}

INT_PTR CALLBACK PageProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  switch (message) {
    case WM_INITDIALOG:
      OnInit(window, *reinterpret_cast<const PROPSHEETPAGEW*>(lParam));
      return TRUE;
    case WM_SIZE:
      OnSize(window);
      return TRUE;
    case WM_COMMAND:
      if (HIWORD(wParam) == BN_CLICKED || HIWORD(wParam) == CBN_SELCHANGE) OnCommand(window, LOWORD(wParam));
      return TRUE;
    case WM_HSCROLL:
      RefreshUsable(window);  // a slider
      return TRUE;
    case WM_NOTIFY:
      SetWindowLongPtrW(window, DWLP_MSGRESULT, OnNotify(window, *reinterpret_cast<const NMHDR*>(lParam)));
      return TRUE;
    default:
      return FALSE;
  }
}

PROPSHEETPAGEW Describe(Page& page) {
  PROPSHEETPAGEW description{};
  description.dwSize = sizeof(description);
  description.dwFlags = PSP_USETITLE;
  description.hInstance = GetModuleHandleW(nullptr);
  description.pszTemplate = MAKEINTRESOURCEW(ID_DIALOG_OPTIONS);
  description.pszTitle = NameOfPage(page.page);
  description.pfnDlgProc = PageProcedure;
  description.lParam = reinterpret_cast<LPARAM>(&page);
  return description;
}

// A page without rows is left out.
void Show(HWND owner, Sheet& sheet) {
  Page pages[kOptionPages];
  PROPSHEETPAGEW descriptions[kOptionPages];
  UINT count = 0;
  for (int i = 0; i < kOptionPages; ++i) {
    const auto page = static_cast<OptionPage>(i);
    pages[count] = {&sheet, page, LayOutOptions(page)};
    if (pages[count].form.count == 0) continue;
    descriptions[count] = Describe(pages[count]);
    ++count;
  }
  PROPSHEETHEADERW header{};
  header.dwSize = sizeof(header);
  header.dwFlags = PSH_PROPSHEETPAGE | PSH_NOAPPLYNOW | PSH_NOCONTEXTHELP;
  header.hwndParent = owner;
  header.hInstance = GetModuleHandleW(nullptr);
  header.pszCaption = L"Options";
  header.nPages = count;
  header.ppsp = descriptions;
  PropertySheetW(&header);
}

}  // namespace

void ShowOptions(AppState& state) {
  const Options before = state.options;
  Sheet sheet{&state, before, HoldsRun(state), false, {}, {}};
  ReadPortChoices(state, sheet.device, sheet.receiver);
  Show(MainWindow(state), sheet);
  if (sheet.accepted) {
    TakeOptions(state, sheet.entered);
  } else {
    TryDisplayOptions(state, before);
  }
}

}  // namespace tw
