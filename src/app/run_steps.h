// Steps that Start, Apply, Default Setting and the speed change have in common. GUI thread.
#pragma once

#include "app/app_state.h"
#include "app/wait_pointer.h"

namespace tw {

// Fits dual mode, ping interval and display ranges to the settings that the device answered with.
void AdoptDevice(AppState& state);

// What the workers need to know of the interval; an automatic one is measured.
void KeepInterval(const DeviceSettings& settings);

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
