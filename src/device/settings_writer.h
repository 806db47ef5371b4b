// Telling the device what the operator has changed. GUI thread, while no worker owns the port and the device
// is at its prompt.
#pragma once

#include "app/state/device_settings.h"
#include "device/command_link.h"

namespace tw {

// Sends the values of `wanted` that differ from `applied`, command and reply each, as a device of this family
// (1, 2 or 0) takes them: frequency selection and preset first, because they bring values of their own, then
// the output mode and the others. Values count as different when their texts on the wire differ. A preset
// goes out only to a preset-capable device, the filters only while smoothing is off, the output rate only to
// a device that supports smoothing.
//
// Ends at the first command without its prompt, with that command's result; what follows has not been sent
// then. A value that the device refuses is no failure: the caller reads the settings back in every case.
[[nodiscard]] LinkResult WriteChangedSettings(DeviceLink& link, DeviceFamily family,
                                              const DeviceSettings& wanted, const DeviceSettings& applied);

// Sends "#speed" with the line's next speed, in force after a reset. Awaits no reply.
[[nodiscard]] LinkResult SendSpeed(DeviceLink& link, int32_t speed_bps);

}  // namespace tw
