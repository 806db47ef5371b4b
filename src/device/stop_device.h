// Bringing a device that may be streaming back to its prompt. GUI thread, while no worker owns the port.
#pragma once

#include "device/command_link.h"

namespace tw {

// Waits up to 4,000 ms for any byte. None: the device is taken to be at its prompt; asks for it (success, or
// noPrompt). Otherwise sends the stop key, a blank, up to 30 times, each time waiting 1,000 ms for "DataEnd"
// or the prompt. After 30 attempts the result is that of the last one: stopTimeOut or portFailed.
[[nodiscard]] LinkResult StopDevice(DeviceLink& link);

}  // namespace tw
