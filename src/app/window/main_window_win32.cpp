#include "app/window/main_window_win32.h"

// Needs the types of the line above.
#include <shellapi.h>

#include "app/run/record_set_up.h"
#include "app/settings/family_controls.h"
#include "app/settings/recent_recordings.h"
#include "app/state/slider_messages.h"
#include "app/window/accessible_names_win32.h"
#include "app/window/commands.h"
#include "app/window/control_fonts_win32.h"
#include "app/window/control_ids.h"
#include "app/window/control_tips_win32.h"
#include "app/window/dialogs_win32.h"
#include "app/window/event_mark.h"
#include "app/window/file_commands.h"
#include "app/window/files_win32.h"
#include "app/window/full_window_win32.h"
#include "app/window/lamps_win32.h"
#include "app/window/playback_bar.h"
#include "app/window/playback_bar_win32.h"
#include "app/window/selector_wheel_win32.h"
#include "app/window/settings_dialog_win32.h"
#include "app/window/start_up.h"
#include "app/window/view_choices.h"
#include "app/window/view_placement_win32.h"
#include "app/window/window_handles_win32.h"
#include "app/window/window_keys_win32.h"
#include "app/window/window_layout.h"

// Needs the types of the line above.
#include <dbt.h>

namespace tw {
namespace {

constexpr wchar_t kSliderClass[] = L"EchoSliderbar class";

// WM_CREATE: the controls do not exist yet. False ends the creation.
bool OnCreate(HWND window) {
  AppState* const state = AllocateState();
  if (state == nullptr) return false;
  state->mainWindow = FromWindow(window);
  SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(state));
  const HWND slider = CreateWindowExW(0, kSliderClass, L"Place in the recording", WS_CHILD, 0, 0, 0, 0,
                                      window, nullptr, GetModuleHandleW(nullptr), nullptr);
  state->sliderWindow = FromWindow(slider);
  return slider != nullptr;
}

// May come before anything else exists.
void OnGetMinMaxInfo(HWND window, MINMAXINFO& info) {
  const WindowSize smallest = SmallestWindow(WorkAreaOf(window), ScreenDpi());
  info.ptMinTrackSize = {smallest.width, smallest.height};
}

void OnSize(AppState& state) {
  KeepWindowPlacement(state);
  PlaceViews(state);
}

void OnMove(AppState& state) {
  KeepWindowPlacement(state);
}

// A port may be there again.
void RetryLink(AppState& state) {
  if (state.initialised != 0) Signal(state.linkRetry);
}

// The common controls hear of new colours from their parent alone.
void OnColours(HWND window) {
  for (HWND child = GetWindow(window, GW_CHILD); child != nullptr; child = GetWindow(child, GW_HWNDNEXT)) {
    SendMessageW(child, WM_SYSCOLORCHANGE, 0, 0);
  }
  RedrawWindow(window, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void OnTimer(AppState& state, WPARAM timer) {
  if (state.initialised != 0) HandleTimer(state, static_cast<int>(timer));
}

// A click that waited while its control was disabled comes too late.
bool IsDisabledControl(const AppState& state, int id) {
  const HWND control = Control(state, id);
  return control != nullptr && IsWindowEnabled(control) == FALSE;
}

void OnCommand(AppState& state, int id) {
  constexpr int kRecentEnd = ID_MENU_RECENT + static_cast<int>(kRecentRecordings);
  if (state.initialised == 0 || IsDisabledControl(state, id)) return;
  if (HandleReplayKey(state, id) || HandleKeyCommand(state, id)) return;
  switch (id) {
    case ID_MENU_ABOUT:
      return ShowAboutDialog(state);
    case ID_MENU_SHORTCUTS:
      return ShowShortcutsDialog(state);
    case ID_MENU_FIND:
      return ShowFindDialog(state);
    case ID_MENU_FOLDER:
      return ShowFolderDialog(state);
    case ID_MENU_BAUD:
      return ShowSpeedDialog(state);
    case ID_MENU_OPTIONS:
      return ShowOptions(state);
    case ID_MENU_MARK:
      if (const auto moment = TakeMoment(state)) SetMark(state, *moment, L"");
      return;
    case ID_MENU_MARK_WORD:
      return ShowMarkDialog(state);
    case ID_MENU_EXIT:
      if (MayClose(state)) DestroyWindow(MainWindow(state));
      return;
    case ID_MENU_SHOW_IN_FOLDER:
      return ShowInFolder(state);
    case ID_START:
      return StartRun(state);
    case ID_STOP:
      StopRun(state);
      return RefreshSettingsControls(state);
    case ID_APPLY:
      return ApplySettings(state);
    case ID_DETAIL:
      return EditSettings(state);
    case ID_SHOW_SETTINGS:
      return ShowPlayedSettings(state);
    case ID_LOW_FREQUENCY:
    case ID_HIGH_FREQUENCY:
    case ID_DUAL_MODE:
    case ID_OUTPUT:
    case ID_RANGE:
    case ID_INTERVAL:
    case ID_PRESET:
      return TakeSettingsChoice(state, id);
    case ID_PLAYBACK:
      return PlayFiles(state);
    case ID_RESUME:
      return ResumePlayback(state);
    case ID_PAUSE:
      return PausePlayback(state);
    case ID_BACK:
      return StepPlaybackBack(state, kBack20);
    case ID_FAST_BACK:
      return StepPlaybackBack(state, kBack100);
    case ID_SEGY_CONVERT:
    case ID_MENU_SEGY:
      return ConvertToSegy(state);
    case ID_MENU_BIN_TO_TXT:
      return ConvertToText(state);
    case ID_DEFAULT:
      return RestoreDefaults(state);
    case ID_RECORD:
      return ToggleRecording(state);
    case ID_TIMESTAMP:
      return ToggleTimestamp(state);
    case ID_AUTO_CAPTURE:
      return ToggleAutoCapture(state);
    default:
      if (id >= ID_MENU_RECENT && id < kRecentEnd)
        PlayRecent(state, static_cast<size_t>(id - ID_MENU_RECENT));
      return;
  }
}

// While a dialog stands open nothing is taken.
void OnDrop(AppState& state, HDROP drop) {
  const std::vector<std::wstring> paths = PathsOf(drop);
  DragFinish(drop);
  if (state.initialised != 0 && IsWindowEnabled(MainWindow(state)) != FALSE) PlayDropped(state, paths);
}

// An accelerator's command is told from a selector's by the window that sends it.
bool IsOfKey(WPARAM wParam, LPARAM lParam) {
  return HIWORD(wParam) == 1 && lParam == 0;
}

void OnKeyCommand(AppState& state, int id) {
  if (state.initialised == 0 || IsDisabledControl(state, id)) return;
  TickByKey(state, id);
  OnCommand(state, id);
}

// The workers are not waited for: they end with the process.
void OnDestroy(AppState& state) {
  if (state.initialised != 0) {
    BeginShutDown(state);
    LeaveFullScreen(state);
    FinishShutDown(state);
  }
  PostQuitMessage(0);
}

// Commands of buttons and menus have the code 0, those of accelerators 1, as has a new choice of a selector
// (CBN_SELCHANGE); the other codes of selectors tell more than we want to know.
constexpr WORD kLastCommandCode = 1;

LRESULT CALLBACK MainWindowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
  AppState* const state = StateOf(window);
  switch (message) {
    case WM_CREATE:
      return OnCreate(window) ? 0 : -1;
    case WM_GETMINMAXINFO:
      OnGetMinMaxInfo(window, *reinterpret_cast<MINMAXINFO*>(lParam));
      return 0;
    default:
      break;
  }
  if (state == nullptr) return DefWindowProcW(window, message, wParam, lParam);
  switch (message) {
    case WM_SIZE:
      OnSize(*state);
      return 0;
    case WM_MOVE:
      OnMove(*state);
      return 0;
    case WM_SETFOCUS:
      GiveFocusToBar(*state);
      return 0;
    case WM_COMMAND:
      if (IsOfKey(wParam, lParam)) {
        OnKeyCommand(*state, LOWORD(wParam));
      } else if (HIWORD(wParam) <= kLastCommandCode) {
        OnCommand(*state, LOWORD(wParam));
      }
      return 0;
    case WM_TIMER:
      OnTimer(*state, wParam);
      return 0;
    case WM_DRAWITEM:
      DrawLampItem(*state, *reinterpret_cast<const DRAWITEMSTRUCT*>(lParam));
      return TRUE;
    case kConversionEndMessage:
      HandleConversionEnd(*state, wParam != 0);
      return 0;
    case WM_USER:
      if (const auto progress = ReceiveProgress(wParam)) NotePlaybackProgress(*state, *progress);
      return 0;
    case WM_DEVICECHANGE:
      if (wParam == DBT_DEVICEARRIVAL || wParam == DBT_DEVNODES_CHANGED) RetryLink(*state);
      return TRUE;
    case WM_POWERBROADCAST:
      if (wParam == PBT_APMRESUMEAUTOMATIC) RetryLink(*state);
      return TRUE;
    case WM_SYSCOLORCHANGE:
      OnColours(window);
      return 0;
    case WM_DROPFILES:
      OnDrop(*state, reinterpret_cast<HDROP>(wParam));
      return 0;
    case WM_INITMENUPOPUP:
      ShowRecentInMenu(reinterpret_cast<HMENU>(wParam));
      return 0;
    case WM_CLOSE:
      if (MayClose(*state)) DestroyWindow(window);
      return 0;
    case WM_DESTROY:
      OnDestroy(*state);
      return 0;
    default:
      return DefWindowProcW(window, message, wParam, lParam);
  }
}

}  // namespace

bool RegisterMainWindowClass(HINSTANCE instance, const wchar_t* className) {
  WNDCLASSEXW windowClass{};
  windowClass.cbSize = sizeof(windowClass);
  windowClass.style = CS_HREDRAW | CS_VREDRAW;
  windowClass.lpfnWndProc = MainWindowProcedure;
  windowClass.cbWndExtra = DLGWINDOWEXTRA;  // a dialog template is made with this class
  windowClass.hInstance = instance;
  windowClass.hIcon = LoadIconW(instance, MAKEINTRESOURCEW(ID_ICON));
  windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
  windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_BTNFACE + 1);
  windowClass.lpszMenuName = MAKEINTRESOURCEW(ID_MENU);
  windowClass.lpszClassName = className;
  return RegisterClassExW(&windowClass) != 0;
}

AppState* CreateMainWindow(HINSTANCE instance) {
  const HWND window = CreateDialogParamW(instance, MAKEINTRESOURCEW(ID_DIALOG_MAIN), nullptr, nullptr, 0);
  if (window == nullptr) return nullptr;
  FitIntoWorkArea(window);
  AppState* const state = StateOf(window);
  RememberHiddenControls(*state);
  SetArrowFont(*state);
  PrepareLamps(*state, PrepareMainTips(window));
  FitOutputFont(*state);
  NameControls(*state);
  DragAcceptFiles(window, TRUE);
  KeepWheelFromSelectors(window);
  const HWND statusBar = CreateStatusBar(window);
  if (statusBar == nullptr || !GuardStatusTexts(statusBar)) return nullptr;
  state->statusBar = FromWindow(statusBar);
  PlaceViews(*state);
  return state;
}

void ShowMainWindow(AppState& state, int showCommand) {
  ShowWindow(MainWindow(state), showCommand);
  UpdateWindow(MainWindow(state));
  state.initialised = 1;
}

int RunMessageLoop(AppState& state, HINSTANCE instance) {
  const HACCEL accelerators = LoadAcceleratorsW(instance, MAKEINTRESOURCEW(ID_ACCELERATORS));
  const HACCEL replayKeys = LoadAcceleratorsW(instance, MAKEINTRESOURCEW(ID_REPLAY_ACCELERATORS));
  MSG message{};
  while (GetMessageW(&message, nullptr, 0, 0) > 0) {
    if (CarryOutKey(state, accelerators, message)) continue;
    if (TakesReplayKeys(state, message.hwnd) &&
        TranslateAcceleratorW(MainWindow(state), replayKeys, &message) != 0)
      continue;
    TranslateMessage(&message);
    DispatchMessageW(&message);
  }
  return static_cast<int>(message.wParam);
}

}  // namespace tw
