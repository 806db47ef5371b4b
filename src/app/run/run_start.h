// Steps that BeginRun, ResumeRun and SwitchSpeed have in common. GUI thread.
#pragma once

#include "app/run/run_control.h"
#include "app/state/posts.h"

namespace tw {

// Fits dual mode, ping interval and display ranges to the settings that the device answered with. A panel
// whose range is still the one before stays zoomed as the operator left it.
void AdoptDevice(AppState& state, PanelRanges before = {});

// What the workers need to know of the interval; an automatic one is measured.
void KeepInterval(const DeviceSettings& settings);

// Tells `how` the run starts, starts the device and the workers, and tells that it runs.
RunResult StartDeviceAndWorkers(AppState& state, RunChange how = RunChange::starting);

}  // namespace tw
