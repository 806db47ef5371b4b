// Steps that Start, Apply, Default Setting and the speed change have in common. GUI thread.
#pragma once

#include "app/state/app_state.h"
#include "app/window/wait_pointer.h"

namespace tw {

// The ranges of the channels that the two panels show; the lower one is 0 unless both frequencies run.
struct PanelRanges {
  int32_t upper_mm = 0;
  int32_t lower_mm = 0;
};

// As they are with these settings, in the mode that runs.
[[nodiscard]] PanelRanges RangesOfPanels(const DeviceSettings& settings);

// Fits dual mode, ping interval and display ranges to the settings that the device answered with. A panel
// whose range is still the one before stays zoomed as the operator left it.
void AdoptDevice(AppState& state, PanelRanges before = {});

// What the workers need to know of the interval; an automatic one is measured.
void KeepInterval(const DeviceSettings& settings);

// Empties what workers tell in the status bar. Posted, so that it comes behind what they have posted.
void ClearLiveTexts(AppState& state);

// Starts timer 8, the device and the workers, refreshes the controls, and remembers the selectors' texts. On
// failure the operator has been told, the program is idle, and the result is false.
[[nodiscard]] bool StartDeviceAndWorkers(AppState& state);

// Ends the acquisition worker, as long as that takes, and brings the device to its prompt. On failure the
// operator has been told, the program is idle, and the result is false.
[[nodiscard]] bool InterruptRun(AppState& state, WaitPointer& pointer);

// Tells the operator, and leaves the program idle: a run cannot go on.
void GiveUpRun(AppState& state, WaitPointer& pointer, const wchar_t* text);

// "Echosounder is not connected". True when a device port is open.
[[nodiscard]] bool IsConnected(AppState& state);

}  // namespace tw
