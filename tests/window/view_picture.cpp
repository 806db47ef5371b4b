#include "tests/window/view_picture.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <map>
#include <string>

namespace tw {
namespace {

// The view's margins: where the image stands in it, and a column in the middle of the colour bar.
constexpr int kLeft = 30;
constexpr int kRight = 120;
constexpr int kTop = 20;
constexpr int kBottom = 20;
constexpr int kBarFromRight = 45;

// How strong each colour of the bar is: the higher it stands, the stronger.
std::map<uint32_t, int> ColourStrengths(const Picture& view) {
  std::map<uint32_t, int> strengths;
  const int height = ImageHeight(view);
  for (int y = 1; y + 1 < height; ++y) {
    strengths.emplace(view.At(view.width - kBarFromRight, kTop + y), height - y);
  }
  return strengths;
}

int Channel(uint32_t colour, int shift) {
  return static_cast<int>(colour >> shift & 0xFF);
}

int Distance(uint32_t a, uint32_t b) {
  int sum = 0;
  for (const int shift : {0, 8, 16}) sum += std::abs(Channel(a, shift) - Channel(b, shift));
  return sum;
}

// 0 for black and for what no palette has: grid lines.
int StrengthOf(uint32_t colour, std::map<uint32_t, int>& strengths) {
  const auto known = strengths.find(colour);
  if (known != strengths.end()) return known->second;
  const auto nearest = std::min_element(
      strengths.begin(), strengths.end(),
      [&](const auto& a, const auto& b) { return Distance(a.first, colour) < Distance(b.first, colour); });
  constexpr int kSameColour = 24;  // the bar shows only some hundreds of the 4,096 colours
  const bool close = nearest != strengths.end() && Distance(nearest->first, colour) <= kSameColour;
  const int strength = close ? nearest->second : 0;
  strengths.emplace(colour, strength);
  return strength;
}

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
  if (GetMenu(window) != nullptr) place.top -= GetSystemMetrics(SM_CYMENU);
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

int ImageHeight(const Picture& view) {
  return view.height - kTop - kBottom;
}

std::vector<int> StrongestRows(const Picture& view) {
  std::map<uint32_t, int> strengths = ColourStrengths(view);
  std::vector<int> rows;
  for (int x = kLeft; x < view.width - kRight; ++x) {
    int best = 0;
    int row = -1;
    for (int y = 0; y < ImageHeight(view); ++y) {
      const int strength = StrengthOf(view.At(x, kTop + y), strengths);
      if (strength > best) {
        best = strength;
        row = y;
      }
    }
    rows.push_back(row);
  }
  return rows;
}

}  // namespace tw
