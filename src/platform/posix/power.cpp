#include "platform/power.h"

namespace tw {

void KeepSystemAwake(bool) {}

}  // namespace tw
