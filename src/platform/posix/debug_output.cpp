#include "platform/debug_output.h"

namespace tw {

void WriteDebugText(const wchar_t*) {}

}  // namespace tw
