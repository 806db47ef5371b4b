#include <windows.h>

#include <cinttypes>

#include "app/settings/port_selectors.h"
#include "app/window/commands.h"
#include "app/window/control_ids.h"
#include "app/window/control_tips_win32.h"
#include "app/window/dialogs_win32.h"
#include "app/window/selector_wheel_win32.h"
#include "app/window/system_colours_win32.h"
#include "app/window/window_handles_win32.h"
#include "base/text_format.h"
#include "display/scaling.h"

namespace tw {
namespace {

constexpr int kNothingChosen = 0;

struct WarningLine {
  const wchar_t* text;
  int x;
  int y;
};

constexpr WarningLine kWarning[] = {
    {L"Make sure that your system supports the baudrate to be used.", 10, 10},
    {L"Wrong baudrate may disrupt the operation of the device.", 10, 25},
};
constexpr int kFontHeight = 15;
constexpr COLORREF kRed = RGB(255, 0, 0);

void PaintWarning(HWND dialog) {
  PAINTSTRUCT paint{};
  const HDC dc = BeginPaint(dialog, &paint);
  const int dpi = GetDeviceCaps(dc, LOGPIXELSY);
  LOGFONTW description{};
  GetObjectW(reinterpret_cast<HFONT>(SendMessageW(dialog, WM_GETFONT, 0, 0)), sizeof(description),
             &description);
  description.lfHeight = ScalePixels(kFontHeight, dpi);
  description.lfWeight = FW_BOLD;
  const HFONT font = CreateFontIndirectW(&description);
  const HGDIOBJ before = SelectObject(dc, font);
  SetTextColor(dc, ColourOf(kRed, COLOR_BTNTEXT));
  SetBkMode(dc, TRANSPARENT);
  for (const WarningLine& line : kWarning) {
    TextOutW(dc, ScalePixels(line.x, dpi), ScalePixels(line.y, dpi), line.text, lstrlenW(line.text));
  }
  SelectObject(dc, before);
  DeleteObject(font);
  EndPaint(dialog, &paint);
}

// The item chosen last; it stays selected when the device's speed is none of the list.
LRESULT chosenItem = 0;

void FillSpeeds(HWND dialog) {
  for (const int32_t speed : DeviceSpeeds()) {
    wchar_t text[16];
    FormatWide(text, "%" PRId32, speed);
    const LRESULT index =
        SendDlgItemMessageW(dialog, ID_BAUD_SPEED, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text));
    if (speed == globals.deviceBaud) chosenItem = index;
  }
  SendDlgItemMessageW(dialog, ID_BAUD_SPEED, CB_SETCURSEL, static_cast<WPARAM>(chosenItem), 0);
}

int32_t ChosenSpeed(HWND dialog) {
  const LRESULT index = SendDlgItemMessageW(dialog, ID_BAUD_SPEED, CB_GETCURSEL, 0, 0);
  const auto speeds = DeviceSpeeds();
  if (index < 0 || static_cast<size_t>(index) >= speeds.size()) return kNothingChosen;
  chosenItem = index;
  return speeds[static_cast<size_t>(index)];
}

INT_PTR CALLBACK SpeedDialogProcedure(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
  switch (message) {
    case WM_INITDIALOG:
      FillSpeeds(dialog);
      KeepWheelFromSelectors(dialog);
      PrepareControlTips(dialog, ID_DIALOG_BAUD);
      return TRUE;
    case WM_PAINT:
      PaintWarning(dialog);
      return TRUE;
    case WM_COMMAND:
      if (LOWORD(wParam) == ID_BAUD_CHANGE) EndDialog(dialog, ChosenSpeed(dialog));
      if (LOWORD(wParam) == IDCANCEL) EndDialog(dialog, kNothingChosen);
      return TRUE;
    default:
      return FALSE;
  }
}

}  // namespace

void ShowSpeedDialog(AppState& state) {
  const INT_PTR speed = DialogBoxParamW(GetModuleHandleW(nullptr), MAKEINTRESOURCEW(ID_DIALOG_BAUD),
                                        MainWindow(state), SpeedDialogProcedure, 0);
  if (speed > kNothingChosen) ChangeSpeed(state, static_cast<int32_t>(speed));
}

}  // namespace tw
