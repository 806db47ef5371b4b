// Events: what both this side and the test gear make.
#pragma once

#include "platform/sync.h"

namespace tw::posix {

void MakeEvent(Event& event, ResetMode mode);

}  // namespace tw::posix
