// Writing a picture as a PNG file. GUI thread, between start and end of GDI+.
#pragma once

#include "display/canvas.h"

namespace tw {

// False when the system has no PNG encoder or cannot write the file.
[[nodiscard]] bool SavePng(const Canvas& picture, const wchar_t* path);

}  // namespace tw
