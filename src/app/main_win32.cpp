// The program's entry: start-up in its order, the message loop, and the way out. Worker threads are not
// joined; they end with the process, so nothing here has a destructor that they could miss.
#include <windows.h>

#include <commctrl.h>
#include <objidl.h>
#include <propidl.h>

#include <gdiplus.h>

#include "app/window/control_ids.h"
#include "app/window/crash_dump_win32.h"
#include "app/window/main_window_win32.h"
#include "app/window/playback_bar_win32.h"
#include "app/window/start_up.h"
#include "display/echogram_view_win32.h"
#include "platform/clock.h"
#include "platform/win32/handle_win32.h"

namespace tw {
namespace {

constexpr int kStringSize = 100;

class GdiplusSession {
 public:
  GdiplusSession() {
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&token_, &input, nullptr);  // without it the view shows what GDI alone can draw
  }
  ~GdiplusSession() { Gdiplus::GdiplusShutdown(token_); }
  GdiplusSession(const GdiplusSession&) = delete;
  GdiplusSession& operator=(const GdiplusSession&) = delete;

 private:
  ULONG_PTR token_ = 0;
};

bool RegisterClasses(HINSTANCE instance, const wchar_t* mainClass) {
  const INITCOMMONCONTROLSEX controls{
      sizeof(controls), ICC_STANDARD_CLASSES | ICC_BAR_CLASSES | ICC_UPDOWN_CLASS | ICC_LISTVIEW_CLASSES};
  return InitCommonControlsEx(&controls) != FALSE && RegisterMainWindowClass(instance, mainClass) &&
         RegisterEchogramClass(instance) && RegisterSliderClass(instance) &&
         RegisterPlaybackBarClass(instance);
}

int Run(HINSTANCE instance, int showCommand) {
  const GdiplusSession gdiplus;
  globals.instance = FromSystem(instance);
  wchar_t mainClass[kStringSize] = L"";
  LoadStringW(instance, ID_STRING_CLASS, mainClass, kStringSize);
  if (!RegisterClasses(instance, mainClass)) return 0;
  AppState* const state = CreateMainWindow(instance);
  if (state == nullptr) return 0;
  StartUp(*state);
  WriteDumpOnCrash(state->workingFolder);
  ShowMainWindow(*state, showCommand);
  return RunMessageLoop(*state, instance);
}

}  // namespace
}  // namespace tw

int WINAPI wWinMain(HINSTANCE instance, HINSTANCE, PWSTR, int showCommand) {
  // Start blocks the window for some seconds; a ghost in its place would only lose the operator's clicks.
  DisableProcessWindowsGhosting();
  tw::RaiseTimerResolution();
  const int exitCode = tw::Run(instance, showCommand);
  tw::RestoreTimerResolution();
  return exitCode;
}
