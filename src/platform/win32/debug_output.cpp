#include "platform/debug_output.h"

#include <windows.h>

namespace tw {

void WriteDebugText(const wchar_t* text) {
  OutputDebugStringW(text);
}

}  // namespace tw
