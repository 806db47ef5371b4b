// Bringing a device that may be streaming back to its prompt. Any thread that owns the link.
#pragma once

#include "device/command_link.h"

namespace tw {

// Waits up to 4,000 ms for any byte. None: the device is taken to be at its prompt; asks for it (success, or
// noPrompt). Otherwise sends the stop key, a blank, up to 30 times, each time waiting 1,000 ms for "DataEnd"
// or the prompt. After 30 attempts the result is that of the last one: stopTimeOut or portFailed.
[[nodiscard]] LinkResult StopDevice(DeviceLink& link);

// The same in a hurry, on a line where there may be anything: sends the stop key and CR, and waits 1,200 ms
// for the prompt; twice more where anything else is heard, but a GPS receiver. True when the device is at its
// prompt and says no more. What was heard is in the link, which is fresh. Any thread that owns the link.
[[nodiscard]] bool FindPrompt(DeviceLink& link);

}  // namespace tw
