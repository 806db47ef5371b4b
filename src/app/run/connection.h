// Opening the ports, finding out what answers, closing them. GUI thread.
#pragma once

#include "app/run/elapsed_log.h"
#include "app/state/app_state.h"
#include "app/window/wait_pointer.h"

namespace tw {

inline constexpr wchar_t kNotConnected[] = L"Echosounder is not connected";
inline constexpr wchar_t kUnreadableSettings[] = L"Unable to read settings form the Echosounder";

// Reads the communication selectors into the process-wide values.
void ReadCommunication(AppState& state);

// Opens the device port and brings the device to its prompt, then opens the GPS port when one is chosen. On
// failure the operator has been told, the ports are closed, and the result is false.
[[nodiscard]] bool ConnectPorts(AppState& state, WaitPointer& pointer, const ElapsedLog& log);

// Reads the device's settings in the forms of the three families, in their order, each from the start-up
// values on; the first that succeeds decides the family and fills `appliedSettings` and `settings`. A form
// that fails because a reply does not come in time is tried twice, which costs a silent device 8 s at most.
// On failure the operator has been told, the ports are closed, family and settings are unchanged, and the
// result is false.
[[nodiscard]] bool IdentifyDevice(AppState& state, WaitPointer& pointer);

// Reads the settings back from the device that was identified, as its family does, and takes them over into
// `appliedSettings` and `settings`; what it does not tell stays as `settings` has it. On failure both are
// unchanged.
[[nodiscard]] bool ReadSettingsBack(AppState& state);

// Opens the device port at the chosen speed, 3000000 as the fast form. False when the system refuses; its
// error is in `error` then.
[[nodiscard]] bool OpenDevice(AppState& state, uint32_t& error);

// Shows in the status bar what is connected, or that nothing is.
void ShowConnection(AppState& state);
void ShowDisconnected(AppState& state);

// Closed at once and marked invalid; a worker that is in a read of theirs gets a failure.
void CloseDevicePort(AppState& state);
void CloseGpsPort(AppState& state);

}  // namespace tw
