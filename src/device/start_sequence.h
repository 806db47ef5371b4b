// The commands that set a device going. GUI thread, after StopDevice.
#pragma once

#include "app/state/device_family.h"
#include "app/state/device_settings.h"
#include "device/device_link.h"

namespace tw {

// Sends the start sequence, the dual one for a first-family device in dual mode, and "#go"; afterwards the
// device streams. Results are not looked at: a device that does not start shows as a silent line. What was
// sent stands in `settings` and `applied`. The output mode is one that the device knows.
void StartDevice(DeviceLink& link, DeviceFamily family, bool dual, DeviceSettings& settings,
                 DeviceSettings& applied);

}  // namespace tw
