// Windows as they stand on the screen, the echogram view above all.
#pragma once

#include <windows.h>

#include <cstdint>
#include <vector>

namespace tw {

struct Picture {
  int width = 0;
  int height = 0;
  std::vector<uint32_t> pixels;  // 0x00RRGGBB, row by row from the top

  [[nodiscard]] uint32_t At(int x, int y) const {
    return pixels[static_cast<size_t>(y) * static_cast<size_t>(width) + static_cast<size_t>(x)];
  }
};

// Taken from the screen, so it shows what an operator sees.
[[nodiscard]] Picture PictureOf(HWND window);

// For the eyes of people: the window without its frame as NAME.bmp in the folder that TW_PICTURES names;
// without one nothing.
void SavePicture(HWND window, const char* name);

}  // namespace tw
