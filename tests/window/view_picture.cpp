#include "tests/window/view_picture.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <string>

namespace tw {
namespace {

RECT ClientOnScreen(HWND window) {
  RECT client{};
  GetClientRect(window, &client);
  MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&client), 2);
  return client;
}

Picture PictureOf(const RECT& place) {
  Picture picture{place.right - place.left, place.bottom - place.top, {}};
  picture.pixels.resize(static_cast<size_t>(picture.width) * static_cast<size_t>(picture.height));
  BITMAPINFO info{};
  info.bmiHeader = {sizeof(BITMAPINFOHEADER), picture.width, -picture.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  const HDC screen = GetDC(nullptr);
  const HDC memory = CreateCompatibleDC(screen);
  const HBITMAP bitmap = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ before = SelectObject(memory, bitmap);
  BitBlt(memory, 0, 0, picture.width, picture.height, screen, place.left, place.top, SRCCOPY);
  GdiFlush();
  const auto* const from = static_cast<const uint32_t*>(bits);
  std::transform(from, from + picture.pixels.size(), picture.pixels.begin(),
                 [](uint32_t pixel) { return pixel & 0xFFFFFF; });
  SelectObject(memory, before);
  DeleteObject(bitmap);
  DeleteDC(memory);
  ReleaseDC(nullptr, screen);
  return picture;
}

}  // namespace

Picture PictureOf(HWND window) {
  return PictureOf(ClientOnScreen(window));
}

void SavePicture(HWND window, const char* name) {
  const char* const folder = std::getenv("TW_PICTURES");
  if (folder == nullptr) return;
  Sleep(500);  // until it has painted itself
  RECT place = ClientOnScreen(window);
  const bool isChild = (GetWindowLongW(window, GWL_STYLE) & WS_CHILD) != 0;  // what it calls a menu is its id
  if (!isChild && GetMenu(window) != nullptr) place.top -= GetSystemMetrics(SM_CYMENU);
  const Picture picture = PictureOf(place);
  const auto size = static_cast<DWORD>(picture.pixels.size() * sizeof(uint32_t));
  BITMAPINFOHEADER info{
      sizeof(BITMAPINFOHEADER), picture.width, -picture.height, 1, 32, BI_RGB, size, 0, 0, 0, 0};
  BITMAPFILEHEADER header{};
  header.bfType = 0x4D42;
  header.bfOffBits = sizeof(header) + sizeof(info);
  header.bfSize = header.bfOffBits + size;
  std::ofstream file(std::string(folder) + "\\" + name + ".bmp", std::ios::binary);
  file.write(reinterpret_cast<const char*>(&header), sizeof(header));
  file.write(reinterpret_cast<const char*>(&info), sizeof(info));
  file.write(reinterpret_cast<const char*>(picture.pixels.data()), size);
}

}  // namespace tw
