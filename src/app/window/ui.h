// What run control asks of a user interface. GUI thread only. The main window implements it with dialog
// controls; tests implement one that records. Controls are named by the ids of app/window/control_ids.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "app/settings/depth_figures.h"
#include "app/settings/lamp_face.h"
#include "app/state/posts.h"

namespace tw {

enum class BoxIcon : uint8_t { none, error, information };
enum class BoxButtons : uint8_t { ok, okCancel };

// Shows a modal box and waits for it, above whatever dialog or box is open. An empty caption is L"". True
// when "OK" was chosen.
bool ShowBox(AppState& state, const wchar_t* text, const wchar_t* caption, BoxIcon icon,
             BoxButtons buttons = BoxButtons::ok);

// Shows the system's text for an error code: caption "GetLastError", no icon.
void ShowSystemError(AppState& state, uint32_t code);

// Shows a text at once (run control's own texts; workers post). The text is copied.
void SetStatusText(AppState& state, StatusPart part, const wchar_t* text);

// Shows what a command does that keeps the window busy, in the part of progress texts: painted at once,
// without a message being taken, and in the place of a notice. An empty text brings back what stood there.
void ShowProgress(AppState& state, const wchar_t* text);
// Shows a text in the position's part for three seconds; then comes back what stood there, or what was to
// stand there meanwhile.
void ShowNotice(AppState& state, const wchar_t* text);
// Its time is over.
void EndNotice(AppState& state);

// Opens a folder in the system's own window; or, with `select`, the folder of a file, which is marked.
void OpenFolder(AppState& state, const wchar_t* path, bool select);

enum class PointerShape : uint8_t { arrow, wait };
void ShowPointer(PointerShape shape);

// Throws away the clicks and keys that wait for this program's windows. A click on "Stop", Exit and closing
// are kept until CarryOutKeptInput asks for them, as if they had just been made.
void DropQueuedInput(AppState& state);
void CarryOutKeptInput(AppState& state);

// A control or a menu entry.
void EnableControl(AppState& state, int id, bool enabled);
void ShowControl(AppState& state, int id, bool visible);
void SetBold(AppState& state, int id, bool bold);  // its letters
[[nodiscard]] bool IsChecked(AppState& state, int id);
void SetChecked(AppState& state, int id, bool checked);

// The text of a control (for a combo: of its selection), with a terminating zero, cut to fit; empty when
// there is none.
void GetControlText(AppState& state, int id, std::span<wchar_t> text);
void SetControlText(AppState& state, int id, const wchar_t* text);

void ClearCombo(AppState& state, int id);
void AddComboItem(AppState& state, int id, const wchar_t* text);
void SelectComboItem(AppState& state, int id, int index);      // -1 selects nothing
[[nodiscard]] int SelectedComboItem(AppState& state, int id);  // -1: none
[[nodiscard]] bool IsComboOpen(AppState& state, int id);       // its list is dropped down

// The operator is choosing: the list of some selector is dropped down, in an open dialog too, or a menu.
[[nodiscard]] bool IsListOpen(AppState& state);

void StartTimer(AppState& state, int id, uint32_t period_ms);
void StopTimer(AppState& state, int id);

// Asks the operator for files to read. False when he cancelled; a dialog that fails is told to him.
[[nodiscard]] bool ChooseInputFiles(AppState& state, std::vector<std::wstring>& paths);

// Places the echogram and the slider anew: a playback has begun or ended.
void ArrangeViews(AppState& state);

// Closes a settings dialog that is open, without sending anything: its run has ended.
void CloseSettingsDialog(AppState& state);

// Shows the lamp's face, in a control of its own. Drawn only where it differs from what is shown.
void ShowLamp(AppState& state, int id, const LampFace& face);

// Shows a text in red, until SetStatusText or another alarm shows something else there. One part at a time.
void SetStatusAlarm(AppState& state, StatusPart part, const wchar_t* text);

void SetWindowTitle(AppState& state, const wchar_t* title);

// Asks for a repaint of the echogram view.
void InvalidateEchogram(AppState& state);

// Calls the operator to the window: it flashes, once, and beeps if wanted.
void CallOperator(AppState& state, bool beep);

// Shows the depth in large figures in a window of its own; null takes that away. Drawn only where the figures
// differ from what is shown.
void ShowDepthWindow(AppState& state, const DepthFigures* figures);

// One beep of the alarm.
void SoundAlarm(AppState& state);

// Ends the process at once, after a failure that it cannot survive.
[[noreturn]] void EndProcess(int exitCode);

}  // namespace tw
