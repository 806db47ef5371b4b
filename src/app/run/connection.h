// Opening the ports, finding out what answers, closing them. GUI thread.
#pragma once

#include "app/run/elapsed_log.h"
#include "app/run/run_choices.h"
#include "app/run/run_fault.h"
#include "app/state/app_state.h"
#include "device/device_link.h"

namespace tw {

// Takes the chosen ports and speeds over into the process-wide values.
void TakeCommunication(AppState& state, const RunChoices& choices);

// Opens the device port and brings the device to its prompt, then opens the GPS port when one is chosen.
RunResult ConnectPorts(AppState& state, const ElapsedLog& log);

// Reads the device's settings in the forms of the three families, in their order, each from the start-up
// values on; the first that succeeds decides the family and fills `appliedSettings` and `settings`. A form
// that fails because a reply does not come in time is tried twice, which costs a silent device 8 s at most.
// On failure family and settings are unchanged.
RunResult IdentifyDevice(AppState& state);

// Reads the settings back from the device that was identified, as its family does, and takes them over into
// `appliedSettings` and `settings`; what it does not tell stays as `settings` has it. On failure both are
// unchanged.
[[nodiscard]] bool ReadSettingsBack(AppState& state);

// Reads the settings of a device of this family, from the start-up values on, into `settings`; no worker's
// port and no record is touched. Any thread that owns the link.
[[nodiscard]] bool ReadSettingsOf(DeviceLink& link, DeviceFamily family, DeviceSettings& settings);

// Opens a device port, 3000000 as the fast form. Any thread.
[[nodiscard]] Handle OpenAtSpeed(const wchar_t* name, int32_t speed_bps);

// Opens the device port at the chosen speed. False when the system refuses; its
// error is in `error` then.
[[nodiscard]] bool OpenDevice(AppState& state, uint32_t& error);

// Closed at once and marked invalid; a worker that is in a read of theirs gets a failure.
void CloseDevicePort(AppState& state);
void CloseGpsPort(AppState& state);

}  // namespace tw
