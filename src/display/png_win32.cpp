#include "display/png_win32.h"

#include <cwchar>
#include <vector>

#include "display/drawing_win32.h"

namespace tw {

namespace {

bool FindPngEncoder(CLSID& encoder) {
  UINT count = 0;
  UINT size = 0;
  if (flat::GdipGetImageEncodersSize(&count, &size) != Gdiplus::Ok || size == 0) return false;
  std::vector<uint64_t> memory(size / sizeof(uint64_t) + 1);
  auto* const codecs = reinterpret_cast<Gdiplus::ImageCodecInfo*>(memory.data());
  if (flat::GdipGetImageEncoders(count, size, codecs) != Gdiplus::Ok) return false;
  for (UINT i = 0; i < count; ++i) {
    if (std::wcscmp(codecs[i].MimeType, L"image/png") != 0) continue;
    encoder = codecs[i].Clsid;
    return true;
  }
  return false;
}

}  // namespace

bool SavePng(const Canvas& picture, const wchar_t* path) {
  CLSID encoder;
  if (!FindPngEncoder(encoder)) return false;
  Gdiplus::GpBitmap* made = nullptr;
  const auto stride = static_cast<INT>(picture.stride * static_cast<ptrdiff_t>(sizeof(Pixel)));
  if (flat::GdipCreateBitmapFromScan0(picture.width, picture.height, stride, PixelFormat32bppRGB,
                                      reinterpret_cast<BYTE*>(picture.pixels), &made) != Gdiplus::Ok) {
    return false;
  }
  const OwnedImage image(made);
  return flat::GdipSaveImageToFile(made, path, &encoder, nullptr) == Gdiplus::Ok;
}

}  // namespace tw
