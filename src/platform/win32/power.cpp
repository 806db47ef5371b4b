#include "platform/power.h"

#include <windows.h>

namespace tw {

void KeepSystemAwake(bool awake) {
  SetThreadExecutionState(ES_CONTINUOUS | (awake ? ES_SYSTEM_REQUIRED : 0u));
}

}  // namespace tw
