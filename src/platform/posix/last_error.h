// Where this side keeps the calling thread's last system error. The codes are those of errno.
#pragma once

#include <cstdint>

namespace tw {

void SetSystemError(uint32_t code);

// Keeps errno as it stands, and is always false, so that a failing call can return it.
bool FailWithErrno();
// The same with an errno of our own.
bool FailWith(int code);

}  // namespace tw
