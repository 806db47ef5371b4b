#include <windows.h>
// Needs the types of the line above.
#include <commctrl.h>

#include "app/state/posts.h"
#include "app/window/ui.h"
#include "app/window/window_handles_win32.h"
#include "base/text_format.h"

namespace tw {

namespace {

void PostCopy(HWND receiver, const ProgressBlock& progress) {
  if (receiver == nullptr) return;
  const uintptr_t copy = SendProgress(progress);
  if (copy != 0 && PostMessageW(receiver, WM_USER, copy, 0) == FALSE)
    static_cast<void>(ReceiveProgress(copy));
}

// What workers write into their own texts, and the status bar reads of any.
SRWLOCK textLock = SRWLOCK_INIT;

constexpr WPARAM kNoticePart = static_cast<WPARAM>(StatusPart::position);
constexpr UINT_PTR kNoticeTimer = 1;
constexpr UINT kNotice_ms = 3'000;

// A text that stands in the place of another for a while. GUI thread.
struct Notice {
  bool shown;
  wchar_t behind[kStatusTextSize];  // what stands there when it is over
};
constinit Notice notice{};

void TakeNoticeAway(HWND statusBar) {
  KillTimer(statusBar, kNoticeTimer);
  notice.shown = false;
  DefSubclassProc(statusBar, SB_SETTEXTW, kNoticePart, reinterpret_cast<LPARAM>(notice.behind));
}

LRESULT CALLBACK StatusBarProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                                    DWORD_PTR) {
  if (message == WM_TIMER && wParam == kNoticeTimer) {
    TakeNoticeAway(window);
    return 0;
  }
  if (message != SB_SETTEXTW) return DefSubclassProc(window, message, wParam, lParam);
  AcquireSRWLockExclusive(&textLock);
  if (wParam == kNoticePart) CopyWide(notice.behind, reinterpret_cast<const wchar_t*>(lParam));
  if (wParam == kNoticePart && notice.shown) {
    ReleaseSRWLockExclusive(&textLock);
    return TRUE;
  }
  const LRESULT result = DefSubclassProc(window, message, wParam, lParam);
  ReleaseSRWLockExclusive(&textLock);
  return result;
}

}  // namespace

bool GuardStatusTexts(HWND statusBar) {
  return SetWindowSubclass(statusBar, StatusBarProcedure, 0, 0) != FALSE;
}

void ShowNotice(AppState& state, const wchar_t* text) {
  const HWND statusBar = ToWindow(state.statusBar);
  wchar_t behind[kStatusTextSize];
  CopyWide(behind, notice.behind);
  notice.shown = false;
  SendMessageW(statusBar, SB_SETTEXTW, kNoticePart, reinterpret_cast<LPARAM>(text));
  CopyWide(notice.behind, behind);
  notice.shown = SetTimer(statusBar, kNoticeTimer, kNotice_ms, nullptr) != 0;
}

void EndNotice(AppState& state) {
  if (notice.shown) TakeNoticeAway(ToWindow(state.statusBar));
}

// A text that cannot be posted is lost; the next one comes within a second.
void PostStatusText(AppState& state, StatusPart part, const wchar_t* text) {
  const HWND statusBar = ToWindow(state.statusBar);
  if (statusBar == nullptr) return;
  PostMessageW(statusBar, SB_SETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(text));
}

void PostOwnText(AppState& state, StatusPart part, OwnTexts& texts, const wchar_t* text) {
  wchar_t(&buffer)[kStatusTextSize] = texts.OfPart(part);
  AcquireSRWLockExclusive(&textLock);
  CopyWide(buffer, text);
  ReleaseSRWLockExclusive(&textLock);
  PostStatusText(state, part, buffer);
}

void PostProgress(AppState& state, const ProgressBlock& progress) {
  PostCopy(ToWindow(state.sliderWindow), progress);
  PostCopy(MainWindow(state), progress);
}

// A window that is gone has no use for it any more.
bool PostConversionEnd(AppState& state, bool exhausted) {
  if (PostMessageW(MainWindow(state), kConversionEndMessage, exhausted ? 1 : 0, 0) != FALSE) return true;
  return IsWindow(MainWindow(state)) == FALSE;
}

}  // namespace tw
