// Colours of what the program draws by itself beside the echogram. GUI thread.
#pragma once

#include <windows.h>

namespace tw {

// The usual colour, or with the system's high contrast that of the scheme: COLOR_BTNTEXT and the like.
[[nodiscard]] inline COLORREF ColourOf(COLORREF usual, int inScheme) {
  HIGHCONTRASTW contrast{};
  contrast.cbSize = sizeof(contrast);
  const bool high = SystemParametersInfoW(SPI_GETHIGHCONTRAST, sizeof(contrast), &contrast, 0) != FALSE &&
                    (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
  return high ? GetSysColor(inScheme) : usual;
}

}  // namespace tw
