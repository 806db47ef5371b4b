// How run control brings the device of a lost run back. Acquisition worker's thread, see
// acquisition/link_return.h: nothing here touches what the GUI thread owns but the names and speeds of the
// ports, which no run changes.
#pragma once

#include "acquisition/link_return.h"

namespace tw {

// The port is opened at the speed of the run, and in between at the one that a device has by itself, since it
// may have lost power. The device is brought to its prompt and tells its settings: another identity is no
// return. It gets what differs from the settings in force, and the start sequence.
extern const LinkRescue kLinkRescue;

}  // namespace tw
