#include "display/drawing_win32.h"

namespace tw {

constinit DrawingCounts drawingCounts{};

namespace {

OwnedBitmap MakeBitmap(HDC dc, int32_t width, int32_t height, Pixel*& pixels) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // top-down
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  info.bmiHeader.biCompression = BI_RGB;
  void* bits = nullptr;
  OwnedBitmap bitmap(CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
  pixels = static_cast<Pixel*>(bits);
  return bitmap;
}

OwnedGraphics MakeGraphics(HDC dc) {
  Gdiplus::GpGraphics* made = nullptr;
  if (flat::GdipCreateFromHDC(dc, &made) != Gdiplus::Ok) return {};
  OwnedGraphics graphics(made);
  flat::GdipSetSmoothingMode(made, Gdiplus::SmoothingModeHighQuality);
  flat::GdipSetTextRenderingHint(made, Gdiplus::TextRenderingHintAntiAlias);
  return graphics;
}

}  // namespace

OffscreenPicture::~OffscreenPicture() {
  Clear();
}

void OffscreenPicture::Clear() {
  graphics_.Reset();
  if (replaced_ != nullptr) SelectObject(dc_.Get(), replaced_);
  replaced_ = nullptr;
  bitmap_.Reset();
  dc_.Reset();
  canvas_ = {};
}

bool OffscreenPicture::Resize(HDC like, int32_t width, int32_t height) {
  if (bitmap_ && width == canvas_.width && height == canvas_.height) return true;
  Clear();
  if (width <= 0 || height <= 0) return false;
  dc_ = OwnedDc(CreateCompatibleDC(like));
  Pixel* pixels = nullptr;
  bitmap_ = MakeBitmap(dc_.Get(), width, height, pixels);
  if (!dc_ || !bitmap_ || pixels == nullptr) {
    Clear();
    return false;
  }
  replaced_ = SelectObject(dc_.Get(), bitmap_.Get());
  graphics_ = MakeGraphics(dc_.Get());  // without it the picture has no texts
  canvas_ = {pixels, width, height, width};
  return true;
}

Canvas OffscreenPicture::Pixels() {
  GdiFlush();
  return canvas_;
}

}  // namespace tw
