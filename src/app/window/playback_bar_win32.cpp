#include "app/window/playback_bar_win32.h"

// Need the types of windows.h.
#include <commctrl.h>
#include <windowsx.h>

#include <algorithm>
#include <cwchar>
#include <iterator>
#include <new>

#include "app/state/overview.h"
#include "app/state/slider_messages.h"
#include "app/window/control_ids.h"
#include "app/window/control_tips_win32.h"
#include "app/window/playback_bar.h"
#include "app/window/selector_wheel_win32.h"
#include "app/window/view_placement_win32.h"
#include "app/window/window_handles_win32.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "display/drawing_win32.h"
#include "display/overview_strip.h"
#include "display/scaling.h"

namespace tw {
namespace {

constexpr wchar_t kClassName[] = L"Tidewriter playback bar";
constexpr UINT_PTR kRefreshTimer = 1;
constexpr UINT kRefresh_ms = 100;

// What is shown of the strip, so that it is drawn anew only when that changes.
struct StripState {
  uint32_t changes;
  int32_t mark_x;
};

struct Bar {
  BarLayout layout;
  StripState shown;
  OffscreenPicture picture;
  OverviewColumn columns[kOverviewColumns];
  float reach_m;
  bool drags;
};

struct PartRow {
  int id;
  const wchar_t* className;
  const wchar_t* text;
  DWORD style;
  Box BarLayout::*box;
};

// In the order of the keyboard.
constexpr PartRow kParts[] = {
    {0, WC_STATICW, L"Pace", SS_LEFTNOWORDWRAP, &BarLayout::paceLabel},
    {ID_REPLAY_PACE, WC_COMBOBOXW, L"", CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP, &BarLayout::pace},
    {ID_REPLAY_SKIP_GAPS, WC_BUTTONW, L"Skip gaps", BS_AUTOCHECKBOX | WS_TABSTOP, &BarLayout::skipGaps},
    {ID_REPLAY_TIME, WC_STATICW, L"", SS_LEFTNOWORDWRAP | SS_NOTIFY, &BarLayout::time},
    {0, WC_STATICW, L"Go to", SS_LEFTNOWORDWRAP, &BarLayout::goToLabel},
    {ID_REPLAY_GO_TO, WC_EDITW, L"", ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP, &BarLayout::goTo},
};

Bar* BarOf(HWND window) {
  return reinterpret_cast<Bar*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

AppState& StateOfBar(HWND window) {
  return *StateOf(GetParent(window));
}

RECT RectOf(const Box& box) {
  return {box.x, box.y, box.x + box.width, box.y + box.height};
}

void SetChangedText(HWND control, const wchar_t* text) {
  wchar_t shown[kPlayedTextSize] = L"";
  GetWindowTextW(control, shown, static_cast<int>(std::size(shown)));
  if (std::wcscmp(shown, text) != 0) SetWindowTextW(control, text);
}

// What was typed in stays to be mended when it is no time.
void GoTo(HWND bar, HWND edit) {
  wchar_t text[64] = L"";
  GetWindowTextW(edit, text, static_cast<int>(std::size(text)));
  if (GoToTime(StateOfBar(bar), text)) {
    SetWindowTextW(edit, L"");
    SetFocus(bar);
  } else {
    MessageBeep(MB_ICONWARNING);
    SendMessageW(edit, EM_SETSEL, 0, -1);
  }
}

LRESULT CALLBACK GoToProcedure(HWND edit, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR id,
                               DWORD_PTR) {
  if (message == WM_NCDESTROY) RemoveWindowSubclass(edit, GoToProcedure, id);
  if (message == WM_KEYDOWN && wParam == VK_RETURN) {
    GoTo(GetParent(edit), edit);
    return 0;
  }
  if (message == WM_KEYDOWN && wParam == VK_ESCAPE) {
    SetFocus(GetParent(edit));
    return 0;
  }
  // Their characters would only beep.
  if (message == WM_CHAR && (wParam == VK_RETURN || wParam == VK_ESCAPE)) return 0;
  return DefSubclassProc(edit, message, wParam, lParam);
}

void MakeParts(HWND bar) {
  const HFONT font =
      reinterpret_cast<HFONT>(SendMessageW(GetDlgItem(GetParent(bar), ID_START), WM_GETFONT, 0, 0));
  for (const PartRow& part : kParts) {
    const HWND control = CreateWindowExW(0, part.className, part.text, WS_CHILD | WS_VISIBLE | part.style, 0,
                                         0, 0, 0, bar, reinterpret_cast<HMENU>(static_cast<INT_PTR>(part.id)),
                                         GetModuleHandleW(nullptr), nullptr);
    SendMessageW(control, WM_SETFONT, reinterpret_cast<WPARAM>(font), FALSE);
  }
  const HWND pace = GetDlgItem(bar, ID_REPLAY_PACE);
  for (const PaceRow& row : Paces()) SendMessageW(pace, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(row.text));
  SetWindowSubclass(GetDlgItem(bar, ID_REPLAY_GO_TO), GoToProcedure, 0, 0);
  KeepWheelFromSelectors(bar);
}

bool OnCreate(HWND window) {
  Bar* const bar = new (std::nothrow) Bar{};
  if (bar == nullptr) return false;
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(bar));
  MakeParts(window);
  SetPropW(window, kClassName, PrepareControlTips(window, ID_PLAYBACK_BAR));
  return true;
}

void OnDestroyed(HWND window) {
  RemovePropW(window, kClassName);
  SetWindowLongPtrW(window, GWLP_USERDATA, 0);
}

void OnSize(HWND window, Bar& bar, int width, int height) {
  bar.layout = LayOutBar(width, height, ScreenDpi());
  // The statics without an id are found by their order.
  HWND control = GetWindow(window, GW_CHILD);
  for (const PartRow& part : kParts) {
    Box box = bar.layout.*part.box;
    constexpr int kListHeight = 180;  // a selector's height is that of its list
    if (part.id == ID_REPLAY_PACE) box.height += ScalePixels(kListHeight, ScreenDpi());
    MoveWindow(control, box.x, box.y, box.width, box.height, TRUE);
    control = GetWindow(control, GW_HWNDNEXT);
  }
  const HWND tips = static_cast<HWND>(GetPropW(window, kClassName));
  PlaceTip(tips, window, ID_REPLAY_STRIP, RectOf(bar.layout.strip));
  PlaceTip(tips, window, ID_REPLAY_GO_TO, RectOf(bar.layout.goTo));  // while the field is grey
  InvalidateRect(window, nullptr, TRUE);
}

StripState StateOfStrip(const AppState& state, const Bar& bar) {
  StripState now{0, -1};
  const uint64_t size = LoadShared(state.replay.fileSize);
  if (size != 0) now.mark_x = StripX(LoadShared(state.replay.position), bar.layout.strip.width, size);
  if (state.replay.overview == nullptr) return now;
  const Locked held(state.replay.overview->lock);
  now.changes = state.replay.overview->changes;
  return now;
}

void TakeColumns(const AppState& state, Bar& bar) {
  if (state.replay.overview == nullptr) return;
  const Locked held(state.replay.overview->lock);
  bar.reach_m = state.replay.overview->reach_m;
  std::copy(std::begin(state.replay.overview->columns), std::end(state.replay.overview->columns),
            bar.columns);
}

void OnPaint(HWND window, Bar& bar) {
  PAINTSTRUCT paint;
  const HDC screen = BeginPaint(window, &paint);
  const Box& strip = bar.layout.strip;
  AppState& state = StateOfBar(window);
  if (screen != nullptr && bar.picture.Resize(screen, strip.width, strip.height)) {
    TakeColumns(state, bar);
    const int32_t line = std::max(1, ScalePixels(1, ScreenDpi()));
    DrawOverview(bar.columns, bar.reach_m, state.palette, bar.shown.mark_x, line, bar.picture.Pixels());
    BitBlt(screen, strip.x, strip.y, strip.width, strip.height, bar.picture.Dc(), 0, 0, SRCCOPY);
  }
  EndPaint(window, &paint);
}

void RefreshControls(HWND window, AppState& state) {
  const PlayedTimes times = TimesOf(state);
  wchar_t text[kPlayedTextSize];
  FormatPlayed(text, times, LoadShared(state.replay.position), LoadShared(state.replay.fileSize));
  SetChangedText(GetDlgItem(window, ID_REPLAY_TIME), text);
  const HWND goTo = GetDlgItem(window, ID_REPLAY_GO_TO);
  const BOOL usable = HasTimes(times) ? TRUE : FALSE;
  if (IsWindowEnabled(goTo) != usable) EnableWindow(goTo, usable);
  const HWND pace = GetDlgItem(window, ID_REPLAY_PACE);
  const auto place = static_cast<LRESULT>(PlaceOfPace(LoadShared(state.replay.pace_percent)));
  const bool open = SendMessageW(pace, CB_GETDROPPEDSTATE, 0, 0) != FALSE;
  if (!open && SendMessageW(pace, CB_GETCURSEL, 0, 0) != place)
    SendMessageW(pace, CB_SETCURSEL, static_cast<WPARAM>(place), 0);
  CheckDlgButton(window, ID_REPLAY_SKIP_GAPS, state.options.skipGaps != 0 ? BST_CHECKED : BST_UNCHECKED);
}

void Refresh(HWND window, Bar& bar) {
  AppState& state = StateOfBar(window);
  RefreshControls(window, state);
  const StripState now = StateOfStrip(state, bar);
  if (now.changes == bar.shown.changes && now.mark_x == bar.shown.mark_x) return;
  bar.shown = now;
  const RECT strip = RectOf(bar.layout.strip);
  InvalidateRect(window, &strip, FALSE);
}

void OnShow(HWND window, Bar& bar, bool visible) {
  if (!visible) {
    KillTimer(window, kRefreshTimer);
    return;
  }
  SetTimer(window, kRefreshTimer, kRefresh_ms, nullptr);
  Refresh(window, bar);
}

void Seek(HWND window, const Bar& bar, int x) {
  AppState& state = StateOfBar(window);
  const uint64_t size = LoadShared(state.replay.fileSize);
  RequestSeek(state.seekRequest, StripPosition(x - bar.layout.strip.x, bar.layout.strip.width, size));
}

void OnPress(HWND window, Bar& bar, POINT cursor) {
  SetFocus(window);
  const RECT strip = RectOf(bar.layout.strip);
  if (PtInRect(&strip, cursor) == FALSE) return;
  bar.drags = true;
  SetCapture(window);
  Seek(window, bar, cursor.x);
}

void OnCommand(HWND window, int id, int code) {
  AppState& state = StateOfBar(window);
  const HWND pace = GetDlgItem(window, ID_REPLAY_PACE);
  if (id == ID_REPLAY_PACE && code == CBN_SELCHANGE)
    ChoosePace(state, static_cast<size_t>(SendMessageW(pace, CB_GETCURSEL, 0, 0)));
  if (id == ID_REPLAY_SKIP_GAPS && code == BN_CLICKED)
    ChooseSkipGaps(state, IsDlgButtonChecked(window, ID_REPLAY_SKIP_GAPS) == BST_CHECKED);
  // Back to where the keys count.
  const bool done =
      (id == ID_REPLAY_PACE && code == CBN_CLOSEUP) || (id == ID_REPLAY_SKIP_GAPS && code == BN_CLICKED);
  if (done) SetFocus(window);
}

LRESULT CALLBACK BarProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  if (message == WM_CREATE) return OnCreate(window) ? 0 : -1;
  Bar* const bar = BarOf(window);
  if (bar == nullptr) return DefWindowProcW(window, message, wParam, lParam);
  switch (message) {
    case WM_NCDESTROY:
      OnDestroyed(window);
      delete bar;
      return DefWindowProcW(window, message, wParam, lParam);
    case WM_SIZE:
      OnSize(window, *bar, LOWORD(lParam), HIWORD(lParam));
      return 0;
    case WM_SHOWWINDOW:
      OnShow(window, *bar, wParam != FALSE);
      return 0;
    case WM_PAINT:
      OnPaint(window, *bar);
      return 0;
    case WM_TIMER:
      Refresh(window, *bar);
      return 0;
    case WM_COMMAND:
      OnCommand(window, LOWORD(wParam), HIWORD(wParam));
      return 0;
    case WM_LBUTTONDOWN:
      OnPress(window, *bar, {GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)});
      return 0;
    case WM_MOUSEMOVE:
      if (bar->drags) Seek(window, *bar, GET_X_LPARAM(lParam));
      return 0;
    case WM_LBUTTONUP:
      if (bar->drags) ReleaseCapture();
      return 0;
    case WM_CAPTURECHANGED:
      bar->drags = false;
      return 0;
    default:
      return DefWindowProcW(window, message, wParam, lParam);
  }
}

HWND MakeBar(const AppState& state) {
  return CreateWindowExW(WS_EX_CONTROLPARENT, kClassName, L"Playback bar", WS_CHILD | WS_CLIPCHILDREN, 0, 0,
                         0, 0, MainWindow(state),
                         reinterpret_cast<HMENU>(static_cast<INT_PTR>(ID_PLAYBACK_BAR)),
                         GetModuleHandleW(nullptr), nullptr);
}

}  // namespace

bool RegisterPlaybackBarClass(HINSTANCE instance) {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof windowClass;
  windowClass.lpfnWndProc = BarProcedure;
  windowClass.hInstance = instance;
  windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  windowClass.lpszClassName = kClassName;
  return RegisterClassExW(&windowClass) != 0;
}

HWND PlaybackBarOf(const AppState& state) {
  return Control(state, ID_PLAYBACK_BAR);
}

void ShowPlaybackBar(AppState& state, const Box& place, bool visible) {
  HWND bar = PlaybackBarOf(state);
  if (bar == nullptr && visible) bar = MakeBar(state);
  if (bar == nullptr) return;
  if (!visible) {
    const HWND focus = GetFocus();
    if (focus == bar || IsChild(bar, focus) != FALSE) SetFocus(MainWindow(state));
    ShowWindow(bar, SW_HIDE);
    return;
  }
  const bool appears = IsWindowVisible(bar) == FALSE;
  InvalidateRect(bar, nullptr, FALSE);  // colours may have changed
  MoveWindow(bar, place.x, place.y, place.width, place.height, TRUE);
  ShowWindow(bar, SW_SHOWNA);
  if (appears && GetActiveWindow() == MainWindow(state)) SetFocus(bar);
}

void GiveFocusToBar(const AppState& state) {
  const HWND bar = PlaybackBarOf(state);
  if (bar != nullptr && IsWindowVisible(bar) != FALSE) SetFocus(bar);
}

bool TakesReplayKeys(const AppState& state, HWND focus) {
  const HWND bar = PlaybackBarOf(state);
  if (bar == nullptr || IsWindowVisible(bar) == FALSE) return false;
  return focus == bar || focus == ToWindow(state.sliderWindow) || focus == Control(state, ID_ECHOGRAM);
}

}  // namespace tw
