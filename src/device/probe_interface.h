// Finding out how the device is attached. GUI thread, while no worker owns the port.
#pragma once

#include "device/command_link.h"

namespace tw {

// Sends "#info" and takes the interface type from the words "RS232", "RS485" and "USB" in what follows, the
// latest counts, into the link's facts; at most 30 s, usually until the line has been idle for 11 reads.
[[nodiscard]] LinkResult ProbeInterface(DeviceLink& link);

}  // namespace tw
